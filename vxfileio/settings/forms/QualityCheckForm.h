#pragma once

#include "vxfileio/settings/PropQualityCheck.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<QualityCheckRecord> {
    using Record = QualityCheckRecord;
    static constexpr std::string_view kElement = "QC";
    static constexpr auto kFields = std::tuple{
        CTextField{"TaskName", &Record::TaskName},
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

}  // namespace vxfileio::xmlarchive
