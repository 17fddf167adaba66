#include "vxfileio/settings/SettingsWriter.h"

#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/settings/forms/SettingsForm.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfileio::settings {

namespace {

/// The compound of a file, and the wells that it has marks of.
struct CChoice {
    std::int32_t compound;
    std::vector<std::int32_t> wellIDs;
};

template <class Section>
void SaveSection(CXmlFileArchive& archive, Section& section, const CChoice& choice) {
    if constexpr (std::is_same_v<Section, CPropRecordPlate>) {
        section.SaveShort(archive, choice.compound);
    } else if constexpr (std::is_same_v<Section, CPropAnalyzer>) {
        section.SaveWells(archive, choice.wellIDs);
    } else if constexpr (std::is_same_v<Section, CPropQualityCheck>) {
        section.Save(archive, false);
    } else {
        section.Save(archive);
    }
}

}  // namespace

void CSettingsWriter::SetXmlFileHeader(const CXmlFileHeader& header) {
    m_settings.Header = header;
    m_settings.Header.FileType = kSettingsFileType;
}

void CSettingsWriter::WriteFile(const std::string& path, std::int32_t compound) {
    const CPropRecordPlate& plate = m_settings.RecordPlate;
    plate.RequireCompound(compound);  // before the file is touched
    const bool isFirst = compound == CPropRecordPlate::kFirstCompound;
    const CChoice choice{compound, isFirst ? plate.GetActiveWellIDs() : plate.GetActiveCompoundWellIDs(compound)};
    const auto save = [&](CXmlFileArchive& archive) {
        m_settings.Header.Save(archive);
        archive.OpenChild(CSettingsForm::kElement);
        ForEachField(CSettingsForm::kFields,
                     [&](const auto& field) { SaveSection(archive, m_settings.*field.member, choice); });
        archive.CloseElement();
    };
    WriteDocument(path, kSettingsOpenFailed, m_writeError, save);
}

}  // namespace vxfileio::settings
