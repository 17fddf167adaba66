#include "vxfileio/rawdata/RecordingFit.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <variant>

#include "vxfileio/rawdata/HeaderCodec.h"
#include "vxfileio/rawdata/Layout.h"
#include "vxfileio/rawdata/Rules.h"
#include "vxfileio/rawdata/ValueText.h"

namespace vxfileio::rawdata {

namespace {

/// Returns the text of a value of any length.
std::string ValueText(const CRecordingCell& cell, const CRawDataRecordingHdr& header) {
    constexpr std::size_t kMostNumber = 24;  // with its separator
    const std::size_t most = header.TaskName.size() + (header.WellChannels.size() + 1) * kMostNumber;
    std::string bytes(cell.width + most, '\0');
    CCellWriter writer(bytes, cell.key);
    std::visit([&](auto member) { PutMember(writer, header, member); }, cell.member);
    bytes.resize(bytes.size() - kCellEndSize - writer.Left());
    return bytes.substr(std::min(bytes.size(), cell.key.size() + 1));
}

/// The value of a cell that lists one item per well.
struct CItems {
    std::size_t room = 0;
    std::vector<std::size_t> ends = {};  ///< The end of each item in the value.

    /// Returns how many items fit, counted from the first.
    std::int64_t CountThatFit() const { return std::ranges::upper_bound(ends, room) - ends.begin(); }

    /// Returns whether the items from `first` to `last` would fit without the others.
    bool Fit(std::size_t first, std::size_t last) const {
        return ends[last] - (first == 0 ? 0 : ends[first - 1] + 1) <= room;
    }
};

CItems ItemsOf(std::string_view value, std::size_t room) {
    CItems items{.room = room};
    for (auto end = value.find(':'); end != std::string_view::npos; end = value.find(':', end + 1))
        items.ends.push_back(end);
    if (!value.empty()) items.ends.push_back(value.size());
    return items;
}

/// Returns the number of wells in each part if each has as many as fit; empty if a single well doesn't fit.
std::vector<std::int64_t> SplitOf(const std::vector<CItems>& lists, std::size_t wells) {
    std::vector<std::int64_t> split;
    std::size_t first = 0;
    std::size_t last = 0;
    const auto endPart = [&] { split.push_back(static_cast<std::int64_t>(last - first)); };
    while (last < wells) {
        if (std::ranges::all_of(lists, [&](const CItems& items) { return items.Fit(first, last); })) {
            ++last;
            continue;
        }
        if (last == first) return {};
        endPart();
        first = last;
    }
    if (last > first) endPart();
    return split;
}

}  // namespace

}  // namespace vxfileio::rawdata

using namespace vxfileio::rawdata;

bool CRecordingFit::Fits() const noexcept { return Refusal.empty() && std::ranges::all_of(Cells, &CCellFit::Fits); }

std::string CRecordingFit::Text() const {
    const CCellFit* tightest = nullptr;
    for (const CCellFit& cell : Cells) {
        if (!cell.Fits() && (tightest == nullptr || cell.WellsThatFit < tightest->WellsThatFit)) tightest = &cell;
    }
    if (tightest == nullptr) return Refusal;
    const auto& [key, isList, room, needed, wells] = *tightest;
    const std::string need = NeedText(key, static_cast<std::size_t>(room), static_cast<std::size_t>(needed));
    if (!isList) return need + '.';
    return need + FittingText(static_cast<std::size_t>(Wells), static_cast<std::size_t>(wells), "wells");
}

CRecordingFit CheckRecordingFit(const CRawDataRecordingHdr& header, std::int32_t fileVersion) {
    const CLayout& layout = fileVersion == 0 ? Layouts().back() : LayoutForWriting(fileVersion);
    CRecordingFit fit;
    fit.Wells = fit.WellsThatFit = std::ssize(header.WellChannels);
    std::vector<CItems> lists;
    for (const CRecordingCell& cell : layout.recording.cells) {
        if (cell.traits.standBy) continue;
        const std::string value = ValueText(cell, header);
        CCellFit cellFit{.Key = std::string(cell.key),
                         .IsList = std::holds_alternative<CChannelList>(cell.member),
                         .Room = static_cast<std::int64_t>(RoomOf(cell)),
                         .Needed = std::ssize(value)};
        if (cellFit.IsList) {
            lists.push_back(ItemsOf(value, RoomOf(cell)));
            cellFit.WellsThatFit = lists.back().CountThatFit();
        } else {
            cellFit.WellsThatFit = cellFit.Fits() ? fit.Wells : 0;
        }
        fit.WellsThatFit = std::min(fit.WellsThatFit, cellFit.WellsThatFit);
        fit.Cells.push_back(std::move(cellFit));
    }
    const auto breaches = BreachesOfValues(layout, header);
    if (!breaches.empty()) fit.Refusal = TextOf(breaches.front());
    if (fit.WellsThatFit > 0 && breaches.empty()) fit.Split = SplitOf(lists, header.WellChannels.size());
    return fit;
}
