#include "vxfileio/results/ResultsReader.h"

#include "vxfileio/results/ResultsFile.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

void CResultsReader::ReadFile(const std::string& path) {
    vxfileio::ReadDocument(path, vxfileio::results::kResultsOpenFailed, [&](CXmlFileArchive& archive) {
        m_header.Load(archive);
        m_results.Load(archive);
    });
}
