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
    std::uint32_t index;                   ///< Of the entry in the directory.
    std::vector<DirectoryNode*> children;  ///< By index, which is the order of their names too.

    DirectoryNode(DirectoryNode* storage, const DirectoryEntry& newEntry, std::uint32_t itsIndex)
        : parent(storage), entry(newEntry), index(itsIndex) {}

    /// Returns the child of this name, or null.
    DirectoryNode* FindChild(std::string_view name) const;

    /// Adds a child that has its index, and links all of them anew.
    void AddChild(DirectoryNode* child);

 private:
    void LinkChildren();
};

}  // namespace vxfileio::compound
