#include "vxfileio/rawdata/TableCodec.h"

namespace vxfileio::rawdata {

/// Nothing else is defined in this file, so that a test program can replace it by linking its own.
std::span<const CLayout> Layouts() noexcept {
    static constexpr auto kLayouts = MakeLayouts<kVersions, kFileCells, kRecordingCells, kSegmentCells>();
    return kLayouts;
}

}  // namespace vxfileio::rawdata
