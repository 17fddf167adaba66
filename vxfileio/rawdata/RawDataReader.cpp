#include "vxfileio/rawdata/RawDataReader.h"

#include <algorithm>
#include <new>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/HeaderCodec.h"
#include "vxfileio/rawdata/RawDataErrors.h"
#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::rawdata {

using helpers::CMutableBytes;

namespace {

bool IsRecording(const CRawDataRecordingHdr& header, const std::string& taskName, std::int32_t recording) {
    return header.TaskName == taskName && header.Recording == recording;
}

/// Sets the bytes to zero that a read up to the end of the file left unchanged.
void ZeroAfter(std::size_t read, CMutableBytes bytes) {
    if (read < bytes.size()) std::ranges::fill(bytes.subspan(read), std::byte{0});
}

void AppendWellIDs(const CRawDataRecordingHdr& header, std::vector<std::int32_t>& wellIDs) {
    for (const auto& channel : header.WellChannels)
        wellIDs.push_back(channel.ID);
}

}  // namespace

CRawDataReader::CRawDataReader(const CRawDataReader& other, std::size_t recording)
    : m_file(other.m_file), m_layout(other.m_layout), m_recordings{other.m_recordings[recording]} {}

void CRawDataReader::Open(const std::string& path) {
    m_file = std::make_shared<helpers::CFile>();
    m_pass = BeginningAt(kUnset);
    m_chain = nullptr;
    m_chains.clear();
    if (!m_file->OpenForReading(path)) throw CExcVXReader(kCannotOpen + path);
    m_index.Clear();
    ReadFileHdr();
    m_recordings.clear();
    CRecordingHdrReader headers(*m_file, *m_layout);
    CChainGuard guard(*m_file, m_layout->recording.size);
    int rereads = 0;
    while (NextRecordingHdr() != kUnset) {
        CRawDataRecordingHdr header;
        if (guard.Admits(NextRecordingHdr()) && headers.Read(NextRecordingHdr(), header)) {
            m_index.AddEntry({header.TaskName, header.Recording, header.Dose});
            m_recordings.push_back(std::move(header));
        } else if (++rereads > CRecordingHdrReader::kMostRereads || !RereadNextRecordingHdr(headers)) {
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
    return last != m_recordings.rend() && JumpToRecording(static_cast<std::size_t>(m_recordings.rend() - last) - 1);
}

bool CRawDataReader::JumpToRecording(std::size_t index) {
    const std::int64_t position = m_recordings[index].FPosRecordingData;
    if (position == kUnset) return false;
    m_dataPosition = position;
    const auto chain = m_chains.find(m_dataPosition);
    m_chain = chain == m_chains.end() ? nullptr : &chain->second;
    m_pass = BeginningAt(m_dataPosition);
    return true;
}

bool CRawDataReader::IsWithoutSegments(std::size_t index) const {
    const CRawDataRecordingHdr& recording = m_recordings[index];
    const std::int64_t first = recording.FPosRecordingData;
    if (first < 0 || (first != recording.FPosNextRecordingHdr && first != m_file->Size())) return false;
    std::string bytes(m_layout->segment.size, '\0');
    bytes.resize(m_file->ReadUpTo(first, std::as_writable_bytes(std::span(bytes))));
    return !m_layout->segment.Begins(bytes);
}

bool CRawDataReader::ReadSegment(std::int32_t& wellID, std::int64_t& timeFrom, std::int64_t& timeTo,
                                 std::uint32_t& size, std::uint16_t*& samples) {
    CSegmentHdr header;
    try {
        if (!FetchNext(header, wellID)) return false;
    } catch (const CExcVXReader&) {
        // The file may be repaired before the next pass, which must then read it afresh.
        if (m_chain != nullptr) m_chain->ForgetFrom(0);
        throw;
    }
    timeFrom = header.TimeFrom;
    timeTo = header.TimeTo;
    size = SamplesOf(header);
    samples = m_segment.Samples();
    return true;
}

/// Fetches the next segment of the selected well, header and samples. Returns false at the end of the chain. The pass
/// advances past a header once it has been dealt with, even if its size is refused; after `std::bad_alloc` the same
/// segment is the next one.
bool CRawDataReader::FetchNext(CSegmentHdr& header, std::int32_t& wellID) {
    while (m_pass.position != kUnset) {
        const std::size_t sampleBytes = ReadNextHdr(header, wellID);
        wellID = header.ID;
        const bool isWanted = IsWanted(wellID);
        const bool isRefused = isWanted && !CompleteSamples(sampleBytes, SamplesOf(header));
        m_samplesOffset = DataOf(*m_layout, m_pass.position);
        PassOver(header);
        if (isRefused) throw CExcVXReader(kBadSegmentHdr);
        if (isWanted) return true;
    }
    return false;
}

void CRawDataReader::ReadFileHdr() {
    std::string bytes(LargestFileHdr(), '\0');
    bytes.resize(m_file->ReadUpTo(0, std::as_writable_bytes(std::span(bytes))));
    m_layout = &LayoutOfFile(bytes);
    Decode(*m_layout, bytes, m_fileHdr);
    if (!m_layout->file.Begins(bytes) || !bytes.starts_with(kFileTypeText)) throw CExcVXReader(kNotOurFile);
    if (m_fileHdr.FPosFirstRecordingHdr == kUnset) throw CExcVXReader(kEmptyFile);
}

/// Returns the position after the recordings read so far.
std::int64_t CRawDataReader::NextRecordingHdr() const {
    return m_recordings.empty() ? m_fileHdr.FPosFirstRecordingHdr : m_recordings.back().FPosNextRecordingHdr;
}

/// Rereads the cell whose position was bad, in case its writer was just rewriting it. Returns false if it is unchanged.
bool CRawDataReader::RereadNextRecordingHdr(CRecordingHdrReader& headers) {
    const std::int64_t before = NextRecordingHdr();
    if (m_recordings.empty()) {
        ReadFileHdr();
    } else {
        const auto position = m_recordings.size() == 1 ? m_fileHdr.FPosFirstRecordingHdr
                                                       : m_recordings[m_recordings.size() - 2].FPosNextRecordingHdr;
        headers.Reread(position, m_recordings.back());
    }
    return NextRecordingHdr() != before;
}

CRawDataReader::CPass CRawDataReader::BeginningAt(std::int64_t position) const {
    return {position, 0, CChainGuard(*m_file, m_layout->segment.size)};
}

/// Moves to the next segment that must be read: one of the selected well, or the last remembered one, since what
/// follows it is unknown.
void CRawDataReader::PassOverRemembered(std::int32_t& wellID) {
    const CSegmentPlace* place = Remembered();
    while (place != nullptr && place->wellID != m_selectedWell) {
        const CSegmentPlace* const successor = m_chain->Find(m_pass.number + 1);
        if (successor == nullptr) return;
        if (!m_pass.guard.Admits(m_pass.position)) throw CExcVXReader(kBadSegmentHdr);
        wellID = place->wellID;
        m_pass.position = successor->position;
        ++m_pass.number;
        place = successor;
    }
}

/// Returns the number of samples of a remembered segment if its successor directly follows it, otherwise that of the
/// previous segment. Remembered values may be wrong, and must not cost more memory than a damaged size.
std::uint32_t CRawDataReader::ExpectedSize(const CSegmentPlace& place) const {
    const CSegmentPlace* const successor = m_chain->Find(m_pass.number + 1);
    if (successor == nullptr) return m_segment.Count();
    const std::int64_t bytes = successor->position - DataOf(*m_layout, place.position);
    return bytes >= 0 && bytes <= kMostMissingBytes ? static_cast<std::uint32_t>(bytes / kSampleBytes)
                                                    : m_segment.Count();
}

/// Makes room for the next segment as expected. Returns whether that segment is expected to be selected.
bool CRawDataReader::MakeRoomForNext() {
    const CSegmentPlace* const place = Remembered();
    const bool isExpected = place == nullptr ? m_selectedWell == kAllWells : IsWanted(place->wellID);
    m_segment.MakeRoomFor(place != nullptr && isExpected ? ExpectedSize(*place) : m_segment.Count(),
                          m_layout->segment.size);
    return isExpected;
}

/// Reads the header at the current position with as many of its samples as expected. May read only the front of the
/// header of a segment that isn't selected. Returns false if there is no header.
bool CRawDataReader::ReadHdr(CSegmentHdr& header, std::size_t& sampleBytes) {
    const bool isExpected = MakeRoomForNext();
    const CMutableBytes bytes = m_segment.SegmentBytes();
    const std::size_t front = m_layout->segmentFront;
    std::size_t read = m_file->ReadUpTo(m_pass.position, isExpected ? bytes : bytes.first(front));
    if (!DecodeFront(*m_layout, m_segment.Hdr(read), header)) return false;
    if (!IsWanted(header.ID)) return true;
    if (read == front)
        read += m_file->ReadUpTo(m_pass.position + static_cast<std::int64_t>(front), bytes.subspan(front));
    DecodeRest(*m_layout, m_segment.Hdr(read), header);
    sampleBytes = read - std::min(read, m_layout->segment.size);
    return true;
}

/// Skips remembered segments that aren't selected and reads the header after them. Returns false and doesn't move if
/// there is nothing to skip, or if the file has changed: then the skipped segments may have changed, too.
bool CRawDataReader::ReadHdrAfterRemembered(CSegmentHdr& header, std::int32_t& wellID, std::size_t& sampleBytes) {
    const CPass afterLastRead = m_pass;
    try {
        PassOverRemembered(wellID);
        if (m_pass.number == afterLastRead.number) return false;
        if (ReadHdr(header, sampleBytes) && header.ID == Remembered()->wellID) return true;
    } catch (const std::bad_alloc&) {
        m_pass = afterLastRead;
        throw;
    }
    m_pass = afterLastRead;
    m_chain->ForgetFrom(m_pass.number);
    return false;
}

/// Reads the header of the next segment that must be read. Returns how many bytes of its samples were read with it; 0
/// if its size isn't as expected.
std::size_t CRawDataReader::ReadNextHdr(CSegmentHdr& header, std::int32_t& wellID) {
    std::size_t sampleBytes = 0;
    const CSegmentPlace* const place = Remembered();
    const bool mayPass = place != nullptr && !IsWanted(place->wellID);
    if (mayPass && ReadHdrAfterRemembered(header, wellID, sampleBytes)) return sampleBytes;
    if (ReadHdr(header, sampleBytes)) return sampleBytes;
    throw CExcVXReader(m_pass.position < 0 ? kBadSegmentPosition : kBadSegmentHdr);
}

/// Moves to the segment after the one whose header was just read.
void CRawDataReader::PassOver(const CSegmentHdr& header) {
    const CSegmentPlace place{m_pass.position, header.ID};
    if (m_chain != nullptr) m_chain->Confirm(m_pass.number, place, header.FPosNextSegmentHdr);
    if (m_selectedWell != kAllWells) {
        if (m_chain == nullptr) m_chain = &m_chains[m_dataPosition];
        m_chain->Remember(m_pass.number, place, header.FPosNextSegmentHdr);
    }
    if (!m_pass.guard.Admits(m_pass.position)) throw CExcVXReader(kBadSegmentHdr);
    m_pass.position = header.FPosNextSegmentHdr;
    ++m_pass.number;
}

/// Completes the segment whose header was just read with `read` bytes of its samples. Reads it again unless these are
/// all its samples. Returns false if its size isn't credible.
bool CRawDataReader::CompleteSamples(std::size_t read, std::uint32_t size) {
    if (read == size * std::size_t{kSampleBytes} && m_segment.Count() == size) return true;
    const std::int64_t position = DataOf(*m_layout, m_pass.position);
    if (!IsCredible(position, size, [&] { return m_file->Size(); })) return false;
    m_segment.MakeRoomFor(size, m_layout->segment.size);
    read = m_file->ReadUpTo(position, m_segment.SampleBytes());
    ZeroAfter(read, m_segment.SampleBytes());
    return true;
}

}  // namespace vxfileio::rawdata
