#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "vxfileio/export/compound/DirectoryNode.h"

namespace vxfileio::compound {

/// The directory of a compound file: all entries in their order, the root first, then all others by name, whatever
/// storage they are in. Nodes stay where they are while others are added.
class CDirectory {
 public:
    /// Removes everything and starts with the root entry alone.
    void Reset();
    /// Removes everything, including the root.
    void Clear() { m_nodes.clear(); }

    /// Returns the root; null if there is none.
    DirectoryNode* Root() const { return m_nodes.empty() ? nullptr : m_nodes.front().get(); }
    /// Returns the number of entries.
    std::size_t Count() const { return m_nodes.size(); }

    /// Adds an entry to a storage that has none of its name, and returns its node.
    DirectoryNode* Add(DirectoryNode* parent, const DirectoryEntry& entry);

    /// Returns the bytes of the directory: all entries, and zeros to the end of the last sector.
    std::vector<std::byte> Encode() const;

 private:
    void MakeRoomAt(std::size_t place);

    std::vector<std::unique_ptr<DirectoryNode>> m_nodes;
};

}  // namespace vxfileio::compound
