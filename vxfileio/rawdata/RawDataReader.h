#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "vxfileio/helpers/File.h"
#include "vxfileio/rawdata/ChainGuard.h"
#include "vxfileio/rawdata/Layout.h"
#include "vxfileio/rawdata/RawDataHeaders.h"
#include "vxfileio/rawdata/RecordingHdrReader.h"
#include "vxfileio/rawdata/SegmentBuffer.h"
#include "vxfileio/rawdata/SegmentChain.h"

namespace vxfileio::rawdata {

/// Reads raw data files, one at a time. `CIRawDataReader` documents the operations.
///
/// Keeps all headers in memory from `Open` on, and the samples of one segment. Trusts the file as little as possible: a
/// size is checked against the bytes that are there before anything is allocated.
///
/// A pass for one well remembers the positions of the recording's segments, so that the next pass reads only the
/// selected ones. A pass over all wells reads every segment anyway and remembers nothing. After a failure, and in a
/// chain that turns back, nothing is remembered: the next pass reads every header of the file again.
class CRawDataReader {
 public:
    CRawDataReader() = default;
    /// Reads a single recording of the file that another reader has open, and shares this open file: the path isn't
    /// looked up again. Both can be used at the same time in two threads. Has no file header, no index, and this
    /// recording with the index 0. Requires: the file has the recording.
    CRawDataReader(const CRawDataReader& other, std::size_t recording);
    CRawDataReader(const CRawDataReader&) = delete;
    CRawDataReader& operator=(const CRawDataReader&) = delete;

    void Open(const std::string& path);
    const CRawDataFileHdr* GetFileHdr() const noexcept { return &m_fileHdr; }
    const CRawDataIndex* GetIndex() const noexcept { return &m_index; }
    const std::vector<CRawDataRecordingHdr>& Recordings() const noexcept { return m_recordings; }
    const helpers::CFile& File() const noexcept { return *m_file; }
    const CLayout& Layout() const noexcept { return *m_layout; }
    std::vector<std::string> GetTasks() const;
    std::vector<std::int64_t> GetDoses(const std::string& taskName, std::int32_t wellID) const;
    std::vector<std::int32_t> GetWellIDs(const std::string& taskName) const;
    std::vector<std::int32_t> GetWellIDs(const std::string& taskName, std::int32_t recording) const;
    const CRawDataRecordingHdr* GetRecordingHdr(const std::string& taskName, std::int32_t recording) const;

    void SelectWellID(std::int32_t wellID) noexcept { m_selectedWell = wellID; }
    bool JumpToData(const std::string& taskName, std::int32_t recording);
    /// Does the same with a recording by its index. Requires: the file has it.
    bool JumpToRecording(std::size_t index);
    /// Returns whether a finished recording has no segments: its position points to what follows it.
    bool IsWithoutSegments(std::size_t index) const;
    bool ReadSegment(std::int32_t& wellID, std::int64_t& timeFrom, std::int64_t& timeTo, std::uint32_t& size,
                     std::uint16_t*& samples);
    /// Returns the file offset of the samples of the last delivered segment.
    std::int64_t SamplesOffset() const noexcept { return m_samplesOffset; }

 private:
    /// Selects every segment.
    static constexpr std::int32_t kAllWells = -1;

    /// The state of a pass through the segments of a recording.
    struct CPass {
        std::int64_t position = kUnset;  ///< The next segment header.
        std::size_t number = 0;          ///< The number of segments before that one.
        CChainGuard guard;
    };

    void ReadFileHdr();
    std::int64_t NextRecordingHdr() const;
    [[nodiscard]] bool RereadNextRecordingHdr(CRecordingHdrReader& headers);

    [[nodiscard]] bool FetchNext(CSegmentHdr& header, std::int32_t& wellID);
    bool IsWanted(std::int32_t wellID) const noexcept {
        return m_selectedWell == kAllWells || m_selectedWell == wellID;
    }
    const CSegmentPlace* Remembered() const { return m_chain == nullptr ? nullptr : m_chain->Find(m_pass.number); }
    CPass BeginningAt(std::int64_t position) const;
    void PassOverRemembered(std::int32_t& wellID);
    std::uint32_t ExpectedSize(const CSegmentPlace& place) const;
    bool MakeRoomForNext();
    [[nodiscard]] bool ReadHdr(CSegmentHdr& header, std::size_t& sampleBytes);
    [[nodiscard]] bool ReadHdrAfterRemembered(CSegmentHdr& header, std::int32_t& wellID, std::size_t& sampleBytes);
    std::size_t ReadNextHdr(CSegmentHdr& header, std::int32_t& wellID);
    void PassOver(const CSegmentHdr& header);
    [[nodiscard]] bool CompleteSamples(std::size_t read, std::uint32_t size);

    std::shared_ptr<helpers::CFile> m_file = std::make_shared<helpers::CFile>();  ///< A new one for each `Open`.
    const CLayout* m_layout = &Layouts().back();     ///< The layout of the open file; never null.
    CRawDataIndex m_index;                           ///< One entry per recording, in file order.
    CRawDataFileHdr m_fileHdr;                       ///< As read.
    std::vector<CRawDataRecordingHdr> m_recordings;  ///< In file order.

    std::int32_t m_selectedWell = kAllWells;
    CSegmentBuffer m_segment;
    std::map<std::int64_t, CSegmentChain> m_chains;  ///< By the positions of their recordings' data.
    CSegmentChain* m_chain = nullptr;                ///< The chain of the current recording, if any.
    std::int64_t m_dataPosition = kUnset;            ///< The data position of the current recording.
    CPass m_pass = BeginningAt(kUnset);
    std::int64_t m_samplesOffset = kUnset;
};

}  // namespace vxfileio::rawdata
