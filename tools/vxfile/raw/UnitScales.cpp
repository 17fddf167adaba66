#include "tools/vxfile/raw/UnitScales.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"

using namespace vxfileio::helpers;
using namespace vxfileio::rawdata;

namespace vxfile {

namespace {

/// A missing value is read as 0.
bool MayLack(const CRawDataChannelInfo& channel) { return channel.UnitsPerAD == 0 || channel.ADZero == 0; }

/// Returns true if the text is a number. Other texts are read as 0, too.
bool IsNumber(std::string_view text) {
    const auto first = text.find_first_not_of(" +-.");
    const bool hasDigit = first != std::string_view::npos && text[first] >= '0' && text[first] <= '9';
    return hasDigit || ParseDouble(text) != 0;
}

}  // namespace

std::set<std::int32_t> WellsWithoutScale(const CRawScan& scan, const CRecordingAt& recording) {
    const auto& wells = recording.header.WellChannels;
    if (std::ranges::none_of(wells, MayLack)) return {};
    std::set<std::int32_t> without;
    for (const char* key : {"UnitsPerADs", "ADZeros"}) {
        const CRecordingCell& cell = scan.Layout().recording[key];
        const std::string bytes =
            scan.ReadBytes(recording.position + static_cast<std::int64_t>(cell.offset), cell.width);
        CCellItems items(bytes);
        for (const auto& well : wells) {
            const auto item = items.Next();
            if (!item || !IsNumber(*item)) without.insert(well.ID);
        }
    }
    return without;
}

}  // namespace vxfile
