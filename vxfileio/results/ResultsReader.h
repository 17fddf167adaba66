#pragma once

#include <string>

#include "vxfileio/results/Results.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::results {

/// The implementation of `CIResultsReader`, which documents the operations.
class CResultsReader {
 public:
    void ReadFile(const std::string& path);
    const CResults* GetResults() const noexcept { return &m_results; }
    const CXmlFileHeader* GetXmlFileHeader() const noexcept { return &m_header; }

 private:
    CXmlFileHeader m_header;
    CResults m_results;
};

}  // namespace vxfileio::results
