#include "vxfileio/frame/ISettingsReader.h"

#include "vxfileio/settings/SettingsFile.h"

using vxfileio::settings::CSettingsReader;

CISettingsReader::CISettingsReader() : m_reader(std::make_unique<CSettingsReader>()) {}
CISettingsReader::~CISettingsReader() = default;

void CISettingsReader::ReadFile(const std::string& path) { m_reader->ReadFile(path); }

std::string CISettingsReader::GetReadError() const { return m_reader->GetReadError(); }

const CXmlFileHeader* CISettingsReader::GetXmlFileHeader() const noexcept { return &m_reader->Get().Header; }

const CPropControl* CISettingsReader::GetControlProperty() const noexcept { return &m_reader->Get().Control; }

const CPropNotebook* CISettingsReader::GetNotebookProperty() const noexcept { return &m_reader->Get().Notebook; }

const CPropRecordPlate* CISettingsReader::GetRecordPlateProperty() const noexcept {
    return &m_reader->Get().RecordPlate;
}

const CPropRecording* CISettingsReader::GetRecordingProperty() const noexcept { return &m_reader->Get().Recording; }

const CPropQualityCheck* CISettingsReader::GetQualityCheckProperty() const noexcept {
    return &m_reader->Get().QualityCheck;
}

const CPropViability* CISettingsReader::GetViabilityProperty() const noexcept { return &m_reader->Get().Viability; }

const CPropAnalyzer* CISettingsReader::GetAnalyzerProperty() const noexcept { return &m_reader->Get().Analyzer; }

const CPropRobot* CISettingsReader::GetRobotProperty() const noexcept { return &m_reader->Get().Robot; }

const CPropWashIn* CISettingsReader::GetWashInProperty() const noexcept { return &m_reader->Get().WashIn; }
