#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "vxfileio/export/compound/DirectoryEntry.h"

namespace vxfileio::compound {

/// An entry of the directory and its place in the tree of storages. Nodes belong to the directory.
struct DirectoryNode {
    DirectoryNode* parent;  ///< Null for the root.
    DirectoryEntry entry;
    std::uint32_t index;                   ///< Index of the entry in the directory.
    std::vector<DirectoryNode*> children;  ///< Sorted by index, and so by name.

    DirectoryNode(DirectoryNode* storage, const DirectoryEntry& newEntry, std::uint32_t itsIndex)
        : parent(storage), entry(newEntry), index(itsIndex) {}

    /// Returns the child with this name, or null.
    DirectoryNode* FindChild(std::string_view name) const;

    /// Adds a child whose index is set, and updates all links.
    void AddChild(DirectoryNode* child);

 private:
    void LinkChildren();
};

}  // namespace vxfileio::compound
