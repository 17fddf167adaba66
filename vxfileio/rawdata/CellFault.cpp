#include "vxfileio/rawdata/CellFault.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <variant>
#include <vector>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"

using namespace vxfileio::helpers;

namespace vxfileio::rawdata {

namespace {

using CVerdict = std::optional<CCellFault>;

// ---- How the value of each kind is written --------------------------------------------------------------------------

CNumberText Exact(std::int32_t /*type*/, std::string_view text) { return CNumberText(ParseInt32(text)); }
CNumberText Exact(std::int64_t /*type*/, std::string_view text) { return CNumberText(ParseInt64(text)); }
CNumberText Exact(std::uint64_t /*type*/, std::string_view text) { return CNumberText(ParseUInt64(text)); }
CNumberText Exact(double /*type*/, std::string_view text) { return CNumberText::General(ParseDouble(text)); }

/// A number that differs from its text when it is written again comes from no writer.
template <class Number>
CVerdict JudgeNumber(std::string_view text) {
    const CNumberText exact = Exact(Number{}, text);
    if (text == exact.View()) return std::nullopt;
    return CCellFault{ECellFault::OtherNumber, std::string(exact.View())};
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
    const auto end = text.find_first_of(kSeparators);
    if (end == std::string_view::npos) return std::nullopt;
    return CCellFault{ECellFault::Separator, std::string(text.substr(0, end))};
}

CVerdict JudgeMark(std::string_view text) {
    return text.starts_with(kFileTypeText) ? std::nullopt : CVerdict(CCellFault{ECellFault::NoMark});
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

/// Returns whether a cell may have no value: texts and lists may, numbers may not.
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

/// Returns whether a cell always has the writer's text, never the caller's.
bool IsFixed(const auto& cell) { return cell.traits.standBy && std::visit(CIsText(), cell.member); }

// ---- One cell -------------------------------------------------------------------------------------------------------

/// Checks the padding and the line end of a cell.
CVerdict JudgeFrame(std::string_view bytes) {
    if (!bytes.ends_with("\r\n")) return CCellFault{ECellFault::NoLineEnd};
    const auto end = bytes.find('\0');
    if (end > bytes.size() - kCellEndSize) return CCellFault{ECellFault::NoPadding};
    if (bytes.find_first_not_of('\0', end) < bytes.size() - 2) return CCellFault{ECellFault::Padding};
    return std::nullopt;
}

CVerdict JudgeValue(const auto& cell, std::string_view text) {
    const bool hasSign = text.size() > cell.key.size();
    const std::string_view value = hasSign ? text.substr(cell.key.size() + 1) : std::string_view();
    if (IsFixed(cell) && value != *cell.traits.standBy) return CCellFault{ECellFault::NotFixed};
    if (!value.empty()) return std::visit(CValueJudge{value}, cell.member);
    if (hasSign) return CCellFault{ECellFault::LoneSign};
    if (std::visit(CMayBeEmpty(), cell.member)) return std::nullopt;
    return CCellFault{ECellFault::NoNumber};
}

CVerdict JudgeCell(const auto& cell, std::string_view bytes) {
    if (auto verdict = JudgeFrame(bytes)) return verdict;
    const std::string_view text = CellText(bytes);
    if (cell.key.empty()) return JudgeMark(text);
    const bool hasKey = text.starts_with(cell.key) && (text.size() == cell.key.size() || text[cell.key.size()] == '=');
    return hasKey ? JudgeValue(cell, text) : CCellFault{ECellFault::NoKey};
}

}  // namespace

std::optional<CCellFault> FaultOfText(std::string_view key, std::string_view text) {
    return key.empty() ? JudgeMark(text) : JudgeText(text);
}

std::optional<CCellFault> FaultOfListItem(std::string_view text) { return JudgeNumber<std::int64_t>(text); }

std::optional<CCellFault> FaultOf(const CFileCell& cell, std::string_view bytes) { return JudgeCell(cell, bytes); }

std::optional<CCellFault> FaultOf(const CRecordingCell& cell, std::string_view bytes) { return JudgeCell(cell, bytes); }

std::optional<CCellFault> FaultOf(const CSegmentCell& cell, std::string_view bytes) { return JudgeCell(cell, bytes); }

}  // namespace vxfileio::rawdata
