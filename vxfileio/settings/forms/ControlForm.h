#pragma once

#include "vxfileio/settings/PropControl.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropControl> {
    static constexpr std::string_view kElement = "PropertyControl";
    static constexpr auto kFields = std::tuple{
        CValueField{"VexaprobeMode", &CPropControl::VexaprobeMode},
        CValueField{"RobotMode", &CPropControl::RobotMode},
        CValueField{"DataAcqMode", &CPropControl::DataAcqMode},
        CValueField{"SimulationDataFile", &CPropControl::SimulationDataFile},
    };
};

}  // namespace vxfileio::xmlarchive
