#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <string>

/// Compares a header that was read with the one that was set. Its file type is the writer's. Throws `CDifference`.
void CheckXmlHeader(const CXmlFileHeader& read, const CXmlFileHeader& set, const std::string& fileType);
