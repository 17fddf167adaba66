#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include "verify/Failure.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

/// Opens a file for reading. Throws `CFailure`, with advice, if it can't be opened, or if it is a pipe or a device,
/// which can only be read sequentially.
inline void OpenInput(vxfileio::helpers::CFile& file, const std::string& path) {
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    if (std::filesystem::is_other(status))
        throw CFailure(
            path + " is a pipe or a device, which is read from front to back alone; put it into a file and name that.");
    if (file.OpenForReading(path)) return;
    if (path == "-")
        throw CFailure("Standard input is read from front to back alone; put it into a file and name that.");
    if (std::filesystem::is_directory(status))
        throw CFailure(path + " is a folder; name a file in it. vxfile verify checks whole folders.");
    throw CFailure("Can't open " + path + ": " + file.Failure().error.message() + "; check the name and its rights.");
}

}  // namespace vxfile
