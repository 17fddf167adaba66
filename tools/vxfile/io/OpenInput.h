#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include "tools/vxfile/io/Failure.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

/// Opens a file for reading. Throws `CFailure`, in a sentence that says what to do, if that can't be done.
inline void OpenInput(vxfileio::CFile& file, const std::string& path) {
    if (file.OpenForReading(path)) return;
    if (path == "-") throw CFailure("Standard input can't be read, as files are read here and there; name a file.");
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        throw CFailure(path + " is a folder; name a file in it. vxfile verify checks whole folders.");
    throw CFailure("Can't open " + path + ": " + file.Failure().error.message() + "; check the name and its rights.");
}

}  // namespace vxfile
