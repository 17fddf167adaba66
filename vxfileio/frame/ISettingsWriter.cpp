#include "vxfileio/frame/ISettingsWriter.h"

#include "vxfileio/settings/SettingsFile.h"

using vxfileio::settings::CSettingsWriter;

CISettingsWriter::CISettingsWriter() : m_writer(std::make_unique<CSettingsWriter>()) {}
CISettingsWriter::~CISettingsWriter() = default;

void CISettingsWriter::SetXmlFileHeader(const CXmlFileHeader& header) { m_writer->SetXmlFileHeader(header); }

void CISettingsWriter::SetControlProperty(const CPropControl& property) { m_writer->Content().Control = property; }

void CISettingsWriter::SetNotebookProperty(const CPropNotebook& property) { m_writer->Content().Notebook = property; }

void CISettingsWriter::SetRobotProperty(const CPropRobot& property) { m_writer->Content().Robot = property; }

void CISettingsWriter::SetRecordPlateProperty(const CPropRecordPlate& property) {
    m_writer->Content().RecordPlate = property;
}

void CISettingsWriter::SetQualityCheckProperty(const CPropQualityCheck& property) {
    m_writer->Content().QualityCheck = property;
}

void CISettingsWriter::SetWashInProperty(const CPropWashIn& property) { m_writer->Content().WashIn = property; }

void CISettingsWriter::SetRecordingProperty(const CPropRecording& property) {
    m_writer->Content().Recording = property;
}

void CISettingsWriter::SetAnalyzerProperty(const CPropAnalyzer& property) { m_writer->Content().Analyzer = property; }

void CISettingsWriter::WriteFile(const std::string& path) {
    m_writer->WriteFile(path, CPropRecordPlate::kFirstCompound);
}

void CISettingsWriter::WriteFile(const std::string& path, std::int32_t compound) {
    m_writer->WriteFile(path, compound);
}

std::string CISettingsWriter::GetWriteError() const { return m_writer->GetWriteError(); }
