#pragma once

#include <string>

#include "vxfileio/results/Results.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::results {

/// The work behind `CIResultsReader`, where the operations are told.
class CResultsReader {
 public:
    void ReadFile(const std::string& path);
    const CResults* GetResults() const { return &m_results; }
    const CXmlFileHeader* GetXmlFileHeader() const { return &m_header; }

 private:
    CXmlFileHeader m_header;
    CResults m_results;
};

}  // namespace vxfileio::results
