#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "vxfileio/access/IndexData.h"
#include "vxfileio/rawdata/HeaderWindow.h"
#include "vxfileio/rawdata/RawDataFormat.h"

namespace vxfileio::access {

/// Builds the index of one recording by one walk along its segments. Use one object for one index.
class CIndexBuilder {
 public:
    /// Calls `check` before each header that it reads, unless it is empty; what it throws ends the walk. `check` must
    /// outlive this object. Requires: the file has this recording.
    CIndexBuilder(std::shared_ptr<const rawdata::CRawDataReader> reader, std::size_t recording,
                  const std::function<void()>& check);

    /// Follows the chain of a finished recording. If it is damaged, the index has the segments before the damage and
    /// the text of the failure.
    std::shared_ptr<const CIndexData> BuildFinished();

    /// Finds the whole segments of an unfinished recording, from its header on.
    std::shared_ptr<const CIndexData> BuildUnfinished();

 private:
    std::int64_t EndOfHdr() const;
    [[nodiscard]] bool ReadHdr(std::int64_t position, rawdata::CSegmentHdr& header);
    [[nodiscard]] bool ReadWhole(std::int64_t position, bool isPointedTo, rawdata::CSegmentHdr& header);
    [[nodiscard]] bool Settle(std::int64_t position, rawdata::CSegmentHdr& header);
    void Add(std::int64_t position, const rawdata::CSegmentHdr& header);
    std::uint32_t WellOf(std::int32_t id);

    std::shared_ptr<CIndexData> m_index;
    const helpers::CFile& m_file;
    const rawdata::CLayout& m_layout;
    rawdata::CHeaderWindow m_window;
    const std::function<void()>& m_check;
};

}  // namespace vxfileio::access
