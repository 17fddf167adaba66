#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/vxfile/report/Seal.h"
#include "verify/raw/RawScan.h"

namespace vxfile {

/// The parts of a raw data file in the order of the file: headers, segments, and bytes that belong to neither.
class CRawParts {
 public:
    /// Walks all chains of the scan, which must outlive this. Takes about 50 bytes per segment.
    explicit CRawParts(const CRawScan& scan);

    /// Calls `take` for each part. They cover the first `Size` bytes of the scan without a gap; checksums aren't set.
    void ForEach(const std::function<void(CSealedPart&)>& take) const;

    std::size_t Segments() const { return m_segments; }

    /// Returns a sentence for each sign that the file is unfinished or damaged. Such a file has more of them than this
    /// finds: samples aren't read, and cells aren't judged.
    const std::vector<std::string>& Doubts() const { return m_doubts; }

 private:
    /// A header or a segment. There may be millions.
    struct CPlace {
        std::int64_t offset = 0;
        std::int64_t length = 0;
        std::int64_t from = 0;
        std::int64_t to = 0;
        std::int32_t well = 0;
        std::uint32_t recording = 0;  ///< Index in the scan.
        CSealedPart::EKind kind = CSealedPart::EKind::Other;
    };

    void AddPlace(CPlace place);
    void AddRecording(std::uint32_t index, CSegmentBudget& budget);
    void AddGaps();
    CSealedPart PartAt(const CPlace& place) const;

    const CRawScan& m_scan;
    std::vector<CPlace> m_places;
    std::vector<std::string> m_doubts;
    std::size_t m_segments = 0;
};

}  // namespace vxfile
