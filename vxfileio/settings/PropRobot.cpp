#include "vxfileio/settings/PropRobot.h"

#include "vxfileio/helpers/DeepCopy.h"
#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropRobot> {
    static constexpr std::string_view kElement = settings::kRobotElement;
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
                     CCharacterField{"StockPlateIDL8x12", &CRobotConfig::StockPlateIDL8x12},
                     CCharacterField{"StockPlateIDL16x6", &CRobotConfig::StockPlateIDL16x6}));
};

}  // namespace vxfileio::xmlarchive

using vxfileio::helpers::DeepCopy;

CRobotGeometry::CRobotGeometry(const CRobotGeometry& other)
    : Range(DeepCopy(other.Range)),
      Dilutor(DeepCopy(other.Dilutor)),
      RecordPlate(DeepCopy(other.RecordPlate)),
      Cleaners(DeepCopy(other.Cleaners)),
      Wastes(DeepCopy(other.Wastes)),
      Troughs(DeepCopy(other.Troughs)),
      StockPlates(DeepCopy(other.StockPlates)) {}

CRobotGeometry& CRobotGeometry::operator=(const CRobotGeometry& other) { return *this = CRobotGeometry(other); }

void CPropRobot::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CPropRobot::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
