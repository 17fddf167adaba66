#include "vxfileio/rawdata/RawDataReader.h"

#include <algorithm>
#include <array>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "vxfileio/frame/ExcVXReader.h"
#include "vxfileio/rawdata/HeaderCodec.h"
#include "vxfileio/rawdata/RawDataErrors.h"

using namespace vxfileio::rawdata;
using vxfileio::CMutableBytes;

namespace {

/// How far behind the end of the file the samples of a segment may reach by its own telling. A cut file gives such
/// segments, and they are delivered with zeros behind the end; a damaged size must not cost more memory than this.
constexpr std::int64_t kMostMissingBytes = std::int64_t{16} << 20;

/// How often a header is read again because its writer seems to be rewriting it. A rewrite takes microseconds.
constexpr int kMostRereads = 100;

/// Room for one header. It begins as zeros, and so does everything behind the end of the file.
template <std::size_t Size>
class CHdrBytes {
 public:
    CMutableBytes Writable() { return std::as_writable_bytes(std::span(m_bytes)); }
    std::string_view View() const { return {m_bytes.data(), m_bytes.size()}; }

    /// Tells whether the first cell is whole in the `read` bytes and begins with the text.
    template <class Cells>
    bool BeginsWith(std::string_view text, const Cells& cells, std::size_t read) const {
        return read >= cells.front().width && View().starts_with(text);
    }

 private:
    std::array<char, Size> m_bytes{};
};

bool IsRecording(const CRawDataRecordingHdr& header, const std::string& taskName, std::int32_t recording) {
    return header.TaskName == taskName && header.Recording == recording;
}

void AppendWellIDs(const CRawDataRecordingHdr& header, std::vector<std::int32_t>& wellIDs) {
    for (const auto& channel : header.WellChannels)
        wellIDs.push_back(channel.ID);
}

}  // namespace

void CRawDataReader::Open(const std::string& path) {
    m_readPosition = kUnset;
    if (!m_file.OpenForReading(path)) throw CExcVXReader(kCannotOpen + path);
    m_index.Clear();
    ReadFileHdr();
    m_recordings.clear();
    CChainGuard guard(m_file, SizeOf(kRecordingCells, m_fileHdr.FileVersion));
    int rereads = 0;
    while (NextRecordingHdr() != kUnset) {
        CRawDataRecordingHdr header;
        if (guard.Admits(NextRecordingHdr()) && ReadSettledHdr(NextRecordingHdr(), header)) {
            m_index.AddEntry({header.TaskName, header.Recording, header.Dose});
            m_recordings.push_back(std::move(header));
        } else if (++rereads > kMostRereads || !RereadNextRecordingHdr()) {
            throw CExcVXReader(kBadRecordingHdr);
        }
    }
}

std::vector<std::string> CRawDataReader::GetTasks() const {
    std::vector<std::string> tasks;
    std::set<std::string_view> taken;
    for (const auto& header : m_recordings) {
        if (taken.insert(header.TaskName).second) tasks.push_back(header.TaskName);
    }
    return tasks;
}

std::vector<std::int64_t> CRawDataReader::GetDoses(const std::string& taskName, std::int32_t wellID) const {
    std::vector<std::int64_t> doses;
    for (const auto& header : m_recordings) {
        if (header.TaskName != taskName) continue;
        const auto& wells = header.WellChannels;
        const auto count = std::count_if(wells.begin(), wells.end(), [&](const auto& c) { return c.ID == wellID; });
        doses.insert(doses.end(), static_cast<std::size_t>(count), header.Dose);
    }
    return doses;
}

std::vector<std::int32_t> CRawDataReader::GetWellIDs(const std::string& /*taskName*/) const {
    std::vector<std::int32_t> wellIDs;
    if (!m_recordings.empty()) AppendWellIDs(m_recordings.front(), wellIDs);
    return wellIDs;
}

