#include "vxfileio/settings/SettingsReader.h"

#include <algorithm>
#include <vector>

#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/settings/forms/SettingsForm.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfileio::settings {

void CSettingsReader::ReadFile(const std::string& path) {
    ReadDocument(path, kSettingsOpenFailed, [&](CXmlFileArchive& archive) {
        m_settings.Header.Load(archive);
        ForEachEventUntil(archive, CSettingsForm::kElement, [&] {
            if (GetField(archive, CSettingsForm::kFields, m_settings)) return;
            if (IsStartOf(archive, CXmlForm<CPropRecording>::kOlderElement)) m_settings.Recording.Load(archive);
        });
    });
    if (m_settings.Header.FileVersion < kFirstVersionWithMarks) MakeMarks();
}

/// Makes up the marks that older files don't have: default ones for each dose that has a text and each active well.
void CSettingsReader::MakeMarks() {
    const std::vector<std::int32_t> wells = m_settings.RecordPlate.GetActiveWellIDs();
    const std::size_t room = kMostMadeMarks / std::max<std::size_t>(wells.size(), 1);
    const std::size_t recordings = std::min(m_settings.RecordPlate.GetSeriesLabels().size(), room);
    m_settings.Analyzer.InitTask(enTask::Series, static_cast<std::int32_t>(recordings), wells);
}

}  // namespace vxfileio::settings
