#include "vxfileio/frame/IResultsExport.h"

CIResultsExport::CIResultsExport() = default;
CIResultsExport::~CIResultsExport() = default;