std::vector<std::int32_t> CRawDataReader::GetWellIDs(const std::string& taskName, std::int32_t recording) const {
    std::vector<std::int32_t> wellIDs;
    for (const auto& header : m_recordings) {
        if (IsRecording(header, taskName, recording)) AppendWellIDs(header, wellIDs);
    }
    return wellIDs;
}

const CRawDataRecordingHdr* CRawDataReader::GetRecordingHdr(const std::string& taskName, std::int32_t recording) const {
    const auto matches = [&](const auto& header) { return IsRecording(header, taskName, recording); };
    const auto found = std::find_if(m_recordings.begin(), m_recordings.end(), matches);
    return found == m_recordings.end() ? nullptr : &*found;
}

bool CRawDataReader::JumpToData(const std::string& taskName, std::int32_t recording) {
    const auto matches = [&](const auto& header) {
        return IsRecording(header, taskName, recording) && header.FPosRecordingData != kUnset;
    };
    const auto last = std::find_if(m_recordings.rbegin(), m_recordings.rend(), matches);
    if (last == m_recordings.rend()) return false;
    m_readPosition = last->FPosRecordingData;
    m_segmentGuard.Restart();
    return true;
}

bool CRawDataReader::ReadSegment(std::int32_t& wellID, std::int64_t& timeFrom, std::int64_t& timeTo,
                                 std::uint32_t& size, std::uint16_t*& samples) {
    // Without a selection the next segment is the one, most likely as long as the one before: its samples come along.
    const auto guess = m_selectedWell == kAllWells ? SampleBytes() : CMutableBytes();
    CSegmentHdr header;
    std::size_t sampleBytes = 0;
    std::int64_t dataPosition = kUnset;
    do {
        if (m_readPosition == kUnset) return false;
        sampleBytes = ReadSegmentHdr(m_readPosition, guess, header);
        dataPosition = m_readPosition + static_cast<std::int64_t>(kSegmentHdrSize);
        wellID = header.ID;
        if (IsWanted(wellID)) RefuseImpossibleSize(dataPosition, sampleBytes, static_cast<std::uint32_t>(header.Size));
        m_readPosition = header.FPosNextSegmentHdr;
    } while (!IsWanted(wellID));

    timeFrom = header.TimeFrom;
    timeTo = header.TimeTo;
    size = static_cast<std::uint32_t>(header.Size);
    if (size != m_sampleCount || guess.empty()) {
        MakeRoomFor(size);
        sampleBytes = m_file.ReadUpTo(dataPosition, {SampleBytes()});
    }
    std::ranges::fill(SampleBytes().subspan(sampleBytes), std::byte{0});
    samples = m_samples.get();
    return true;
}

void CRawDataReader::ReadFileHdr() {
    CHdrBytes<kFileHdrSize> bytes;
    const std::size_t read = m_file.ReadUpTo(0, {bytes.Writable()});
    Decode(bytes.View(), m_fileHdr);
    if (!bytes.BeginsWith(kFileTypeText, kFileCells, read)) throw CExcVXReader(kNotOurFile);
    if (m_fileHdr.FPosFirstRecordingHdr == kUnset) throw CExcVXReader(kEmptyFile);
}

/// Returns false if no whole recording header stands at the position.
bool CRawDataReader::ReadRecordingHdr(std::int64_t position, CRawDataRecordingHdr& header) const {
    CHdrBytes<kRecordingHdrSize> bytes;
    const std::size_t read = m_file.ReadUpTo(position, {bytes.Writable()});
    return bytes.BeginsWith(kRecordingCells.front().key, kRecordingCells, read) &&
           Decode(bytes.View(), m_fileHdr.FileVersion, header);
}

