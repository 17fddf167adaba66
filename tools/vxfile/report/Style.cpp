#include "tools/vxfile/report/Style.h"

#include <cstdlib>

#include "tools/vxfile/system/Terminal.h"

namespace vxfile {

namespace {

bool HasColours() {
    static const bool kHas = [] {
        const char* const refused = std::getenv("NO_COLOR");
        return (refused == nullptr || *refused == '\0') && IsOutputTerminal() && EnableColours();
    }();
    return kHas;
}

std::string InStyle(std::string_view code, std::string_view text) {
    if (!HasColours()) return std::string(text);
    return "\033[" + std::string(code) + 'm' + std::string(text) + "\033[0m";
}

}  // namespace

std::string Bold(std::string_view text) { return InStyle("1", text); }
std::string Red(std::string_view text) { return InStyle("31", text); }
std::string Green(std::string_view text) { return InStyle("32", text); }
std::string Yellow(std::string_view text) { return InStyle("33", text); }

}  // namespace vxfile
