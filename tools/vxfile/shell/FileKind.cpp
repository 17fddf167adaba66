#include "tools/vxfile/shell/FileKind.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "verify/Failure.h"
#include "verify/OpenInput.h"
#include "vxfileio/base/FileMarks.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

namespace {

/// How far into a document to search for its section. Headers are much shorter, but may be preceded by comments.
constexpr std::size_t kLookAhead = std::size_t{64} << 10;

constexpr std::string_view kBlanks = " \t\r\n";

/// Returns whether the text has a start tag with this name.
bool HasTag(std::string_view text, std::string_view tag) {
    for (auto at = text.find(tag); at != std::string_view::npos; at = text.find(tag, at + 1)) {
        const auto end = at + tag.size();
        const char next = end < text.size() ? text[end] : ' ';
        if (at > 0 && text[at - 1] == '<' && (next == '>' || next == '/' || kBlanks.find(next) != std::string::npos))
            return true;
    }
    return false;
}

EFileKind KindOfDocument(std::string_view text) {
    const auto start = text.find_first_not_of(kBlanks, text.starts_with("\xEF\xBB\xBF") ? 3 : 0);
    if (start == std::string_view::npos || text[start] != '<') return EFileKind::Unknown;
    if (HasTag(text, "Settings")) return EFileKind::Settings;
    if (HasTag(text, "Results")) return EFileKind::Results;
    if (text.find("<FileType>VXSettings<") != std::string_view::npos) return EFileKind::Settings;
    if (text.find("<FileType>VXResults<") != std::string_view::npos) return EFileKind::Results;
    return EFileKind::Unknown;
}

}  // namespace

EFileKind FileKindOf(const std::string& path) {
    vxfileio::helpers::CFile file;
    OpenInput(file, path);
    std::vector<char> bytes(kLookAhead);
    bytes.resize(file.ReadUpTo(0, std::as_writable_bytes(std::span(bytes))));
    if (bytes.size() < kLookAhead && file.Size() > static_cast<std::int64_t>(bytes.size()))
        throw CFailure("Can't read " + path + " beyond offset " + std::to_string(bytes.size()) +
                       ", as the system refuses it; check the disk.");
    const std::string_view text(bytes.data(), bytes.size());
    if (text.empty()) return EFileKind::Empty;
    if (text.starts_with(vxfileio::base::kRawDataMark)) return EFileKind::RawData;
    if (text.starts_with(vxfileio::base::kCompoundMark)) return EFileKind::Workbook;
    return KindOfDocument(text);
}

std::string_view NameOf(EFileKind kind) {
    constexpr std::array<std::string_view, 6> kNames = {"raw data file", "settings file",        "results file",
                                                        "workbook",      "file of another kind", "empty file"};
    return kNames[static_cast<std::size_t>(kind)];
}

std::string ArticleAndNameOf(EFileKind kind) {
    return (kind == EFileKind::Empty ? "an " : "a ") + std::string(NameOf(kind));
}

void RequireKind(EFileKind kind, const std::string& path) {
    const EFileKind found = FileKindOf(path);
    if (found != kind)
        throw CFailure(path + " is " + ArticleAndNameOf(found) + "; expected " + ArticleAndNameOf(kind) + " here.");
}

std::string_view WordOf(EFileKind kind) {
    constexpr std::array<std::string_view, 6> kWords = {"raw", "settings", "results", "workbook", "unknown", "empty"};
    return kWords[static_cast<std::size_t>(kind)];
}

}  // namespace vxfile