/// Reads a recording header whose positions can be believed. A writer at work rewrites them in place, and what is read
/// in that moment may be half old, half new: positions that no writer of ours leaves are read again until they stay.
bool CRawDataReader::ReadSettledHdr(std::int64_t position, CRawDataRecordingHdr& header) const {
    if (!ReadRecordingHdr(position, header)) return false;
    for (int rereads = 0; rereads < kMostRereads && !LooksSettled(position, header); ++rereads) {
        CRawDataRecordingHdr again;
        if (!ReadRecordingHdr(position, again)) return false;
        const bool stays = again.FPosRecordingData == header.FPosRecordingData &&
                           again.FPosNextRecordingHdr == header.FPosNextRecordingHdr;
        header = std::move(again);
        if (stays) break;
    }
    return true;
}

/// Tells whether the positions are such as a writer leaves behind: none, or the data right behind the header and the
/// next header behind that.
bool CRawDataReader::LooksSettled(std::int64_t position, const CRawDataRecordingHdr& header) const {
    const auto size = static_cast<std::int64_t>(SizeOf(kRecordingCells, m_fileHdr.FileVersion));
    const std::int64_t next = header.FPosNextRecordingHdr;
    if (header.FPosRecordingData == kUnset) return next == kUnset;
    return header.FPosRecordingData == position + size && (next == kUnset || next >= position + size);
}

/// Returns where the chain of recordings goes on behind those read so far.
std::int64_t CRawDataReader::NextRecordingHdr() const {
    return m_recordings.empty() ? m_fileHdr.FPosFirstRecordingHdr : m_recordings.back().FPosNextRecordingHdr;
}

/// Reads the cell that led to nothing once more, in case its writer was just rewriting it. Returns false if it still
/// says the same.
bool CRawDataReader::RereadNextRecordingHdr() {
    const std::int64_t before = NextRecordingHdr();
    if (m_recordings.empty()) {
        ReadFileHdr();
    } else {
        const auto position = m_recordings.size() == 1 ? m_fileHdr.FPosFirstRecordingHdr
                                                       : m_recordings[m_recordings.size() - 2].FPosNextRecordingHdr;
        ReadSettledHdr(position, m_recordings.back());
    }
    return NextRecordingHdr() != before;
}

/// Reads a segment header, and what follows it into `samples` in the same call. Returns how many bytes of that came.
std::size_t CRawDataReader::ReadSegmentHdr(std::int64_t position, CMutableBytes samples, CSegmentHdr& header) {
    if (position < 0) throw CExcVXReader(kBadSegmentPosition);
    CHdrBytes<kSegmentHdrSize> bytes;
    const std::size_t read = m_file.ReadUpTo(position, {bytes.Writable(), samples});
    if (!bytes.BeginsWith(kSegmentCells.front().key, kSegmentCells, read) || !m_segmentGuard.Admits(position)) {
        throw CExcVXReader(kBadSegmentHdr);
    }
    Decode(bytes.View(), header);
    return read - std::min(read, kSegmentHdrSize);
}

/// `read` bytes of the samples are known to be there; the file is asked only if that doesn't settle it.
void CRawDataReader::RefuseImpossibleSize(std::int64_t dataPosition, std::size_t read, std::uint32_t size) const {
    const std::int64_t bytes = std::int64_t{size} * std::int64_t{sizeof(std::uint16_t)};
    if (bytes - static_cast<std::int64_t>(read) <= kMostMissingBytes) return;
    if (bytes - kMostMissingBytes > m_file.Size() - dataPosition) throw CExcVXReader(kBadSegmentHdr);
}

/// Gives the buffer the exact size of a segment; a run of equal segments keeps it.
void CRawDataReader::MakeRoomFor(std::uint32_t size) {
    if (size == m_sampleCount && m_samples) return;
    m_samples.reset();  // first, so that there is never more than one segment in memory
    m_sampleCount = 0;
    m_samples = std::make_unique_for_overwrite<std::uint16_t[]>(size);
    m_sampleCount = size;
}

CMutableBytes CRawDataReader::SampleBytes() {
    return std::as_writable_bytes(std::span(m_samples.get(), m_sampleCount));
}
