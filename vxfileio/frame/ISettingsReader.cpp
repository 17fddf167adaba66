#include "vxfileio/frame/ISettingsReader.h"

#include "vxfileio/settings/SettingsReader.h"

using vxfileio::settings::CSettingsReader;

CISettingsReader::CISettingsReader() : m_reader(std::make_unique<CSettingsReader>()) {}
CISettingsReader::~CISettingsReader() = default;

void CISettingsReader::ReadFile(const std::string& path) { m_reader->ReadFile(path); }

const CXmlFileHeader* CISettingsReader::GetXmlFileHeader() const { return &m_reader->Get().Header; }

const CPropControl* CISettingsReader::GetControlProperty() const { return &m_reader->Get().Control; }

const CPropNotebook* CISettingsReader::GetNotebookProperty() const { return &m_reader->Get().Notebook; }

const CPropRecordPlate* CISettingsReader::GetRecordPlateProperty() const { return &m_reader->Get().RecordPlate; }

const CPropRecording* CISettingsReader::GetRecordingProperty() const { return &m_reader->Get().Recording; }

const CPropQualityCheck* CISettingsReader::GetQualityCheckProperty() const { return &m_reader->Get().QualityCheck; }

const CPropViability* CISettingsReader::GetViabilityProperty() const { return &m_reader->Get().Viability; }

const CPropAnalyzer* CISettingsReader::GetAnalyzerProperty() const { return &m_reader->Get().Analyzer; }

const CPropRobot* CISettingsReader::GetRobotProperty() const { return &m_reader->Get().Robot; }

const CPropWashIn* CISettingsReader::GetWashInProperty() const { return &m_reader->Get().WashIn; }
