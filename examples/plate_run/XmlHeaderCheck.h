#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <string>

/// Compares a header that was read with the one that was set, except for the file type, which the writer sets. Throws
/// `CDifference` if they differ.
void CheckXmlHeader(const CXmlFileHeader& read, const CXmlFileHeader& set, const std::string& fileType);
