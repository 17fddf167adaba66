#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vxfile {

/// An entry of a folder that is to be checked, or couldn't be.
struct CFolderEntry {
    std::string path;
    std::string failure = {};  ///< The reason why a folder can't be read; empty for a file.
};

/// The contents of a folder and its subfolders.
struct CFolderContent {
    std::vector<CFolderEntry> entries;  ///< Sorted by name.
    std::size_t passedOver = 0;         ///< The number of other files.
};

/// Finds the files of this system in a folder and its subfolders: files with one of its extensions, and other files if
/// their content is of a known kind or can't be read. Doesn't follow links to folders. What can't be read becomes an
/// entry. Throws only `CInterruption`, after Ctrl-C.
CFolderContent WalkFolder(const std::string& folder);

}  // namespace vxfile
