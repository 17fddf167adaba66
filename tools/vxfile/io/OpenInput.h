#pragma once

#include <string>

#include "tools/vxfile/io/Failure.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

/// Opens a file for reading. Throws `CFailure`, in a sentence that says what to do, if that can't be done.
inline void OpenInput(vxfileio::CFile& file, const std::string& path) {
    if (file.OpenForReading(path)) return;
    if (path == "-") throw CFailure("Standard input can't be read, as files are read here and there; name a file.");
    throw CFailure("Can't open " + path + ": " + file.Failure().error.message() + "; check the name and its rights.");
}

}  // namespace vxfile
