#include "vxfileio/frame/IResultsWriter.h"

CIResultsWriter::CIResultsWriter() = default;
CIResultsWriter::~CIResultsWriter() = default;
