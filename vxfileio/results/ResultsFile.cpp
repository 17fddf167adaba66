#include "vxfileio/results/ResultsFile.h"

#include <string_view>

#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfileio::results {

namespace {

constexpr std::string_view kResultsOpenFailed = "Could not open results file: ";

}  // namespace

void CResultsReader::ReadFile(const std::string& path) {
    const auto load = [&](CXmlFileArchive& archive) {
        m_header.Load(archive);
        m_results.Load(archive);
    };
    xmlarchive::ReadDocument(path, kResultsOpenFailed, xmlarchive::kResultsDocument.section, m_readError, load);
}

void CResultsWriter::SetXmlFileHeader(const CXmlFileHeader& header) {
    m_header = header;
    m_header.FileType = xmlarchive::kResultsDocument.fileType;
}

void CResultsWriter::WriteFile(const std::string& path, const CResults& results) {
    const auto save = [&](CXmlFileArchive& archive) {
        m_header.Save(archive);
        results.Save(archive);
    };
    xmlarchive::WriteDocument(path, kResultsOpenFailed, m_writeError, save);
}

}  // namespace vxfileio::results
