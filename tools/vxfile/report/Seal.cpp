#include "tools/vxfile/report/Seal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <span>
#include <system_error>
#include <utility>

#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/Hex.h"
#include "tools/vxfile/system/OpenInput.h"

namespace vxfile {

namespace {

using EKind = CSealedPart::EKind;

/// The words for the kinds of parts, in their order.
constexpr std::array<std::string_view, 5> kKinds = {"fileHeader", "recordingHeader", "segment", "other", "block"};

constexpr std::string_view kPartsLine = R"("parts": [)";
constexpr std::string_view kPartsEnd = "],";
constexpr std::string_view kCheckKey = R"("check": ")";

/// No line of a seal is longer, so that damage can't fill the memory.
constexpr std::size_t kLongestLine = std::size_t{64} << 10;

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

/// Reads the line of a part from front to back. The first mismatch makes everything after it fail.
class CPartLine {
 public:
    explicit CPartLine(std::string_view line) : m_rest(line) {}

    /// Returns false if the line isn't one that `LineOf` returns.
    bool Read(CSealedPart& part) {
        part = {};
        for (std::size_t i = 0; i < kKinds.size(); ++i) {
            const std::string start = R"({"kind":")" + std::string(kKinds[i]) + '"';
            if (!m_rest.starts_with(start)) continue;
            part.kind = static_cast<EKind>(i);
            Expect(start);
            VisitMembers(part, [&](const char* key, auto& value) {
                Expect(",\"");
                Expect(key);
                Expect("\":");
                ReadValue(value);
            });
            Expect("}");
            return m_isWhole && m_rest.empty();
        }
        return false;
    }

 private:
    void Expect(std::string_view text) {
        m_isWhole = m_isWhole && m_rest.starts_with(text);
        if (m_isWhole) m_rest.remove_prefix(text.size());
    }

    void ReadValue(std::integral auto& number) { Number(m_rest.size(), 10, number); }

    void ReadValue(CXxh3Sum& sum) {
        Expect("\"");
        for (unsigned char& byte : sum)
            Number(2, 16, byte);
        Expect("\"");
    }

    void ReadValue(std::string& text) {
        std::size_t end = 1;
        while (end < m_rest.size() && m_rest[end] != '"')
            end += m_rest[end] == '\\' ? 2 : 1;
        const CJson value = CJson::parse(m_rest.substr(0, end + 1), nullptr, false);
        m_isWhole = m_isWhole && value.is_string();
        if (!m_isWhole) return;
        text = value;
        m_rest.remove_prefix(end + 1);
    }

    void Number(std::size_t most, int base, auto& number) {
        const char* const begin = m_rest.data();
        const auto [end, error] = std::from_chars(begin, begin + std::min(most, m_rest.size()), number, base);
        m_isWhole = m_isWhole && error == std::errc();
        if (m_isWhole) m_rest.remove_prefix(static_cast<std::size_t>(end - begin));
    }

    std::string_view m_rest;
    bool m_isWhole = true;
};

/// Returns a line without the comma at its end.
std::string_view WithoutComma(std::string_view line) {
    if (line.ends_with(',')) line.remove_suffix(1);
    return line;
}

/// Returns the object with the one member of a line; a discarded value if there is none.
CJson MemberOf(std::string_view line) {
    return CJson::parse('{' + std::string(WithoutComma(line)) + '}', nullptr, false);
}

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
    m_sink(std::string(kCheckKey) + HexOf(m_sum.Take()) + "\"\n}\n");
}

void CSealWriter::Write(std::string_view text) {
    m_sum.Add(std::as_bytes(std::span(text)));
    m_sink(text);
}

CSealReader::CSealReader(const std::string& path) : m_path(path) {
    try {
        OpenInput(m_file, path);
    } catch (const CFailure& failure) {
        throw CSealFailure(failure.what());
    }
    const CJson members = ReadMembers();
    const auto size = members.find("size");
    const auto sha256 = members.find("sha256");
    if (size == members.end() || !size->is_number_integer() || sha256 == members.end() || !sha256->is_string())
        RefuseDamage();
    m_size = *size;
    m_sha256 = *sha256;
    m_block.clear();
    m_passed = 0;
    m_blockEnd = m_parts;
}

void CSealReader::RefuseDamage() const {
    throw CSealFailure("The seal " + m_path +
                       " is damaged or was edited, so it proves nothing; take it from a copy, or seal the file anew.");
}

/// Reads a line without its end. Returns false at the end of the seal, and at a line that is too long or doesn't end.
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
        if (end == std::string::npos) return false;
    }
    line.assign(m_block, m_passed, end - m_passed);
    m_passed = end + 1;
    return true;
}

/// Compares the seal with its own checksum, and returns its members but for the parts.
CJson CSealReader::ReadMembers() {
    CXxh3 sum;
    CJson members = CJson::object();
    std::string line;
    bool isInParts = false;
    for (std::int64_t number = 0; ReadLine(line); ++number) {
        if (number == 0 && line != "{") RefuseDamage();
        if (number == 1) ReadVersion(line);
        if (!isInParts && line.starts_with(kCheckKey)) {
            const bool isWhole = line == std::string(kCheckKey) + HexOf(sum.Take()) + '"' && ReadLine(line) &&
                                 line == "}" && m_passed == m_block.size() && m_blockEnd == m_file.Size();
            if (!isWhole) RefuseDamage();
            return members;
        }
        if (line == kPartsLine) m_parts = m_blockEnd - static_cast<std::int64_t>(m_block.size() - m_passed);
        if (!isInParts && number > 1 && line != kPartsLine) {
            const CJson member = MemberOf(line);
            if (!member.is_object()) RefuseDamage();
            members.update(member);
        }
        isInParts = line == kPartsLine || (isInParts && line != kPartsEnd);
        line += '\n';
        sum.Add(std::as_bytes(std::span(line)));
    }
    RefuseDamage();
}

void CSealReader::ReadVersion(std::string_view line) const {
    const CJson member = MemberOf(line);
    if (!member.is_object() || !member.contains("seal") || !member["seal"].is_number_unsigned()) RefuseDamage();
    const auto version = member["seal"].get<std::uint64_t>();
    if (version == 0) RefuseDamage();
    if (version > kSealVersion)
        throw CSealFailure("The seal " + m_path + " is of version " + std::to_string(version) +
                           ", which is newer than " + std::to_string(kSealVersion) + "; use a newer vxfile.");
}

bool CSealReader::Next(CSealedPart& part) {
    std::string line;
    if (!ReadLine(line)) RefuseDamage();
    if (line == kPartsEnd) {
        if (m_reached != m_size) RefuseDamage();
        return false;
    }
    const bool isWhole =
        CPartLine(WithoutComma(line)).Read(part) && part.headerLength >= 0 && part.headerLength <= part.length;
    if (!isWhole) RefuseDamage();
    if (part.offset != m_reached || part.length < 1 || part.length > m_size - part.offset) RefuseDamage();
    m_reached = part.End();
    return true;
}

}  // namespace vxfile
