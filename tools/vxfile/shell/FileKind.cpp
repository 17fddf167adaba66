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
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfile {

namespace {

/// How far into a document to search for its section. Headers are much shorter, but may be preceded by comments.
constexpr std::size_t kLookAhead = std::size_t{16} << 20;

/// The size of the blocks in which it is searched. They overlap by more than the longest text that is searched for.
constexpr std::size_t kBlock = std::size_t{64} << 10;
constexpr std::size_t kOverlap = 64;

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

/// Reads the blocks of a file.
class CBlocks {
 public:
    explicit CBlocks(const std::string& path) : m_path(path) { OpenInput(m_file, path); }

    /// Returns the block at this offset, shorter than the others at the end of the file. Valid until the next call.
    std::string_view At(std::size_t offset) {
        const auto at = static_cast<std::int64_t>(offset);
        const std::size_t size = m_file.ReadUpTo(at, std::as_writable_bytes(std::span(m_bytes)));
        if (size < kBlock && m_file.Size() > at + static_cast<std::int64_t>(size))
            throw CFailure("Can't read " + m_path + " beyond offset " + std::to_string(offset + size) +
                           ", as the system refuses it; check the disk.");
        return {m_bytes.data(), size};
    }

 private:
    const std::string& m_path;
    vxfileio::helpers::CFile m_file;
    std::vector<char> m_bytes = std::vector<char>(kBlock);
};

}  // namespace

EFileKind FileKindOf(const std::string& path) {
    CBlocks blocks(path);
    std::string_view text = blocks.At(0);
    if (text.empty()) return EFileKind::Empty;
    if (text.starts_with(vxfileio::base::kRawDataMark)) return EFileKind::RawData;
    if (text.starts_with(vxfileio::base::kCompoundMark)) return EFileKind::Workbook;
    if (!BeginsDocument(text)) return EFileKind::Unknown;
    EFileKind kind = KindOfDocument(text);
    // Documents of other programs can have a section of this name, too, but not inside of this root.
    bool hasRoot = HasTag(text, vxfileio::xmlarchive::kRootElement);
    for (std::size_t at = kBlock - kOverlap; kind == EFileKind::Unknown && text.size() == kBlock && at < kLookAhead;
         at += kBlock - kOverlap) {
        text = blocks.At(at);
        hasRoot = hasRoot || HasTag(text, vxfileio::xmlarchive::kRootElement);
        if (hasRoot) kind = KindOfDocument(text);
    }
    return kind;
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
