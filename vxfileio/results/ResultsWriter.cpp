#include "vxfileio/results/ResultsWriter.h"

#include "vxfileio/results/ResultsFile.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfileio::results {

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
