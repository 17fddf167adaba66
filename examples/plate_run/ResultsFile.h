#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <string>

/// Writes a results file.
void WriteResults(CIResultsWriter& writer, const CXmlFileHeader& header, const CResults& results,
                  const std::string& path);

/// Reads a results file and compares it with what was written. Throws `CDifference` at the first difference.
void CheckResults(CIResultsReader& reader, const CXmlFileHeader& header, const CResults& results,
                  const std::string& path);
