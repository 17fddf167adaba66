#pragma once

#include <string>

#include "vxfileio/settings/PropAnalyzer.h"
#include "vxfileio/settings/PropControl.h"
#include "vxfileio/settings/PropNotebook.h"
#include "vxfileio/settings/PropQualityCheck.h"
#include "vxfileio/settings/PropRecordPlate.h"
#include "vxfileio/settings/PropRecording.h"
#include "vxfileio/settings/PropRobot.h"
#include "vxfileio/settings/PropViability.h"
#include "vxfileio/settings/PropWashIn.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::settings {

/// The work behind `CISettingsReader`, where the operations are told.
class CSettingsReader {
 public:
    void ReadFile(const std::string& path);
    const CXmlFileHeader* GetXmlFileHeader() const { return &m_header; }
    const CPropControl* GetControlProperty() const { return &m_control; }
    const CPropNotebook* GetNotebookProperty() const { return &m_notebook; }
    const CPropRecordPlate* GetRecordPlateProperty() const { return &m_recordPlate; }
    const CPropRecording* GetRecordingProperty() const { return &m_recording; }
    const CPropQualityCheck* GetQualityCheckProperty() const { return &m_qualityCheck; }
    const CPropViability* GetViabilityProperty() const { return &m_viability; }
    const CPropAnalyzer* GetAnalyzerProperty() const { return &m_analyzer; }
    const CPropRobot* GetRobotProperty() const { return &m_robot; }
    const CPropWashIn* GetWashInProperty() const { return &m_washIn; }

 private:
    void LoadSection(CXmlFileArchive& archive);
    void MakeMarks();

    CXmlFileHeader m_header;
    CPropControl m_control;
    CPropNotebook m_notebook;
    CPropRecordPlate m_recordPlate;
    CPropRecording m_recording;
    CPropQualityCheck m_qualityCheck;
    CPropViability m_viability;  ///< No settings file holds it.
    CPropAnalyzer m_analyzer;
    CPropRobot m_robot;
    CPropWashIn m_washIn;
};

}  // namespace vxfileio::settings
