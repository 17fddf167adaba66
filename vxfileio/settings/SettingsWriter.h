#pragma once

#include <cstdint>
#include <string>

#include "vxfileio/settings/PropAnalyzer.h"
#include "vxfileio/settings/PropControl.h"
#include "vxfileio/settings/PropNotebook.h"
#include "vxfileio/settings/PropQualityCheck.h"
#include "vxfileio/settings/PropRecordPlate.h"
#include "vxfileio/settings/PropRecording.h"
#include "vxfileio/settings/PropRobot.h"
#include "vxfileio/settings/PropWashIn.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::settings {

/// The work behind `CISettingsWriter`, where the operations are told.
class CSettingsWriter {
 public:
    void SetXmlFileHeader(const CXmlFileHeader& header);
    void SetControlProperty(const CPropControl& property) { m_control = property; }
    void SetNotebookProperty(const CPropNotebook& property) { m_notebook = property; }
    void SetRobotProperty(const CPropRobot& property) { m_robot = property; }
    void SetRecordPlateProperty(const CPropRecordPlate& property) { m_recordPlate = property; }
    void SetQualityCheckProperty(const CPropQualityCheck& property) { m_qualityCheck = property; }
    void SetWashInProperty(const CPropWashIn& property) { m_washIn = property; }
    void SetRecordingProperty(const CPropRecording& property) { m_recording = property; }
    void SetAnalyzerProperty(const CPropAnalyzer& property) { m_analyzer = property; }
    void WriteFile(const std::string& path, std::int32_t compound);
    const std::string& GetWriteError() const { return m_writeError; }

 private:
    CXmlFileHeader m_header;
    CPropControl m_control;
    CPropNotebook m_notebook;
    CPropRobot m_robot;
    CPropRecordPlate m_recordPlate;
    CPropQualityCheck m_qualityCheck;
    CPropWashIn m_washIn;
    CPropRecording m_recording;
    CPropAnalyzer m_analyzer;
    std::string m_writeError;
};

}  // namespace vxfileio::settings
