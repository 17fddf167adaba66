#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include "verify/Failure.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

/// Returns what to do about a path with a backslash that couldn't be opened: the library separates folders by it on
/// every system. Empty for other paths.
inline std::string BackslashAdvice(const std::string& path) {
    const std::string opened = vxfileio::helpers::NativePath(path);
    if (opened == path) return {};
    return ". A backslash separates folders, so this is " + opened + "; use a name without it.";
}

/// Opens a file for reading. Throws `CFailure`, with advice, if it can't be opened, or if it is a pipe or a device,
/// which can only be read sequentially.
inline void OpenInput(vxfileio::helpers::CFile& file, const std::string& path) {
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    if (std::filesystem::is_other(status))
        throw CFailure(
            path +
            " is a pipe or a device, which can only be read from front to back; save it to a file and name that.");
    if (file.OpenForReading(path)) return;
    if (path == "-")
        throw CFailure("Standard input can only be read from front to back; save it to a file and name that.");
    if (std::filesystem::is_directory(status))
        throw CFailure(path + " is a folder; name a file in it. vxfile verify checks whole folders.");
    const std::string advice = BackslashAdvice(path);
    throw CFailure("Can't open " + path + ": " + file.Failure().error.message() +
                   (advice.empty() ? "; check the name and its rights." : advice));
}

}  // namespace vxfile
