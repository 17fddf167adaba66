#include "vxfileio/frame/ISettingsReader.h"

#include "vxfileio/settings/SettingsReader.h"

using vxfileio::settings::CSettingsReader;

CISettingsReader::CISettingsReader() : m_reader(std::make_unique<CSettingsReader>()) {}
CISettingsReader::~CISettingsReader() = default;

void CISettingsReader::ReadFile(const std::string& path) { m_reader->ReadFile(path); }

const CXmlFileHeader* CISettingsReader::GetXmlFileHeader() const { return m_reader->GetXmlFileHeader(); }

const CPropControl* CISettingsReader::GetControlProperty() const { return m_reader->GetControlProperty(); }

const CPropNotebook* CISettingsReader::GetNotebookProperty() const { return m_reader->GetNotebookProperty(); }

const CPropRecordPlate* CISettingsReader::GetRecordPlateProperty() const { return m_reader->GetRecordPlateProperty(); }

const CPropRecording* CISettingsReader::GetRecordingProperty() const { return m_reader->GetRecordingProperty(); }

const CPropQualityCheck* CISettingsReader::GetQualityCheckProperty() const {
    return m_reader->GetQualityCheckProperty();
}

const CPropViability* CISettingsReader::GetViabilityProperty() const { return m_reader->GetViabilityProperty(); }

const CPropAnalyzer* CISettingsReader::GetAnalyzerProperty() const { return m_reader->GetAnalyzerProperty(); }

const CPropRobot* CISettingsReader::GetRobotProperty() const { return m_reader->GetRobotProperty(); }

const CPropWashIn* CISettingsReader::GetWashInProperty() const { return m_reader->GetWashInProperty(); }
