#include "vxfileio/frame/IResultsWriter.h"

#include "vxfileio/results/ResultsFile.h"

using vxfileio::results::CResultsWriter;

CIResultsWriter::CIResultsWriter() : m_writer(std::make_unique<CResultsWriter>()) {}
CIResultsWriter::~CIResultsWriter() = default;

void CIResultsWriter::SetXmlFileHeader(const CXmlFileHeader& header) { m_writer->SetXmlFileHeader(header); }

void CIResultsWriter::WriteFile(const std::string& path, const CResults& results) {
    m_writer->WriteFile(path, results);
}

std::string CIResultsWriter::GetWriteError() const { return m_writer->GetWriteError(); }
