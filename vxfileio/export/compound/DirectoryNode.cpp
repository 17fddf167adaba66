#include "vxfileio/export/compound/DirectoryNode.h"

#include <algorithm>

namespace vxfileio::compound {

DirectoryNode* DirectoryNode::FindChild(std::string_view name) const {
    if (name.size() >= kNameUnits) return nullptr;
    const DirectoryEntry wanted(EEntryType::Stream, name);
    const auto isBelow = [](const DirectoryNode* node, const DirectoryEntry& than) {
        return HasLowerName(node->entry, than);
    };
    const auto found = std::lower_bound(children.begin(), children.end(), wanted, isBelow);
    return found == children.end() || HasLowerName(wanted, (*found)->entry) ? nullptr : *found;
}

void DirectoryNode::AddChild(DirectoryNode* child) {
    const auto isBelow = [](const DirectoryNode* node, std::uint32_t than) { return node->index < than; };
    children.insert(std::lower_bound(children.begin(), children.end(), child->index, isBelow), child);
    LinkChildren();
}

/// The middle child is the parent's child. Lower ones form a chain to the left, higher ones a chain to the right.
void DirectoryNode::LinkChildren() {
    const std::size_t middle = children.size() / 2;
    const auto indexAt = [this](std::size_t i) { return children[i]->index; };
    for (std::size_t i = 0; i < children.size(); ++i) {
        const bool goesLeft = i > 0 && i <= middle;
        const bool goesRight = i >= middle && i + 1 < children.size();
        children[i]->entry.left = goesLeft ? indexAt(i - 1) : kNoEntry;
        children[i]->entry.right = goesRight ? indexAt(i + 1) : kNoEntry;
    }
    entry.child = indexAt(middle);
}

}  // namespace vxfileio::compound
