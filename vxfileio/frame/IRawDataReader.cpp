#include "vxfileio/frame/IRawDataReader.h"

#include "vxfileio/rawdata/RawDataReader.h"

using vxfileio::rawdata::CRawDataReader;

CIRawDataReader::CIRawDataReader() : m_reader(std::make_unique<CRawDataReader>()) {}
CIRawDataReader::~CIRawDataReader() = default;

void CIRawDataReader::Open(const std::string& path) { m_reader->Open(path); }

const CRawDataFileHdr* CIRawDataReader::GetFileHdr() const noexcept { return m_reader->GetFileHdr(); }

const CRawDataIndex* CIRawDataReader::GetIndex() const noexcept { return m_reader->GetIndex(); }

std::vector<std::string> CIRawDataReader::GetTasks() const { return m_reader->GetTasks(); }

std::vector<std::int64_t> CIRawDataReader::GetDoses(const std::string& taskName, std::int32_t wellID) const {
    return m_reader->GetDoses(taskName, wellID);
}

std::vector<std::int32_t> CIRawDataReader::GetWellIDs(const std::string& taskName) const {
    return m_reader->GetWellIDs(taskName);
}

std::vector<std::int32_t> CIRawDataReader::GetWellIDs(const std::string& taskName, std::int32_t recording) const {
    return m_reader->GetWellIDs(taskName, recording);
}

const CRawDataRecordingHdr* CIRawDataReader::GetRecordingHdr(const std::string& taskName,
                                                             std::int32_t recording) const {
    return m_reader->GetRecordingHdr(taskName, recording);
}

void CIRawDataReader::SelectWellID(std::int32_t wellID) noexcept { m_reader->SelectWellID(wellID); }

bool CIRawDataReader::JumpToData(const std::string& taskName, std::int32_t recording) {
    return m_reader->JumpToData(taskName, recording);
}

bool CIRawDataReader::ReadSegment(std::int32_t& wellID, std::int64_t& timeFrom, std::int64_t& timeTo,
                                  std::uint32_t& size, std::uint16_t*& samples) {
    return m_reader->ReadSegment(wellID, timeFrom, timeTo, size, samples);
}
