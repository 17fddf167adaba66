#include "vxfileio/results/ResultsReader.h"

#include "vxfileio/results/ResultsFile.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfileio::results {

void CResultsReader::ReadFile(const std::string& path) {
    xmlarchive::ReadDocument(path, kResultsOpenFailed, [&](CXmlFileArchive& archive) {
        m_header.Load(archive);
        m_results.Load(archive);
    });
}

}  // namespace vxfileio::results
