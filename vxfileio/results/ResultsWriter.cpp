#include "vxfileio/results/ResultsWriter.h"

#include "vxfileio/results/ResultsFile.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

void CResultsWriter::SetXmlFileHeader(const CXmlFileHeader& header) {
    m_header = header;
    m_header.FileType = vxfileio::results::kResultsFileType;
}

void CResultsWriter::WriteFile(const std::string& path, const CResults& results) {
    const auto save = [&](CXmlFileArchive& archive) {
        m_header.Save(archive);
        results.Save(archive);
    };
    vxfileio::WriteDocument(path, vxfileio::results::kResultsOpenFailed, m_writeError, save);
}
