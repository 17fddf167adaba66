#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "vxfileio/access/IndexData.h"
#include "vxfileio/access/RawDataFile.h"

namespace vxfileio::access {

/// Gives other rooms of this project what the public classes of bulk access keep private. Each reference is valid as
/// long as the object.
class CInternals {
 public:
    static const rawdata::CRawDataReader& ReaderOf(const CRawDataFile& file) noexcept { return *file.m_reader; }

    static const CSelectionData& DataOf(const CSampleSelection& selection) noexcept { return *selection.m_data; }

    /// Does the same as `CRawDataFile::ReadIndex`, and calls `check` before each header that it reads, unless it is
    /// empty. What `check` throws ends the call.
    static CRecordingIndex ReadIndex(const CRawDataFile& file, std::size_t recording, const CIndexOptions& options,
                                     const std::function<void()>& check);

    /// Returns the `Size` of a segment as its header has it. `CSegmentInfo::Samples` has the low 32 bits. Requires:
    /// `number` is below `GetSegmentCount()`.
    static std::int64_t SizeOf(const CRecordingIndex& index, std::size_t number) {
        const auto size = index.m_data->sizes.find(number);
        return size == index.m_data->sizes.end() ? index.m_data->segments.Row(number).samples : size->second;
    }
};

}  // namespace vxfileio::access
