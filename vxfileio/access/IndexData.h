#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "vxfileio/access/SegmentTable.h"
#include "vxfileio/rawdata/RawDataReader.h"

namespace vxfileio::access {

/// What a `CRecordingIndex` holds. Immutable once it is built.
struct CIndexData {
    std::shared_ptr<const rawdata::CRawDataReader> reader;
    std::size_t recording = 0;                                  ///< In file order.
    std::vector<CRawDataChannelInfo> wells = {};                ///< As `CRecordingIndex::GetWells` returns them.
    std::unordered_map<std::int32_t, std::uint32_t> rows = {};  ///< Index in `wells` by well ID.
    CSegmentTable segments = {};
    std::unordered_map<std::size_t, std::int64_t> sizes = {};  ///< `Size` by segment, if 32 bits don't hold it.
    std::int64_t fileSize = 0;                                 ///< When the last segment had been read.
    std::uint64_t certain = 0;
    std::string damage = {};

    const CRawDataRecordingHdr& Header() const { return reader->Recordings()[recording]; }
};

}  // namespace vxfileio::access
