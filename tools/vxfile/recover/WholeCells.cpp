#include "tools/vxfile/recover/WholeCells.h"

#include <algorithm>
#include <string>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;
using vxfileio::CNumberText;

namespace {

constexpr std::string_view kCellEnd("\0\r\n", 3);

// A number that doesn't come back as the same text was written by nobody.
bool IsNumber(std::string_view text, std::int32_t /*type*/) {
    return CNumberText(vxfileio::ParseInt32(text)).View() == text;
}
bool IsNumber(std::string_view text, std::int64_t /*type*/) {
    return CNumberText(vxfileio::ParseInt64(text)).View() == text;
}
bool IsNumber(std::string_view text, std::uint64_t /*type*/) {
    return CNumberText(vxfileio::ParseUInt64(text)).View() == text;
}

bool IsNumber(std::string_view text, double /*type*/) {
    return CNumberText::General(vxfileio::ParseDouble(text)).View() == text;
}

template <class Number>
bool AreNumbers(std::string_view list, Number type) {
    while (!list.empty()) {
        const auto colon = list.find(':');
        if (!IsNumber(list.substr(0, colon), type)) return false;
        if (colon == std::string_view::npos) return true;
        list.remove_prefix(colon + 1);
        if (list.empty()) return false;  // an item is missing
    }
    return true;
}

template <class Header, class Number>
bool Admits(Number Header::* /*member*/, std::string_view value) {
    return IsNumber(value, Number());
}
template <class Header>
bool Admits(std::string Header::* /*member*/, std::string_view value) {
    return value.find_first_of("\r\n") == std::string_view::npos;
}
bool Admits(std::vector<std::int64_t> CRawDataFileHdr::* /*member*/, std::string_view value) {
    return AreNumbers(value, std::int64_t());
}
bool Admits(CBareText<CRawDataFileHdr> /*member*/, std::string_view value) { return value.starts_with(kFileTypeText); }
bool Admits(CChannelCount /*member*/, std::string_view value) {
    const auto count = vxfileio::ParseInt32(value);
    return IsNumber(value, count) && count >= 0 && static_cast<std::size_t>(count) <= kMostChannels;
}
bool Admits(CChannelList member, std::string_view value) {
    // The format keeps intervals within 32 bits, although their field is wider.
    const auto areNumbers = [&]<class Number>(Number CRawDataChannelInfo::*) {
        if constexpr (std::is_same_v<Number, double>) return AreNumbers(value, Number());
        return AreNumbers(value, std::int32_t());
    };
    return std::visit(areNumbers, member.field);
}

template <class Header, class... More>
bool IsText(const CCell<Header, More...>& cell) {
    return std::holds_alternative<std::string Header::*>(cell.member);
}

bool IsWhole(const auto& cell, std::string_view bytes) {
    const auto value = WholeValue(bytes, cell.key);
    if (!value) return false;
    // A text that the writer begins with stays.
    if (std::holds_alternative<std::monostate>(cell.member) || (IsText(cell) && cell.standBy))
        return value == cell.standBy;
    if (cell.key.starts_with("FPos") && vxfileio::ParseInt64(*value) < kUnset) return false;
    const auto admits = [&](auto member) {
        if constexpr (std::is_same_v<decltype(member), std::monostate>) {
            return true;
        } else {
            return Admits(member, *value);
        }
    };
    return std::visit(admits, cell.member);
}

CDamagedCells DamagedCells(const auto& cells, std::int32_t version, std::string_view bytes) {
    CDamagedCells damaged;
    for (std::size_t row = 0; row < cells.size(); ++row) {
        if (!HasCell(cells[row], version)) continue;
        damaged[row] = !IsWhole(cells[row], bytes.substr(0, cells[row].width)) || bytes.size() < cells[row].width;
        bytes.remove_prefix(std::min(bytes.size(), cells[row].width));
    }
    return damaged;
}

}  // namespace

std::optional<std::string_view> WholeValue(std::string_view cell, std::string_view key) {
    if (!cell.ends_with(kCellEnd)) return std::nullopt;
    const std::string_view text = CellText(cell);
    const auto padding = cell.substr(text.size(), cell.size() - text.size() - 2);
    if (padding.find_first_not_of('\0') != std::string_view::npos || !text.starts_with(key)) return std::nullopt;
    const auto value = text.substr(key.size());
    if (key.empty() || value.empty()) return value;
    if (value[0] != '=' || value.size() == 1) return std::nullopt;
    return value.substr(1);
}

CDamagedCells DamagedFileCells(std::string_view bytes) { return DamagedCells(kFileCells, kNewestVersion, bytes); }

CDamagedCells DamagedRecordingCells(std::string_view bytes, std::int32_t version) {
    return DamagedCells(kRecordingCells, version, bytes);
}

CDamagedCells DamagedSegmentCells(std::string_view bytes) { return DamagedCells(kSegmentCells, kNewestVersion, bytes); }

}  // namespace vxfile
