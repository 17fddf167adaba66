#pragma once

#include <string>

#include "vxfileio/results/Results.h"
#include "vxfileio/settings/XmlFileHeader.h"

/// The work behind `CIResultsWriter`, where the operations are told.
class CResultsWriter {
 public:
    void SetXmlFileHeader(const CXmlFileHeader& header);
    void WriteFile(const std::string& path, const CResults& results) const;

 private:
    CXmlFileHeader m_header;
};
