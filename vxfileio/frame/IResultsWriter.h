#pragma once

#include "vxfileio/frame/Api.h"

/// The writer of results files.
///
/// It has no operations yet; its accessor in `CVXFileIO` stands.
class VXFILEIO_API CIResultsWriter {
 public:
    CIResultsWriter();
    ~CIResultsWriter();

    CIResultsWriter(const CIResultsWriter&) = delete;
    CIResultsWriter& operator=(const CIResultsWriter&) = delete;
};
