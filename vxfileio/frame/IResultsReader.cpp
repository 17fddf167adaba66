#include "vxfileio/frame/IResultsReader.h"

#include "vxfileio/results/ResultsFile.h"

using vxfileio::results::CResultsReader;

CIResultsReader::CIResultsReader() : m_reader(std::make_unique<CResultsReader>()) {}
CIResultsReader::~CIResultsReader() = default;

void CIResultsReader::ReadFile(const std::string& path) { m_reader->ReadFile(path); }

std::string CIResultsReader::GetReadError() const { return m_reader->GetReadError(); }

const CResults* CIResultsReader::GetResults() const noexcept { return m_reader->GetResults(); }

const CXmlFileHeader* CIResultsReader::GetXmlFileHeader() const noexcept { return m_reader->GetXmlFileHeader(); }
