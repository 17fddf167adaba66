#include "tools/vxfile/raw/CellJudge.h"

#include <algorithm>
#include <array>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

#include "tools/vxfile/io/Text.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/HeaderCodec.h"

using namespace vxfileio;
using namespace vxfileio::rawdata;

namespace vxfile {

namespace {

/// What is wrong with a cell.
struct CFault {
    std::string expected;
    std::string meaning;
};
using CVerdict = std::optional<CFault>;

// ---- How the value of each kind is written --------------------------------------------------------------------------

std::string Exact(std::int32_t /*type*/, std::string_view text) {
    return std::string(CNumberText(ParseInt32(text)).View());
}
std::string Exact(std::int64_t /*type*/, std::string_view text) {
    return std::string(CNumberText(ParseInt64(text)).View());
}
std::string Exact(std::uint64_t /*type*/, std::string_view text) {
    return std::string(CNumberText(ParseUInt64(text)).View());
}
std::string Exact(double /*type*/, std::string_view text) {
    return std::string(CNumberText::General(ParseDouble(text)).View());
}

template <class Number>
CVerdict JudgeNumber(std::string_view text) {
    const std::string exact = Exact(Number{}, text);
    if (text == exact) return std::nullopt;
    return CFault{"the number as it is written, " + Quoted(exact), "Readers take it for " + exact + "."};
}

/// The colons between the items, and each item.
template <class Number>
CVerdict JudgeItems(std::string_view text) {
    while (true) {
        const auto end = std::min(text.find(':'), text.size());
        if (auto verdict = JudgeNumber<Number>(text.substr(0, end))) return verdict;
        if (end == text.size()) return std::nullopt;
        text.remove_prefix(end + 1);
    }
}

CVerdict JudgeText(std::string_view text) {
    const auto end = text.find_first_of("=:\r\n");
    if (end == std::string_view::npos) return std::nullopt;
    return CFault{"a text without '=', ':' and line ends", "Readers take only " + Quoted(text.substr(0, end)) + "."};
}

/// Interval items have 32 bits in this format, although the field is wider.
template <class Value>
using CItemOf = std::conditional_t<std::is_same_v<Value, std::int64_t>, std::int32_t, Value>;

/// Judges a value that isn't empty by the kind of its member.
struct CValueJudge {
    std::string_view value;

