#include "vxfileio/rawdata/ScaleFault.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"

namespace vxfileio::rawdata {

using helpers::ENumberFault;
using helpers::ReadNumber;

CScaleFaults ScaleFaultsOf(const CLayout& layout, std::string_view bytes,
                           const std::vector<CRawDataChannelInfo>& wells) {
    CScaleFaults faults;
    const auto judge = [&](const char* key, auto member) {
        const CRecordingCell& cell = layout.recording[key];
        CCellItems items(bytes.substr(std::min(bytes.size(), cell.offset), cell.width));
        std::set<std::int32_t> judged;
        for (const CRawDataChannelInfo& well : wells) {
            const std::string_view item = items.Next().value_or(std::string_view());
            double number = 0;
            const bool isRead = ReadNumber(item, number) == ENumberFault::None && std::isfinite(number) &&
                                number == static_cast<double>(well.*member);
            const bool isFirst = judged.insert(well.ID).second;
            if (isFirst && !isRead) faults.emplace(well.ID, CScaleFault{cell.key, std::string(item)});
        }
    };
    judge("UnitsPerADs", &CRawDataChannelInfo::UnitsPerAD);
    judge("ADZeros", &CRawDataChannelInfo::ADZero);
    return faults;
}

}  // namespace vxfileio::rawdata
