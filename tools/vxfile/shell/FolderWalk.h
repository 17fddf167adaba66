#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vxfile {

/// Something in a folder that is to be checked, or was to be.
struct CFolderEntry {
    std::string path;
    std::string failure = {};  ///< Of a folder that can't be looked into: why; empty for a file.
};

/// What a folder has, with its folders.
struct CFolderContent {
    std::vector<CFolderEntry> entries;  ///< In the order of their names.
    std::size_t passedOver = 0;         ///< Other files.
};

/// Finds the files of this system in a folder and in its folders: what has one of their extensions, whatever its
/// content is, and of other names what is of a known kind, or can't be read so that nobody knows. Links to folders
/// aren't followed. What can't be looked into is told as an entry. Throws `CInterruption` after
/// Ctrl-C, and nothing else.
CFolderContent WalkFolder(const std::string& folder);

}  // namespace vxfile