    CVerdict operator()(std::monostate /*member*/) const { return std::nullopt; }
    template <class Header>
    CVerdict operator()(CBareText<Header> /*member*/) const {
        return std::nullopt;
    }
    CVerdict operator()(CChannelCount /*member*/) const { return JudgeNumber<std::int32_t>(value); }
    CVerdict operator()(CChannelList member) const {
        return std::visit(
            [&]<class Value>(Value CRawDataChannelInfo::* /*field*/) { return JudgeItems<CItemOf<Value>>(value); },
            member.field);
    }
    template <class Header, class Value>
    CVerdict operator()(Value Header::* /*member*/) const {
        if constexpr (std::is_same_v<Value, std::string>) {
            return JudgeText(value);
        } else if constexpr (std::is_same_v<Value, std::vector<std::int64_t>>) {
            return JudgeItems<std::int64_t>(value);
        } else {
            return JudgeNumber<Value>(value);
        }
    }
};

/// Tells whether a cell may stand without a value: texts and lists may, numbers may not.
struct CMayBeEmpty {
    bool operator()(std::monostate /*member*/) const { return false; }
    template <class Header>
    bool operator()(CBareText<Header> /*member*/) const {
        return true;
    }
    bool operator()(CChannelCount /*member*/) const { return false; }
    bool operator()(CChannelList /*member*/) const { return true; }
    template <class Header, class Value>
    bool operator()(Value Header::* /*member*/) const {
        return !std::is_arithmetic_v<Value>;
    }
};

struct CIsText {
    bool operator()(std::monostate /*member*/) const { return true; }
    template <class Header, class Value>
    bool operator()(Value Header::* /*member*/) const {
        return std::is_same_v<Value, std::string>;
    }
    bool operator()(const auto& /*member*/) const { return false; }
};

/// Tells whether a cell always holds what the writer begins with: a text that isn't the caller's.
template <class Cell>
bool IsFixed(const Cell& cell) {
    return cell.standBy && std::visit(CIsText(), cell.member);
}

// ---- One cell -------------------------------------------------------------------------------------------------------

/// What surrounds the text of a cell.
CVerdict JudgeFrame(std::string_view bytes) {
    if (!bytes.ends_with("\r\n"))
        return CFault{"CR LF as the last two bytes", "The cell has lost its end; readers don't look at it."};
    const auto end = bytes.find('\0');
    if (end > bytes.size() - kCellEndSize)
        return CFault{"at least one NUL byte ahead of the line end", "Readers see one item too many."};
    if (bytes.find_first_not_of('\0', end) < bytes.size() - 2)
        return CFault{"nothing but NUL bytes up to the line end", "Readers pass over what stands behind a NUL."};
    return std::nullopt;
}

template <class Cell>
CVerdict JudgeValue(const Cell& cell, std::string_view text) {
    const bool hasSign = text.size() > cell.key.size();
    const std::string_view value = hasSign ? text.substr(cell.key.size() + 1) : std::string_view();
    const std::string key(cell.key);
    if (IsFixed(cell) && value != *cell.standBy) {
        const std::string fixed = cell.standBy->empty() ? key : key + '=' + std::string(*cell.standBy);
        return CFault{Quoted(fixed), "No writer puts anything else there; readers don't look at it."};
    }
    if (!value.empty()) return std::visit(CValueJudge{value}, cell.member);
    if (hasSign) return CFault{"the key alone if there is no value", "Some readers see an item where there is none."};
    if (std::visit(CMayBeEmpty(), cell.member)) return std::nullopt;
    return CFault{"a number behind " + Quoted(key + '='), "Readers take it for 0."};
}

template <class Cell>
CVerdict JudgeCell(const Cell& cell, std::string_view bytes) {
    if (auto verdict = JudgeFrame(bytes)) return verdict;
    const std::string_view text = CellText(bytes);
    if (cell.key.empty()) {
        if (text.starts_with(kFileTypeText)) return std::nullopt;
        return CFault{"a text that begins " + Quoted(kFileTypeText), "No reader takes the file."};
    }
    const bool hasKey = text.starts_with(cell.key) && (text.size() == cell.key.size() || text[cell.key.size()] == '=');
    if (!hasKey)
        return CFault{"the key " + Quoted(cell.key), "Readers find cells by their place and take the value as told."};
    return JudgeValue(cell, text);
}

template <class Cells>
void JudgeCells(const Cells& cells, std::string_view bytes, std::int32_t version, const CHeaderPlace& place,
                CFindings& findings) {
    std::int64_t offset = place.offset;
    for (const auto& cell : cells) {
        if (!HasCell(cell, version)) continue;
        const std::string where = cell.key.empty() ? place.name : place.name + " > " + std::string(cell.key);
        if (bytes.size() < cell.width) {
            findings.Add({where, offset, "the end of the file", "the rest of the header",
                          "The file was cut; readers take 0 for what is missing."});
            return;
        }
        const std::string_view cellBytes = bytes.substr(0, cell.width);
        if (auto fault = JudgeCell(cell, cellBytes)) {
            const bool unpadded = JudgeFrame(cellBytes).has_value();
            findings.Add({where, offset, Quoted(unpadded ? cellBytes : CellText(cellBytes)), std::move(fault->expected),
                          std::move(fault->meaning)});
        }
        bytes.remove_prefix(cell.width);
        offset += static_cast<std::int64_t>(cell.width);
    }
}

// ---- Lists against their counts -------------------------------------------------------------------------------------

std::size_t CountItems(std::string_view cell) {
    std::size_t count = 0;
    for (CCellItems items(cell); items.Next();)
        ++count;
    return count;
}

void JudgeListLengths(std::string_view bytes, std::int32_t version, const CHeaderPlace& place, CFindings& findings) {
    std::int64_t channels = 0;
    std::int64_t offset = place.offset;
    for (const auto& cell : kRecordingCells) {
        if (!HasCell(cell, version)) continue;
        if (bytes.size() < cell.width) return;
        const std::string_view cellBytes = bytes.substr(0, cell.width);
        if (std::holds_alternative<CChannelCount>(cell.member)) channels = ParseInt64(CellValue(cellBytes));
        if (std::holds_alternative<CChannelList>(cell.member)) {
            const auto items = static_cast<std::int64_t>(CountItems(cellBytes));
            if (items != channels)
                findings.Add({place.name + " > " + std::string(cell.key), offset,
                              Counted(static_cast<std::uint64_t>(items), "item"),
                              std::to_string(channels) + ", one for each channel",
                              items < channels ? "The channels behind keep their defaults."
                                               : "Readers pass over the items behind."});
        }
        bytes.remove_prefix(cell.width);
        offset += static_cast<std::int64_t>(cell.width);
    }
}

}  // namespace

void JudgeFileCells(std::string_view bytes, const CHeaderPlace& place, CFindings& findings) {
    JudgeCells(kFileCells, bytes, kNewestVersion, place, findings);
}

void JudgeRecordingCells(std::string_view bytes, std::int32_t version, const CHeaderPlace& place, CFindings& findings) {
    JudgeCells(kRecordingCells, bytes, version, place, findings);
    JudgeListLengths(bytes, version, place, findings);
}

void JudgeSegmentCells(std::string_view bytes, const CHeaderPlace& place, CFindings& findings) {
    JudgeCells(kSegmentCells, bytes, kNewestVersion, place, findings);
}

bool IsExactSegmentHdr(std::string_view bytes) {
    if (bytes.size() != kSegmentHdrSize) return false;
    CSegmentHdr header;
    Decode(bytes, header);
    std::array<char, kSegmentHdrSize> exact{};
    Encode(header, exact);  // no number is too long for its cell
    return std::equal(bytes.begin(), bytes.end(), exact.begin());
}

}  // namespace vxfile
