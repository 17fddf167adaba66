#pragma once

#include "vxfileio/settings/PropRobot.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropRobot> {
    static constexpr std::string_view kElement = "PropertyRobot";
    static constexpr auto kFields = std::tuple_cat(
        std::tuple{
            CTextField{"RobotSerialNumber", &CPropRobot::RobotSerialNumber},
            CTextField{"FirmwareVersion", &CPropRobot::FirmwareVersion},
            CTextField{"FirmwareDate", &CPropRobot::FirmwareDate},
        },
        FieldsOfPart(&CPropRobot::RobotConfig,  //
                     CTextField{"IPAddress", &CRobotConfig::IPAddress},
                     CValueField{"CleanerID", &CRobotConfig::CleanerID}, CValueField{"WasteID", &CRobotConfig::WasteID},
                     CValueField{"TroughIDStockDilution", &CRobotConfig::TroughIDStockDilution},
                     CValueField{"TroughIDWellMedium", &CRobotConfig::TroughIDWellMedium},
                     CPlacedValuesField{"TroughMediumNames", "MediumName", &CRobotConfig::TroughMediumNames},
                     CValueField{"StockPlateIDL8x12", &CRobotConfig::StockPlateIDL8x12},
                     CValueField{"StockPlateIDL16x6", &CRobotConfig::StockPlateIDL16x6}));
};

}  // namespace vxfileio::xmlarchive
