#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "vxfileio/export/compound/DirectoryNode.h"

namespace vxfileio::compound {

/// The directory of a compound file: the root, then all other entries sorted by name, regardless of their storages.
/// Nodes don't move when others are added.
class CDirectory {
 public:
    /// Removes everything except a new root entry.
    void Reset();
    /// Removes everything, including the root.
    void Clear() { m_nodes.clear(); }

    /// Returns the root; null if there is none.
    DirectoryNode* Root() const { return m_nodes.empty() ? nullptr : m_nodes.front().get(); }
    /// Returns the number of entries.
    std::size_t Count() const { return m_nodes.size(); }

    /// Adds an entry to a storage that has none with this name, and returns its node.
    DirectoryNode* Add(DirectoryNode* parent, const DirectoryEntry& entry);

    /// Returns the bytes of the directory, padded with zeros to whole sectors.
    std::vector<std::byte> Encode() const;

 private:
    void MakeRoomAt(std::size_t place);

    std::vector<std::unique_ptr<DirectoryNode>> m_nodes;
};

}  // namespace vxfileio::compound
