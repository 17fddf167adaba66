#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vxfileio/helpers/File.h"
#include "vxfileio/rawdata/ChainGuard.h"
#include "vxfileio/rawdata/RawDataFormat.h"
#include "vxfileio/rawdata/RawDataHeaders.h"

/// Reads one raw data file after the other. What each operation does is told at `CIRawDataReader`.
///
/// Headers live in memory from `Open` on, samples only for one segment. The file is taken at its word as little as
/// possible: no size out of it reaches an allocation before it was held against the bytes that are there.
class CRawDataReader {
 public:
    CRawDataReader() = default;
    CRawDataReader(const CRawDataReader&) = delete;
    CRawDataReader& operator=(const CRawDataReader&) = delete;

    void Open(const std::string& path);
    const CRawDataFileHdr* GetFileHdr() const { return &m_fileHdr; }
    const CRawDataIndex* GetIndex() const { return &m_index; }
    std::vector<std::string> GetTasks() const;
    std::vector<std::int64_t> GetDoses(const std::string& taskName, std::int32_t wellID) const;
    std::vector<std::int32_t> GetWellIDs(const std::string& taskName) const;
    std::vector<std::int32_t> GetWellIDs(const std::string& taskName, std::int32_t recording) const;
    const CRawDataRecordingHdr* GetRecordingHdr(const std::string& taskName, std::int32_t recording) const;

    void SelectWellID(std::int32_t wellID) { m_selectedWell = wellID; }
    bool JumpToData(const std::string& taskName, std::int32_t recording);
    bool ReadSegment(std::int32_t& wellID, std::int64_t& timeFrom, std::int64_t& timeTo, std::uint32_t& size,
                     std::uint16_t*& samples);

 private:
    /// The selection that takes every segment.
    static constexpr std::int32_t kAllWells = -1;

    bool IsWanted(std::int32_t wellID) const { return m_selectedWell == kAllWells || m_selectedWell == wellID; }
    void ReadFileHdr();
    bool ReadRecordingHdr(std::int64_t position, CRawDataRecordingHdr& header) const;
    bool ReadSettledHdr(std::int64_t position, CRawDataRecordingHdr& header) const;
    std::int64_t NextRecordingHdr() const;
    bool LooksSettled(std::int64_t position, const CRawDataRecordingHdr& header) const;
    bool RereadNextRecordingHdr();
    std::size_t ReadSegmentHdr(std::int64_t position, vxfileio::CMutableBytes samples,
                               vxfileio::rawdata::CSegmentHdr& header);
    void RefuseImpossibleSize(std::int64_t dataPosition, std::size_t read, std::uint32_t size) const;
    void MakeRoomFor(std::uint32_t size);
    vxfileio::CMutableBytes SampleBytes();

    vxfileio::CFile m_file;
    std::int64_t m_readPosition = vxfileio::rawdata::kUnset;  ///< The next segment header.
    std::uint32_t m_sampleCount = 0;                          ///< Samples that the buffer has room for.
    std::unique_ptr<std::uint16_t[]> m_samples;
    std::int32_t m_selectedWell = kAllWells;
    CRawDataIndex m_index;                           ///< One entry per recording, in file order.
    CRawDataFileHdr m_fileHdr;                       ///< As read.
    std::vector<CRawDataRecordingHdr> m_recordings;  ///< In file order.
    vxfileio::rawdata::CChainGuard m_segmentGuard{m_file, vxfileio::rawdata::kSegmentHdrSize};
};
