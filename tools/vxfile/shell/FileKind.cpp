#include "tools/vxfile/shell/FileKind.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "verify/Failure.h"
#include "verify/OpenInput.h"
#include "vxfileio/base/FileMarks.h"
#include "vxfileio/helpers/File.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfile {

namespace {

/// How far into a document to search for its section. Comments and attributes may precede it, but seldom so many that
/// the first of these sizes isn't enough.
constexpr std::int64_t kUsualLookAhead = std::int64_t{64} << 10;
constexpr std::int64_t kLookAhead = std::int64_t{16} << 20;

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

/// Returns whether a file may be a document. Blanks may go on after this text.
bool BeginsDocument(std::string_view text) {
    const auto start = text.find_first_not_of(kBlanks, text.starts_with("\xEF\xBB\xBF") ? 3 : 0);
    return start == std::string_view::npos || text[start] == '<';
}

EFileKind KindOfDocument(std::string_view text) {
    if (HasTag(text, "Settings")) return EFileKind::Settings;
    if (HasTag(text, "Results")) return EFileKind::Results;
    if (text.find("<FileType>VXSettings<") != std::string_view::npos) return EFileKind::Settings;
    if (text.find("<FileType>VXResults<") != std::string_view::npos) return EFileKind::Results;
    return EFileKind::Unknown;
}

/// Returns the first bytes of a file, up to `most`.
std::string HeadOf(const vxfileio::helpers::CFile& file, const std::string& path, std::int64_t most) {
    std::string head(static_cast<std::size_t>(std::min(most, file.Size())), '\0');
    const std::size_t size = file.ReadUpTo(0, std::as_writable_bytes(std::span(head)));
    if (size < head.size())
        throw CFailure("Can't read " + path + " beyond offset " + std::to_string(size) +
                       ", as the system refuses it; check the disk.");
    return head;
}

}  // namespace

EFileKind FileKindOf(const std::string& path) {
    vxfileio::helpers::CFile file;
    OpenInput(file, path);
    std::string head = HeadOf(file, path, kUsualLookAhead);
    if (head.empty()) return EFileKind::Empty;
    if (head.starts_with(vxfileio::base::kRawDataMark)) return EFileKind::RawData;
    if (head.starts_with(vxfileio::base::kCompoundMark)) return EFileKind::Workbook;
    if (!BeginsDocument(head)) return EFileKind::Unknown;
    const EFileKind kind = KindOfDocument(head);
    if (kind != EFileKind::Unknown || file.Size() <= kUsualLookAhead) return kind;
    head = HeadOf(file, path, kLookAhead);
    // A document of another program can have such a section, too, but not such a root.
    return HasTag(head, vxfileio::xmlarchive::kRootElement) ? KindOfDocument(head) : EFileKind::Unknown;
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
