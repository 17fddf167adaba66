#pragma once

#include <string>

#include "vxfileio/results/Results.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::results {

/// The implementation of `CIResultsWriter`, which documents the operations.
class CResultsWriter {
 public:
    void SetXmlFileHeader(const CXmlFileHeader& header);
    void WriteFile(const std::string& path, const CResults& results);
    const std::string& GetWriteError() const { return m_writeError; }

 private:
    CXmlFileHeader m_header;
    std::string m_writeError;
};

}  // namespace vxfileio::results
