#include "tools/vxfile/report/Seal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <filesystem>
#include <span>
#include <system_error>
#include <utility>

#include "tools/vxfile/report/Json.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/Hex.h"
#include "verify/OpenInput.h"

namespace vxfile {

namespace {

using EKind = CSealedPart::EKind;

/// The names of the kinds of parts, in order.
constexpr std::array<std::string_view, 5> kKinds = {"fileHeader", "recordingHeader", "segment", "other", "block"};

constexpr std::string_view kPartsLine = R"("parts": [)";
constexpr std::string_view kPartsEnd = "],";

/// Names are short enough that no line of a seal is longer. Limits the memory for damaged seals.
constexpr std::size_t kLongestLine = std::size_t{4} << 10;

constexpr std::size_t kBlockSize = std::size_t{256} << 10;

std::string Dumped(const CJson& json) { return json.dump(-1, ' ', false, CJson::error_handler_t::replace); }

/// Calls `visit` with the key and the value of each member of a part after its kind, in the order of its line.
void VisitMembers(auto& part, const auto& visit) {
    visit("offset", part.offset);
    visit("length", part.length);
    const bool isSegment = part.kind == EKind::Segment;
    if (isSegment || part.kind == EKind::RecordingHeader) {
        visit("task", part.task);
        visit("recording", part.recording);
    }
    if (!isSegment) return visit("xxh3", part.sum);
    visit("well", part.well);
    visit("from", part.from);
    visit("to", part.to);
    visit("headerLength", part.headerLength);
    visit("headerXxh3", part.sum);
    visit("samplesXxh3", part.samplesSum);
}

std::string ValueText(std::integral auto number) { return std::to_string(number); }
std::string ValueText(const CXxh3Sum& sum) { return '"' + HexOf(sum) + '"'; }
std::string ValueText(const std::string& text) { return Dumped(text); }

/// Returns the line of a part.
std::string LineOf(const CSealedPart& part) {
    std::string line = R"({"kind":")" + std::string(kKinds[static_cast<std::size_t>(part.kind)]) + '"';
    VisitMembers(part, [&](const char* key, const auto& value) {
        line.append(",\"").append(key).append("\":").append(ValueText(value));
    });
    return line + '}';
}

/// Parses a line from beginning to end. After the first mismatch, everything fails.
class CLine {
 public:
    explicit CLine(std::string_view line) : m_rest(line) {}

    bool IsWhole() const { return m_isWhole; }

    void ReadPart(CSealedPart& part) {
        part = {};
        std::string kind;
        Expect(R"({"kind":)");
        Read(kind);
        const auto* const found = std::ranges::find(kKinds, kind);
        m_isWhole = m_isWhole && found != kKinds.end();
        if (!m_isWhole) return;
        part.kind = static_cast<EKind>(found - kKinds.begin());
        VisitMembers(part, [&](const char* key, auto& value) {
            Expect(",\"");
            Expect(key);
            Expect("\":");
            Read(value);
        });
    }

    void Expect(std::string_view text) {
        m_isWhole = m_isWhole && m_rest.starts_with(text);
        if (m_isWhole) m_rest.remove_prefix(text.size());
    }

    void Read(std::integral auto& number) { Number(m_rest.size(), 10, number); }

    template <std::size_t kSize>
    void Read(std::array<unsigned char, kSize>& sum) {
        Expect("\"");
        for (unsigned char& byte : sum)
            Number(2, 16, byte);
        Expect("\"");
    }

    void Read(std::string& text) {
        std::size_t end = 1;
        while (end < m_rest.size() && m_rest[end] != '"')
            end += m_rest[end] == '\\' ? 2 : 1;
        m_isWhole = m_isWhole && m_rest.starts_with('"') && end < m_rest.size();
        if (!m_isWhole) return;
        const CJson value = CJson::parse(m_rest.substr(0, end + 1), nullptr, false);
        m_isWhole = value.is_string();
        if (!m_isWhole) return;
        text = value;
        m_rest.remove_prefix(end + 1);
    }

 private:
    void Number(std::size_t most, int base, auto& number) {
        const char* const begin = m_rest.data();
        const auto [end, error] = std::from_chars(begin, begin + std::min(most, m_rest.size()), number, base);
        m_isWhole = m_isWhole && error == std::errc();
        if (m_isWhole) m_rest.remove_prefix(static_cast<std::size_t>(end - begin));
    }

    std::string_view m_rest;
    bool m_isWhole = true;
};

}  // namespace

std::string CSealedPart::Name() const {
    const std::string named = Readable(task) + ' ' + std::to_string(recording);
    switch (kind) {
        case EKind::FileHeader:
            return "file header";
        case EKind::RecordingHeader:
            return named + " > header";
        case EKind::Segment:
            return named + " > well " + std::to_string(well) + ", times " + std::to_string(from) + " to " +
                   std::to_string(to);
        default:
            return "bytes " + std::to_string(offset) + " to " + std::to_string(End());
    }
}

