#include "vxfileio/frame/IRawDataWriter.h"

#include "vxfileio/rawdata/RawDataWriter.h"

using vxfileio::rawdata::CRawDataWriter;

CIRawDataWriter::CIRawDataWriter() : m_writer(std::make_unique<CRawDataWriter>()) {}
CIRawDataWriter::~CIRawDataWriter() = default;

void CIRawDataWriter::Open(const std::string& path) { m_writer->Open(path); }

void CIRawDataWriter::OpenNew(const std::string& path) { m_writer->OpenNew(path); }

void CIRawDataWriter::WriteFileHdr(const CRawDataFileHdr& header) { m_writer->WriteFileHdr(header); }

void CIRawDataWriter::WriteRecordingHdr(const CRawDataRecordingHdr& header) { m_writer->WriteRecordingHdr(header); }

void CIRawDataWriter::WriteData(std::int32_t wellID, std::int64_t timeFrom, std::int64_t timeTo, std::int64_t tick,
                                const std::uint16_t* samples) {
    m_writer->WriteData(wellID, timeFrom, timeTo, tick, samples);
}

void CIRawDataWriter::UpdateFileHdr(const std::string& taskName, const std::vector<std::string>& values) {
    m_writer->UpdateFileHdr(taskName, values);
}

void CIRawDataWriter::SetStrict(bool isStrict) { m_writer->SetStrict(isStrict); }

bool CIRawDataWriter::FlushToDisk() noexcept { return m_writer->FlushToDisk(); }

void CIRawDataWriter::Close() noexcept { m_writer->Close(); }

std::string CIRawDataWriter::GetWriteError() const { return m_writer->GetWriteError(); }
