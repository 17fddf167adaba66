#include "vxfileio/rawdata/Layout.h"

#include <algorithm>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"

namespace vxfileio::rawdata {

const CLayout& LayoutOf(std::int32_t version) noexcept {
    const auto layouts = Layouts();
    const CLayout* found = &layouts.front();
    for (const CLayout& layout : layouts) {
        if (layout.version <= version) found = &layout;
    }
    return *found;
}

const CLayout& LayoutForWriting(std::int32_t version) noexcept {
    return LayoutOf(std::max(version, kOldestWrittenVersion));
}

const CLayout& LayoutOfFile(std::string_view bytes) noexcept {
    const CFileCell* const cell = Layouts().front().file.Find("FileVersion");
    return LayoutOf(helpers::ParseInt32(CellValue(CellIn(*cell, bytes))));
}

std::size_t LargestFileHdr() noexcept {
    std::size_t largest = 0;
    for (const CLayout& layout : Layouts())
        largest = std::max(largest, layout.file.size);
    return largest;
}

}  // namespace vxfileio::rawdata
