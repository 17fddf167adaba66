#include "vxfileio/rawdata/RecordingFit.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <variant>

#include "vxfileio/rawdata/HeaderCodec.h"
#include "vxfileio/rawdata/Layout.h"
#include "vxfileio/rawdata/ValueText.h"

namespace vxfileio::rawdata {

namespace {

/// Returns the text of a value, however long it is.
std::string ValueText(const CRecordingCell& cell, const CRawDataRecordingHdr& header) {
    constexpr std::size_t kMostNumber = 24;  // with its separator
    const std::size_t most = header.TaskName.size() + (header.WellChannels.size() + 1) * kMostNumber;
    std::string bytes(cell.width + most, '\0');
    CCellWriter writer(bytes, cell.key);
    std::visit([&](auto member) { PutMember(writer, header, member); }, cell.member);
    bytes.resize(bytes.size() - kCellEndSize - writer.Left());
    return bytes.substr(std::min(bytes.size(), cell.key.size() + 1));
}

/// Returns how many items of a list end within the room.
std::int64_t ItemsThatFit(std::string_view items, std::size_t room) {
    if (items.empty()) return 0;
    const std::int64_t ends = std::ranges::count(items.substr(0, room + 1), ':');
    return items.size() <= room ? ends + 1 : ends;
}

CCellFit FitOf(const CRecordingCell& cell, const CRawDataRecordingHdr& header) {
    const std::string text = ValueText(cell, header);
    const bool isList = std::holds_alternative<CChannelList>(cell.member);
    const std::size_t room = RoomOf(cell);
    return {std::string(cell.key), isList, static_cast<std::int64_t>(room), static_cast<std::int64_t>(text.size()),
            isList ? ItemsThatFit(text, room) : static_cast<std::int64_t>(header.WellChannels.size())};
}

CRecordingFit FitOf(const CLayout& layout, const CRawDataRecordingHdr& header) {
    CRecordingFit fit;
    fit.Wells = fit.WellsThatFit = static_cast<std::int64_t>(header.WellChannels.size());
    for (const CRecordingCell& cell : layout.recording.cells) {
        if (cell.traits.standBy) continue;
        fit.Cells.push_back(FitOf(cell, header));
        fit.WellsThatFit = std::min(fit.WellsThatFit, fit.Cells.back().WellsThatFit);
    }
    return fit;
}

}  // namespace

}  // namespace vxfileio::rawdata

using namespace vxfileio::rawdata;

bool CRecordingFit::Fits() const noexcept { return std::ranges::all_of(Cells, &CCellFit::Fits); }

std::string CRecordingFit::Text() const {
    const CCellFit* tightest = nullptr;
    for (const CCellFit& cell : Cells) {
        if (!cell.Fits() && (tightest == nullptr || cell.WellsThatFit < tightest->WellsThatFit)) tightest = &cell;
    }
    if (tightest == nullptr) return {};
    const auto& [key, isList, room, needed, wells] = *tightest;
    const std::string need = NeedText(key, static_cast<std::size_t>(room), static_cast<std::size_t>(needed));
    if (!isList) return need + '.';
    return need + " for " + std::to_string(Wells) + " wells; " + std::to_string(wells) + " of these wells would fit.";
}

CRecordingFit CheckRecordingFit(const CRawDataRecordingHdr& header, std::int32_t fileVersion) {
    const CLayout& layout = fileVersion == 0 ? Layouts().back() : LayoutForWriting(fileVersion);
    CRecordingFit fit = FitOf(layout, header);
    CRawDataRecordingHdr rest = header;
    for (CRecordingFit part = fit; part.WellsThatFit > 0; part = FitOf(layout, rest)) {
        fit.Split.push_back(part.WellsThatFit);
        rest.WellChannels.erase(rest.WellChannels.begin(), rest.WellChannels.begin() + part.WellsThatFit);
    }
    if (!rest.WellChannels.empty()) fit.Split.clear();
    return fit;
}
