#pragma once

#include "vxfileio/results/Results.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::results {

/// The content of a results file.
struct CResultsContent : CResults {
    CXmlFileHeader Header;
};

}  // namespace vxfileio::results
