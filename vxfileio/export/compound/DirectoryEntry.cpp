#include "vxfileio/export/compound/DirectoryEntry.h"

#include <algorithm>
#include <tuple>

namespace vxfileio::compound {

DirectoryEntry::DirectoryEntry(vxfileio::compound::EEntryType entryType, std::string_view bytesOfName)
    : nameSize(static_cast<std::uint16_t>(2 * bytesOfName.size() + 2)), type(static_cast<std::uint8_t>(entryType)) {
    std::transform(bytesOfName.begin(), bytesOfName.end(), name.begin(),
                   [](char byte) { return static_cast<unsigned char>(byte); });
}

bool HasLowerName(const DirectoryEntry& a, const DirectoryEntry& b) {
    return std::tie(a.nameSize, a.name) < std::tie(b.nameSize, b.name);
}

}  // namespace vxfileio::compound
