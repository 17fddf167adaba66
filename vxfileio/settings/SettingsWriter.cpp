#include "vxfileio/settings/SettingsWriter.h"

#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfileio::settings {

void CSettingsWriter::SetXmlFileHeader(const CXmlFileHeader& header) {
    m_header = header;
    m_header.FileType = vxfileio::settings::kSettingsFileType;
}

void CSettingsWriter::WriteFile(const std::string& path, std::int32_t compound) {
    m_recordPlate.RequireCompound(compound);  // while the file is still as it was
    const auto wells = compound == CPropRecordPlate::kFirstCompound ? m_recordPlate.GetActiveWellIDs()
                                                                    : m_recordPlate.GetActiveCompoundWellIDs(compound);
    const auto save = [&](CXmlFileArchive& archive) {
        m_header.Save(archive);
        archive.OpenChild(vxfileio::settings::kSettingsElement);
        m_control.Save(archive);
        m_notebook.Save(archive);
        m_robot.Save(archive);
        m_recordPlate.SaveShort(archive, compound);
        m_qualityCheck.Save(archive, false);
        m_washIn.Save(archive);
        m_recording.Save(archive);
        m_analyzer.SaveWells(archive, wells);
        archive.CloseElement();
    };
    xmlarchive::WriteDocument(path, vxfileio::settings::kSettingsOpenFailed, m_writeError, save);
}

}  // namespace vxfileio::settings
