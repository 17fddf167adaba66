#include "vxfileio/settings/PropQualityCheck.h"

#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio {

template <>
struct CXmlForm<QualityCheckRecord> {
    using Record = QualityCheckRecord;
    static constexpr std::string_view kElement = "QC";
    static constexpr CValuesField kPerformed{"QCPerformed", "CompoundID", &Record::QCPerformed};

    /// Ahead of `kPerformed`, which is left empty at times, and behind it.
    static constexpr auto kHead = std::tuple{
        CTextField{"TaskName", &Record::TaskName},
        CValueField{"EnableQC", &Record::EnableQC},
    };
    static constexpr auto kRest = std::tuple{
        CTextField{"CompoundName", &Record::CompoundName},
        CValueField{"CompoundDose", &Record::CompoundDose},
        CValuesField{"Series", "Dose", &Record::Series},
        CValueField{"CompoundStockDose", &Record::CompoundStockDose},
        CCharacterField{"CompoundPlateID", &Record::CompoundPlateID},
        CValueField{"CompoundPlateCol", &Record::CompoundPlateCol},
        CValueField{"WashInWait", &Record::WashInWait},
        CValueField{"RecordingTime", &Record::RecordingTime},
        CValueField{"WashOutCycles", &Record::WashOutCycles},
        CValueField{"WashOutTroughID", &Record::WashOutTroughID},
        CValueField{"WashOutWait", &Record::WashOutWait},
        CValueField{"ApplyQC", &Record::ApplyQC},
        CWordField{"QCResponse", &Record::QCResponse},
        CValueField{"PerformCompoundQC", &Record::PerformCompoundQC},
        CTextField{"CompoundQCEffect", &Record::CompoundQCEffect},
        CTextField{"CompoundQCComparison", &Record::CompoundQCComparison},
        CValueField{"CompoundQCEffectValue", &Record::CompoundQCEffectValue},
        CValueField{"PerformWashOutQC", &Record::PerformWashOutQC},
        CTextField{"WashOutQCEffect", &Record::WashOutQCEffect},
        CTextField{"WashOutQCComparison", &Record::WashOutQCComparison},
        CValueField{"WashOutQCEffectValue", &Record::WashOutQCEffectValue},
    };
    static constexpr auto kFields = std::tuple_cat(kHead, std::tuple{kPerformed}, kRest);
};

namespace {

constexpr std::string_view kChecks = "QualityChecks";

void SaveRecord(CXmlFileArchive& archive, const QualityCheckRecord& record, bool omitPerformed) {
    using Form = CXmlForm<QualityCheckRecord>;
    if (!omitPerformed) return SaveElement(archive, record);
    archive.OpenChild(Form::kElement);
    PutFields(archive, record, Form::kHead);
    PutFields(archive, QualityCheckRecord(), std::tuple{Form::kPerformed});
    PutFields(archive, record, Form::kRest);
    archive.CloseElement();
}

}  // namespace

}  // namespace vxfileio

void CPropQualityCheck::Save(CXmlFileArchive& archive, bool omitPerformed) {
    archive.OpenChild(vxfileio::settings::kQualityCheckElement).OpenChild(vxfileio::kChecks);
    vxfileio::PutList(archive, QualityChecks,
                      [&](const auto& check) { vxfileio::SaveRecord(archive, check.second, omitPerformed); });
    archive.CloseElement().CloseElement();
}

void CPropQualityCheck::Load(CXmlFileArchive& archive) {
    vxfileio::ForEachEventUntil(archive, vxfileio::settings::kQualityCheckElement, [&] {
        if (!vxfileio::IsStartOf(archive, vxfileio::kChecks)) return;
        QualityChecks.clear();
        vxfileio::GetEntries<QualityCheckRecord>(
            archive, [&](QualityCheckRecord& check) { vxfileio::LoadElement(archive, check); },
            [&](QualityCheckRecord check) {
                const enTask task = StringToTask(check.TaskName);
                QualityChecks[task] = std::move(check);
            });
    });
}
