#pragma once

#include <string>
#include <utility>

#include "vxfileio/results/Results.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::results {

/// The implementation of `CIResultsReader`, which documents the operations.
class CResultsReader {
 public:
    void ReadFile(const std::string& path);
    const CResults* GetResults() const noexcept { return &m_results; }
    const CXmlFileHeader* GetXmlFileHeader() const noexcept { return &m_header; }
    const std::string& GetReadError() const noexcept { return m_readError; }
    /// Returns the results without copying them; the reader's are then unspecified.
    CResults TakeResults() noexcept { return std::move(m_results); }

 private:
    CXmlFileHeader m_header;
    CResults m_results;
    std::string m_readError;
};

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
