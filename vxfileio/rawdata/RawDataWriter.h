#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vxfileio/helpers/File.h"
#include "vxfileio/rawdata/Layout.h"
#include "vxfileio/rawdata/Rules.h"

namespace vxfileio::rawdata {

/// Writes raw data files, one at a time. `CIRawDataWriter` documents the operations.
///
/// Two rules keep the file sound whenever a write fails or the process dies. *Append first, then point*: a position is
/// written only once the system has everything that it points to. *Retry what failed*: a refused header is written
/// before the next segment, and a refused rewrite is repeated with the next one; a refused segment leaves no trace. A
/// recording whose header never reached the file is dropped when the next one begins. The writer keeps track of the end
/// of the file and never queries it.
///
/// Memory for recording a refusal is allocated before a call writes anything. So `std::bad_alloc` leaves the file and
/// the writer unchanged, and `Close` allocates nothing.
class CRawDataWriter {
 public:
    CRawDataWriter() = default;
    ~CRawDataWriter();
    CRawDataWriter(const CRawDataWriter&) = delete;
    CRawDataWriter& operator=(const CRawDataWriter&) = delete;

    void Open(const std::string& path);
    void OpenNew(const std::string& path);
    void WriteFileHdr(const CRawDataFileHdr& header);
    void WriteRecordingHdr(const CRawDataRecordingHdr& header);
    void WriteData(std::int32_t wellID, std::int64_t timeFrom, std::int64_t timeTo, std::int64_t tick,
                   const std::uint16_t* samples);
    void UpdateFileHdr(const std::string& taskName, const std::vector<std::string>& values);
    void SetStrict(bool isStrict) noexcept { m_isStrict = isStrict; }
    [[nodiscard]] bool FlushToDisk() noexcept;
    void Close() noexcept;
    [[nodiscard]] std::string GetWriteError() const;

 private:
    /// How far the calls for the open file have progressed.
    enum class enStage { Closed, Opened, HasFileHdr, InRecording };

    /// Cells whose rewriting the system refused.
    struct CRefusedRewrite {
        std::int64_t position = 0;
        std::size_t size = 0;
        std::array<char, kMostRewritten> bytes{};
    };

    void Prepare();
    void RefuseBefore(enStage needed) const;
    void RefuseUnsound(const CSegmentHdr& segment, std::int64_t tick) const;
    void ReportUnreadable(const CRawDataFileHdr& header);
    void ReportCutTexts(const auto& cells, const auto& header);
    void ReportOnce(const std::string& sentence);
    void MakeRoomForRefusals();
    bool AppendRefusedHdrs();
    bool FlushFile() noexcept;
    void BeginRecordingAt(std::int64_t position);
    void FinishRecording(std::int64_t nextRecordingHdr);
    void RewritePosition(std::int64_t hdr, const auto& cell, std::int64_t position);
    void Rewrite(std::int64_t position, std::string_view bytes);
    void RetryRewrites();
    bool Repeat(const CRefusedRewrite& rewrite);
    bool WriteCells(std::int64_t position, std::string_view bytes);

    helpers::CFile m_file;
    enStage m_stage = enStage::Closed;

    /// Headers that the system refused; empty while the disk has room. At the beginning of the file, this includes the
    /// file header. The last one is that of the current recording.
    std::string m_refusedHdrs;
    std::string m_hdrRoom;  ///< A buffer for encoding headers, reused after the first one.

    std::vector<CRefusedRewrite> m_refusedRewrites;  ///< Sorted by position.
    std::int64_t m_missingSegments = 0;              ///< Number of segments that the system refused.
    bool m_isRecordingMissing = false;               ///< A header was refused and dropped.
    std::string m_unreadable;                        ///< Sentences about values that readers can't use.
    bool m_isFlushed = false;                        ///< `FlushToDisk` was called for this file.
    bool m_isNameOnDisk = false;                     ///< The file's name is on the disk.

    const CLayout* m_layout = &Layouts().back();  ///< The layout of the file, once its header is written; never null.
    /// The cell of the layout that points to the next segment; rewritten for each segment.
    const CSegmentCell* m_nextSegmentCell = &m_layout->segment["FPosNextSegmentHdr"];

    bool m_isStrict = false;
    CSegmentRules m_segmentRules;  ///< With the wells of the current recording.

    std::int64_t m_recordingHdr = kUnset;   ///< The last recording header in the file.
    std::int64_t m_latestSegment = kUnset;  ///< The last segment of that recording.
};

}  // namespace vxfileio::rawdata
