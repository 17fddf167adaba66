#pragma once

#include "vxfileio/frame/Api.h"

/// The export of results to spreadsheet workbooks.
///
/// It has no operations yet; its accessor in `CVXFileIO` stands.
class VXFILEIO_API CIResultsExport {
 public:
    CIResultsExport();
    ~CIResultsExport();

    CIResultsExport(const CIResultsExport&) = delete;
    CIResultsExport& operator=(const CIResultsExport&) = delete;
};
