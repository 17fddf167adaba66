#pragma once

#include "vxfileio/frame/Api.h"

/// The reader of results files.
///
/// It has no operations yet; its accessor in `CVXFileIO` stands.
class VXFILEIO_API CIResultsReader {
 public:
    CIResultsReader();
    ~CIResultsReader();

    CIResultsReader(const CIResultsReader&) = delete;
    CIResultsReader& operator=(const CIResultsReader&) = delete;
};
