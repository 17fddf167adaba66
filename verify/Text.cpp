#include "verify/Text.h"

#include <cstddef>

using vxfileio::helpers::IsUtf8;
using vxfileio::helpers::Printable;

namespace vxfile {

namespace {

unsigned char Byte(char c) { return static_cast<unsigned char>(c); }

std::string Latin1(char c) { return Byte(c) < 0xA0 ? Printable(c) : Utf8({&c, 1}); }

}  // namespace

std::string Readable(std::string_view bytes) {
    const bool isUtf8 = IsUtf8(bytes);
    std::string text;
    for (const char c : bytes) {
        if (Byte(c) < 0x80) {
            text += c >= ' ' && c <= '~' ? std::string(1, c) : Printable(c);
        } else {
            text += isUtf8 ? std::string(1, c) : Latin1(c);
        }
    }
    return text;
}

std::string AndMore(std::size_t count) { return count == 0 ? "" : " and " + std::to_string(count) + " more"; }

std::string ListText(const std::vector<std::int32_t>& numbers, std::size_t most) {
    std::string text;
    std::size_t listed = 0;
    for (std::size_t i = 0; i < numbers.size(); ++listed) {
        if (listed == most) return text + AndMore(numbers.size() - i);
        std::size_t last = i;
        while (last + 1 < numbers.size() && std::int64_t{numbers[last + 1]} == std::int64_t{numbers[last]} + 1)
            ++last;
        if (last < i + 2) last = i;  // two neighbours are listed one by one
        text += (text.empty() ? "" : ", ") + std::to_string(numbers[i]);
        if (last != i) text += " - " + std::to_string(numbers[last]);
        i = last + 1;
    }
    return text;
}

}  // namespace vxfile
