#pragma once

#include "vxfileio/settings/PropResultsExport.h"
#include "vxfileio/settings/Settings.h"
#include "vxfileio/xmlarchive/DocumentKinds.h"
#include "vxfileio/xmlarchive/XmlFields.h"

/// @file
/// The forms of the file header and of the property sets with few fields.

namespace vxfileio::settings {

/// The plus-minus sign of Latin-1 and a blank.
inline constexpr std::string_view kPlusMinus = "\xB1 ";

/// The voltage range, without the sign that it has for people.
struct CVoltageRangeField : xmlarchive::CTextField<CPropRecording> {
    constexpr CVoltageRangeField() : CTextField{"VoltageRange", &CPropRecording::VoltageRange} {}

    void Put(CXmlFileArchive& archive, const CPropRecording& recording) const {
        const std::string& range = recording.VoltageRange;
        xmlarchive::PutText(archive, range.starts_with(kPlusMinus) ? range.substr(kPlusMinus.size()) : range);
    }
};

}  // namespace vxfileio::settings

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropRecording> {
    static constexpr std::string_view kElement = "PropertyRecording";
    static constexpr std::string_view kOlderElement = "PropRecording";  ///< Read, never written.
    static constexpr auto kFields = std::tuple{
        CValueField{"DataFormat", &CPropRecording::DataFormat},
        CValueField{"ADMax", &CPropRecording::ADMax},
        CValueField{"ADMin", &CPropRecording::ADMin},
        CValueField{"ADZero", &CPropRecording::ADZero},
        CValueField{"Gain", &CPropRecording::Gain},
        CValueField{"RecordingTime", &CPropRecording::RecordingTime},
        CValueField{"Tick", &CPropRecording::Tick},
        settings::CVoltageRangeField{},
        CValueField{"VoltPerADStep", &CPropRecording::VoltPerADStep},
    };
};

template <>
struct CXmlForm<CXmlFileHeader> {
    using Header = CXmlFileHeader;
    static constexpr std::string_view kElement = kHeaderElement;
    static constexpr auto kFields = std::tuple{
        CTextField{"HeaderID", &Header::HeaderID},
        CTextField{"CompoundName", &Header::CompoundName},
        CTextField{"VexaprobeMode", &Header::VexaprobeMode},
        CTextField{"FileType", &Header::FileType},
        CTextField{"ProgramVersion", &Header::ProgramVersion},
        CValueField{"FileVersion", &Header::FileVersion},
        CValueField{"RecordingDate", &Header::RecordingDate},
        CTextField{"RecordingDateString", &Header::RecordingDateString},
        CTextField{"FileName", &Header::FileName},
        CTextField{"Guid", &Header::Guid},
    };
};

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

template <>
struct CXmlForm<CPropNotebook> {
    static constexpr std::string_view kElement = "PropertyNotebook";
    static constexpr auto kFields = std::tuple{
        CTextField{"ExperimentID", &CPropNotebook::ExperimentID},
        CTextField{"FileName", &CPropNotebook::FileName},
        CTextField{"Director", &CPropNotebook::Director},
        CTextField{"Scientist", &CPropNotebook::Scientist},
        CTextField{"Operator", &CPropNotebook::Operator},
        CTextField{"Department", &CPropNotebook::Department},
        CTextField{"Company", &CPropNotebook::Company},
        CTextField{"StudyDesignator", &CPropNotebook::StudyDesignator},
        CTextField{"Species", &CPropNotebook::Species},
        CTextField{"Age", &CPropNotebook::Age},
        CTextField{"Comment", &CPropNotebook::Comment},
    };
};

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

template <>
struct CXmlForm<QualityCheckRecord> {
    using Record = QualityCheckRecord;
    static constexpr std::string_view kElement = "QC";
    static constexpr auto kFields = std::tuple{
        CKeyTextField<enTask, CTextField<Record>>{{"TaskName", &Record::TaskName}},
        CValueField{"EnableQC", &Record::EnableQC},
        CValuesField{"QCPerformed", "CompoundID", &Record::QCPerformed},
        CTextField{"CompoundName", &Record::CompoundName},
        CValueField{"CompoundDose", &Record::CompoundDose},
        CValuesField{"Series", "Dose", &Record::Series},
        CValueField{"CompoundStockDose", &Record::CompoundStockDose},
        CValueField{"CompoundPlateID", &Record::CompoundPlateID},
        CValueField{"CompoundPlateCol", &Record::CompoundPlateCol},
        CValueField{"WashInWait", &Record::WashInWait},
        CValueField{"RecordingTime", &Record::RecordingTime},
        CValueField{"WashOutCycles", &Record::WashOutCycles},
        CValueField{"WashOutTroughID", &Record::WashOutTroughID},
        CValueField{"WashOutWait", &Record::WashOutWait},
        CValueField{"ApplyQC", &Record::ApplyQC},
        CValueField{"QCResponse", &Record::QCResponse},
        CValueField{"PerformCompoundQC", &Record::PerformCompoundQC},
        CTextField{"CompoundQCEffect", &Record::CompoundQCEffect},
        CTextField{"CompoundQCComparison", &Record::CompoundQCComparison},
        CValueField{"CompoundQCEffectValue", &Record::CompoundQCEffectValue},
        CValueField{"PerformWashOutQC", &Record::PerformWashOutQC},
        CTextField{"WashOutQCEffect", &Record::WashOutQCEffect},
        CTextField{"WashOutQCComparison", &Record::WashOutQCComparison},
        CValueField{"WashOutQCEffectValue", &Record::WashOutQCEffectValue},
    };
};

template <>
struct CXmlForm<CPropQualityCheck> {
    static constexpr std::string_view kElement = "PropertyQualityCheck";
    static constexpr auto kFields = std::tuple{
        CKeyedObjectsField{"QualityChecks", &CPropQualityCheck::QualityChecks, &QualityCheckRecord::TaskName},
    };
};

template <>
struct CXmlForm<CPropWashIn> {
    static constexpr std::string_view kElement = "PropertyWashIn";
    static constexpr auto kFields = std::tuple{
        CValueField{"WashIn", &CPropWashIn::WashIn},
    };
};

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

template <>
struct CXmlForm<CPropResultsExport> {
    static constexpr std::string_view kElement = "PropResultsExport";
    static constexpr std::tuple<> kFields{};
};

}  // namespace vxfileio::xmlarchive
