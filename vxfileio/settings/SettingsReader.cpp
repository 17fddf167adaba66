#include "vxfileio/settings/SettingsReader.h"

#include <algorithm>
#include <vector>

#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/xmlarchive/XmlDocument.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::settings {

void CSettingsReader::ReadFile(const std::string& path) {
    xmlarchive::ReadDocument(path, vxfileio::settings::kSettingsOpenFailed, [&](CXmlFileArchive& archive) {
        m_header.Load(archive);
        xmlarchive::ForEachEventUntil(archive, vxfileio::settings::kSettingsElement, [&] { LoadSection(archive); });
    });
    if (m_header.FileVersion < vxfileio::settings::kFirstVersionWithMarks) MakeMarks();
}

/// Makes up the marks that older files don't have: default ones for every dose that has a text and every active well.
void CSettingsReader::MakeMarks() {
    const std::vector<std::int32_t> wells = m_recordPlate.GetActiveWellIDs();
    const std::size_t room = vxfileio::settings::kMostMadeMarks / std::max<std::size_t>(wells.size(), 1);
    const std::size_t recordings = std::min(m_recordPlate.GetSeriesLabels().size(), room);
    m_analyzer.InitTask(enTask::Series, static_cast<std::int32_t>(recordings), wells);
}

/// Reads the section whose start the archive stands at; anything else passes by.
void CSettingsReader::LoadSection(CXmlFileArchive& archive) {
    const auto at = [&](std::string_view element) { return xmlarchive::IsStartOf(archive, element); };
    if (at(vxfileio::settings::kControlElement)) return m_control.Load(archive);
    if (at(vxfileio::settings::kNotebookElement)) return m_notebook.Load(archive);
    if (at(vxfileio::settings::kRobotElement)) return m_robot.Load(archive);
    if (at(vxfileio::settings::kRecordPlateElement)) return m_recordPlate.LoadShort(archive);
    if (at(vxfileio::settings::kQualityCheckElement)) return m_qualityCheck.Load(archive);
    if (at(vxfileio::settings::kWashInElement)) return m_washIn.Load(archive);
    if (at(vxfileio::settings::kRecordingElement) || at(vxfileio::settings::kOlderRecordingElement))
        return m_recording.Load(archive);
    if (at(vxfileio::settings::kAnalyzerElement)) return m_analyzer.Load(archive);
}

}  // namespace vxfileio::settings