CSealWriter::CSealWriter(CSink sink, std::string_view name, std::string_view kind, std::int64_t size)
    : m_sink(std::move(sink)) {
    Write("{\n\"seal\": " + std::to_string(kSealVersion) + ",\n\"file\": " + Dumped(name) +
          ",\n\"kind\": " + Dumped(kind) + ",\n\"size\": " + std::to_string(size) + ",\n" + std::string(kPartsLine));
}

void CSealWriter::Add(const CSealedPart& part) {
    Write((m_hasParts ? ",\n" : "\n") + LineOf(part));
    m_hasParts = true;
}

void CSealWriter::Finish(const std::string& sha256) {
    Write('\n' + std::string(kPartsEnd) + "\n\"sha256\": \"" + sha256 + "\",\n");
    m_sink(R"("check": ")" + HexOf(m_sum.Take()) + "\"\n}\n");
}

void CSealWriter::Write(std::string_view text) {
    m_sum.Add(std::as_bytes(std::span(text)));
    m_sink(text);
}

bool HasSeal(const std::string& path) {
    std::error_code none;
    return std::filesystem::exists(std::filesystem::symlink_status(SealOf(path), none));
}

CSealReader::CSealReader(const std::string& path) : m_path(path) {
    try {
        OpenInput(m_file, path);
    } catch (const CFailure& failure) {
        throw CSealFailure(failure.what());
    }
    CompareWithRewritten();
}

/// Writes the seal again from the values read, and expects the same bytes. Moves to the first part.
void CSealReader::CompareWithRewritten() {
    std::int64_t compared = 0;
    std::string there;
    const auto compare = [&](std::string_view text) {
        there.resize(text.size());
        const bool isRead = m_file.ReadExactly(compared, std::as_writable_bytes(std::span(there)));
        if (!isRead || there != text) RefuseDamage();
        compared += static_cast<std::int64_t>(text.size());
    };
    std::string kind;
    std::array<unsigned char, 32> sha256{};
    ReadVersion();
    ReadMember("file", m_name);
    ReadMember("kind", kind);
    ReadMember("size", m_size);
    std::string line;
    if (!ReadLine(line)) RefuseDamage();
    const std::int64_t parts = m_blockEnd - static_cast<std::int64_t>(m_block.size() - m_passed);
    CSealWriter again(compare, m_name, kind, m_size);
    for (CSealedPart part; Next(part);)
        again.Add(part);
    ReadMember("sha256", sha256);
    m_sha256 = HexOf(sha256);
    again.Finish(m_sha256);
    if (compared != m_file.Size()) RefuseDamage();
    m_block.clear();
    m_passed = 0;
    m_reached = 0;
    m_blockEnd = parts;
}

void CSealReader::RefuseDamage() const {
    throw CSealFailure("The seal " + m_path +
                       " is damaged or was edited, so it proves nothing; take it from a copy, or seal the file anew.");
}

/// Reads a line without its end. Returns false at the end of the seal, and for a line that is too long or not
/// terminated.
bool CSealReader::ReadLine(std::string& line) {
    std::size_t end = m_block.find('\n', m_passed);
    if (end == std::string::npos) {
        m_block.erase(0, m_passed);
        m_passed = 0;
        const std::size_t kept = m_block.size();
        if (kept > kLongestLine) return false;
        m_block.resize(kept + kBlockSize);
        const auto room = std::as_writable_bytes(std::span(m_block)).subspan(kept);
        m_block.resize(kept + m_file.ReadUpTo(m_blockEnd, room));
        m_blockEnd += static_cast<std::int64_t>(m_block.size() - kept);
        end = m_block.find('\n', kept);
    }
    if (end == std::string::npos || end - m_passed > kLongestLine) return false;
    line.assign(m_block, m_passed, end - m_passed);
    m_passed = end + 1;
    return true;
}

/// Reads the next line, which must have a member with this key.
void CSealReader::ReadMember(std::string_view key, auto& value) {
    std::string text;
    if (!ReadLine(text)) RefuseDamage();
    CLine line(text);
    line.Expect('"' + std::string(key) + "\": ");
    line.Read(value);
    if (!line.IsWhole()) RefuseDamage();
}

void CSealReader::ReadVersion() {
    std::string line;
    std::uint64_t version = 0;
    if (!ReadLine(line) || line != "{") RefuseDamage();
    ReadMember("seal", version);
    if (version > kSealVersion)
        throw CSealFailure("The seal " + m_path + " is of version " + std::to_string(version) +
                           ", which is newer than " + std::to_string(kSealVersion) + "; use a newer vxfile.");
}

bool CSealReader::Next(CSealedPart& part) {
    std::string text;
    if (!ReadLine(text)) RefuseDamage();
    if (text == kPartsEnd) {
        if (m_reached != m_size) RefuseDamage();
        return false;
    }
    CLine line(text);
    line.ReadPart(part);
    if (!line.IsWhole() || part.headerLength < 0 || part.headerLength > part.length) RefuseDamage();
    if (part.offset != m_reached || part.length < 1 || part.length > m_size - part.offset) RefuseDamage();
    m_reached = part.End();
    return true;
}

}  // namespace vxfile
