#include "vxfileio/results/ResultsFile.h"

#include <string_view>

#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfileio::results {

namespace {

constexpr std::string_view kResultsFileType = "VXResults";
constexpr std::string_view kResultsOpenFailed = "Could not open results file: ";

}  // namespace

void CResultsReader::ReadFile(const std::string& path) {
    xmlarchive::ReadDocument(path, kResultsOpenFailed, [&](CXmlFileArchive& archive) {
        m_header.Load(archive);
        m_results.Load(archive);
    });
}

void CResultsWriter::SetXmlFileHeader(const CXmlFileHeader& header) {
    m_header = header;
    m_header.FileType = kResultsFileType;
}

void CResultsWriter::WriteFile(const std::string& path, const CResults& results) {
    const auto save = [&](CXmlFileArchive& archive) {
        m_header.Save(archive);
        results.Save(archive);
    };
    xmlarchive::WriteDocument(path, kResultsOpenFailed, m_writeError, save);
}

}  // namespace vxfileio::results
