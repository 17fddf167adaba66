#pragma once

#include "vxfileio/settings/PropViability.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropViability> {
    static constexpr std::string_view kElement = "PropertyViability";
    static constexpr auto kFields = std::tuple{
        CValueField{"ApplyViabilityTest", &CPropViability::ApplyViabilityTest},
        CValueField{"AnalyzeHeartRate", &CPropViability::AnalyzeHeartRate},
        CValueField{"ApplyMinimumWellsPerCompound", &CPropViability::ApplyMinimumWellsPerCompound},
        CValueField{"Dose", &CPropViability::Dose},
        CValueField{"FMin", &CPropViability::FMin},
        CValueField{"FMax", &CPropViability::FMax},
        CValueField{"RecordTime", &CPropViability::RecordTime},
    };
};

}  // namespace vxfileio::xmlarchive
