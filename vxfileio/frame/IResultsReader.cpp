#include "vxfileio/frame/IResultsReader.h"

CIResultsReader::CIResultsReader() = default;
CIResultsReader::~CIResultsReader() = default;
