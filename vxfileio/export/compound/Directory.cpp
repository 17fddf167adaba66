#include "vxfileio/export/compound/Directory.h"

#include <algorithm>

#include "vxfileio/helpers/FieldVisitors.h"

namespace vxfileio::compound {

void CDirectory::Reset() {
    Clear();
    const DirectoryEntry root(EEntryType::Root, "Root Entry");
    m_nodes.push_back(std::make_unique<DirectoryNode>(nullptr, root, 0U));
}

DirectoryNode* CDirectory::Add(DirectoryNode* parent, const DirectoryEntry& entry) {
    const auto isBelow = [](const auto& node, const DirectoryEntry& than) { return HasLowerName(node->entry, than); };
    const auto place = std::lower_bound(m_nodes.begin() + 1, m_nodes.end(), entry, isBelow) - m_nodes.begin();
    MakeRoomAt(static_cast<std::size_t>(place));
    const auto index = static_cast<std::uint32_t>(place);
    auto node = std::make_unique<DirectoryNode>(parent, entry, index);
    const auto added = m_nodes.insert(m_nodes.begin() + place, std::move(node));
    parent->AddChild(added->get());
    return added->get();
}

/// Increments every index at or above the place, in all entries.
void CDirectory::MakeRoomAt(std::size_t place) {
    const auto countUp = [place](std::uint32_t& index) {
        if (index != kNoEntry && index >= place) ++index;
    };
    for (const auto& node : m_nodes) {
        for (std::uint32_t* index : {&node->index, &node->entry.left, &node->entry.right, &node->entry.child})
            countUp(*index);
    }
}

std::vector<std::byte> CDirectory::Encode() const {
    const std::size_t size = m_nodes.size() * kDirectoryEntrySize;
    std::vector<std::byte> bytes((size + kSectorSize - 1) / kSectorSize * kSectorSize);
    helpers::CFieldStore store(bytes.data());
    for (const auto& node : m_nodes)
        store(node->entry);
    return bytes;
}

}  // namespace vxfileio::compound
