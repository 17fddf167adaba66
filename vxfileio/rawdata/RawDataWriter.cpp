#include "vxfileio/rawdata/RawDataWriter.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <span>
#include <system_error>
#include <type_traits>
#include <utility>
#include <variant>

#include "vxfileio/base/EnumerationWords.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/HeaderCodec.h"
#include "vxfileio/rawdata/RawDataErrors.h"
#include "vxfileio/rawdata/RecordingFit.h"
#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::rawdata {

using helpers::CBytes;
using helpers::kPageSize;

namespace {

static_assert(std::endian::native == std::endian::little,
              "samples go to the file straight from memory, low byte first");

/// Returns the key of the list that belongs to a task; null if the task has none.
const char* ListOf(const std::string& taskName) {
    for (const auto& [task, key] : {std::pair{enTask::PreQC, "PreQC"}, std::pair{enTask::CompoundTest, "CompoundTest"},
                                    std::pair{enTask::PostQC, "PostQC"}}) {
        if (base::WordOf(task) == taskName) return key;
    }
    return nullptr;
}

/// Throws if a rule is broken.
void Refuse(const std::optional<CBreach>& breach) {
    if (breach) throw CExcVXReader(TextOf(*breach));
}

void Refuse(const std::vector<CBreach>& breaches) {
    if (!breaches.empty()) throw CExcVXReader(TextOf(breaches.front()));
}

/// Throws if a value is longer than the room of its cell. `rest` is the end of the sentence.
void RefuseTooLong(const auto& cell, std::size_t needed, const std::string& rest = ".") {
    const std::string_view key = cell.key.empty() ? "HeaderID" : cell.key;
    const std::size_t room = RoomOf(cell);
    if (needed > room) throw CExcVXReader(kDoesNotFit + NeedText(key, room, needed) + rest);
}

/// Throws if a list of values is too long. `joined` is its text.
void RefuseTooLong(const CFileCell& list, std::string_view joined, std::size_t values) {
    const auto fitting = std::ranges::count(joined.substr(0, RoomOf(list) + 1), ':');
    RefuseTooLong(list, joined.size(), FittingText(values, static_cast<std::size_t>(fitting), "values"));
}

void RefuseBadHdr(const CLayout& layout, const CRawDataFileHdr& header) {
    Refuse(BreachesOfValues(layout, header));
    Refuse(BreachOfVersion(header.FileVersion));
    for (const CFileCell& cell : layout.file.cells) {
        const auto* const text = std::get_if<std::string CRawDataFileHdr::*>(&cell.member);
        const auto* const bare = std::get_if<CBareText<CRawDataFileHdr>>(&cell.member);
        if (text != nullptr && !cell.traits.standBy) RefuseTooLong(cell, (header.**text).size());
        if (bare != nullptr) RefuseTooLong(cell, (header.*bare->text).size());
    }
}

void RefuseBadHdr(const CLayout& layout, const CRawDataRecordingHdr& header) {
    const CRecordingFit fit = CheckRecordingFit(header, layout.version);
    if (!fit.Refusal.empty()) throw CExcVXReader(fit.Refusal);
    if (!fit.Fits()) throw CExcVXReader(kDoesNotFit + fit.Text());
}

CBytes AsBytes(std::string_view text) { return std::as_bytes(std::span(text.data(), text.size())); }

/// Returns the number of samples to write, or throws if the arguments of `WriteData` can't be a segment.
std::int64_t RequiredSamples(std::int64_t timeFrom, std::int64_t timeTo, std::int64_t tick) {
    if (tick <= 0) throw CExcVXReader(kBadTick);
    if (timeTo < timeFrom) throw CExcVXReader(kTimesReversed);
    const auto count = SampleCount(timeFrom, timeTo, tick);
    if (!count || *count > std::uint64_t{kMostSamples}) throw CExcVXReader(kTooManySamples);
    return static_cast<std::int64_t>(*count);
}

/// A number in cells to be rewritten that crosses a page boundary, where a process may be killed between two copies.
/// Offsets count from the first of the cells.
struct CPartedNumber {
    std::size_t begin = 0;   ///< The beginning of its cell.
    std::size_t digits = 0;  ///< The beginning of its text.
    std::size_t boundary = 0;
    std::size_t end = 0;  ///< The end of its cell.
};

/// Returns the number whose digits are on both sides of a page boundary, if any. `position` is the offset of the cells
/// in the file.
std::optional<CPartedNumber> PartedNumber(std::int64_t position, std::string_view cells) {
    const auto boundary = static_cast<std::size_t>(kPageSize - position % kPageSize);
    if (boundary >= cells.size()) return std::nullopt;
    const std::size_t before = cells.substr(0, boundary).rfind('\n');
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    const std::size_t digits = cells.find('=', begin) + 1;
    if (digits >= boundary || cells.find('\0', begin) <= boundary) return std::nullopt;
    return CPartedNumber{begin, digits, boundary, cells.find('\n', boundary) + 1};
}

std::string Join(const std::vector<std::string>& values) {
    std::string joined;
    for (const auto& value : values) {
        if (&value != &values.front()) joined += ':';
        joined += value;
    }
    return joined;
}

}  // namespace

CRawDataWriter::~CRawDataWriter() { Close(); }

void CRawDataWriter::Open(const std::string& path) {
    Prepare();
    if (!m_file.Create(path)) throw CExcVXReader(kCannotOpen + path);
    m_stage = enStage::Opened;
}

void CRawDataWriter::OpenNew(const std::string& path) {
    Prepare();
    if (!m_file.CreateLike(path, helpers::CFile())) {
        const bool exists = m_file.Failure().error == std::errc::file_exists;
        if (exists) ReportOnce(kNameTaken);
        throw CExcVXReader(kCannotOpen + path + (exists ? kExists : ""));
    }
    m_stage = enStage::Opened;
}

/// Finishes the open file, and allocates what `Close` may need for the next one.
void CRawDataWriter::Prepare() {
    Close();
    m_refusedHdrs.reserve(m_layout->file.size + m_layout->recording.size);
    m_missingSegments = 0;
    m_isRecordingMissing = false;
    m_unreadable.clear();
    m_isFlushed = false;
    m_isNameOnDisk = false;
    MakeRoomForRefusals();
}

void CRawDataWriter::WriteFileHdr(const CRawDataFileHdr& header) {
    RefuseBefore(enStage::Opened);
    if (m_stage != enStage::Opened) throw CExcVXReader(kFileHdrTwice);
    const CLayout& layout = LayoutForWriting(header.FileVersion);
    if (m_isStrict) RefuseBadHdr(layout, header);
    m_hdrRoom.resize(layout.file.size);
    Encode(layout, header, m_hdrRoom);
    if (m_isStrict) Refuse(BreachesOfFileHdr(layout, m_hdrRoom));
    ReportUnreadable(header);
    ReportCutTexts(layout.file.cells, header);
    MakeRoomForRefusals();
    m_refusedHdrs.reserve(layout.file.size + layout.recording.size);
    m_layout = &layout;
    m_nextSegmentCell = &layout.segment["FPosNextSegmentHdr"];
    m_refusedHdrs = m_hdrRoom;
    m_stage = enStage::HasFileHdr;
    AppendRefusedHdrs();
}

void CRawDataWriter::WriteRecordingHdr(const CRawDataRecordingHdr& header) {
    RefuseBefore(enStage::HasFileHdr);
    if (m_isStrict) RefuseBadHdr(*m_layout, header);
    m_hdrRoom.resize(m_layout->recording.size);
    Encode(*m_layout, header, m_hdrRoom);
    if (m_isStrict) Refuse(BreachesOfRecordingHdr(*m_layout, m_hdrRoom));
    CSegmentRules segmentRules(header.WellChannels);
    ReportCutTexts(m_layout->recording.cells, header);
    MakeRoomForRefusals();
    m_segmentRules = std::move(segmentRules);
    // A recording before this one whose header never reached the file has no data there either: it is dropped.
    m_isRecordingMissing = m_isRecordingMissing || (m_stage == enStage::InRecording && !m_refusedHdrs.empty());
    m_refusedHdrs.resize(m_file.End() == 0 ? m_layout->file.size : 0);
    m_refusedHdrs += m_hdrRoom;
    m_stage = enStage::InRecording;
    AppendRefusedHdrs();
}

void CRawDataWriter::WriteData(std::int32_t wellID, std::int64_t timeFrom, std::int64_t timeTo, std::int64_t tick,
                               const std::uint16_t* samples) {
    RefuseBefore(enStage::InRecording);
    const std::int64_t count = RequiredSamples(timeFrom, timeTo, tick);
    if (samples == nullptr) throw CExcVXReader(kNoSamples);
    const CSegmentHdr segment{wellID, kUnset, timeFrom, timeTo, count};
    if (m_isStrict) RefuseUnsound(segment, tick);
    MakeRoomForRefusals();

    std::array<char, kMostSegmentHdr> room{};
    const auto bytes = std::span(room).first(m_layout->segment.size);
    Encode(*m_layout, segment, bytes);
    const std::span data(samples, static_cast<std::size_t>(count));
    const bool hasHdrs = AppendRefusedHdrs();
    const std::int64_t position = m_file.End();
    if (!hasHdrs || !m_file.Append({std::as_bytes(bytes), std::as_bytes(data)})) {
        ++m_missingSegments;  // the file ends where it did, and the next segment takes this one's place
        return;
    }
    if (m_latestSegment != kUnset) RewritePosition(m_latestSegment, *m_nextSegmentCell, position);
    m_latestSegment = position;
    m_segmentRules.Note(segment);
}

void CRawDataWriter::UpdateFileHdr(const std::string& taskName, const std::vector<std::string>& values) {
    RefuseBefore(enStage::HasFileHdr);
    const char* const key = ListOf(taskName);
    if (m_isStrict) Refuse(BreachOfList(key, taskName, values));
    if (key == nullptr) return;
    const CFileCell& list = m_layout->file[key];
    const std::string joined = Join(values);
    if (m_isStrict) RefuseTooLong(list, joined, values.size());
    std::string cell(list.width, '\0');
    EncodeCell(list.key, joined, cell);
    if (!std::ranges::all_of(values, ReadsBackWhole)) ReportOnce(kReadBackCut + std::string(list.key));
    MakeRoomForRefusals();
    if (m_file.End() == 0) {
        m_refusedHdrs.replace(list.offset, cell.size(), cell);
    } else {
        Rewrite(static_cast<std::int64_t>(list.offset), cell);
    }
}

bool CRawDataWriter::FlushToDisk() noexcept {
    m_isFlushed = true;
    const bool hasHdrs = AppendRefusedHdrs();
    RetryRewrites();
    const bool isMissing = !hasHdrs || m_isRecordingMissing || m_missingSegments > 0 || !m_refusedRewrites.empty();
    return FlushFile() && !isMissing;
}

/// Flushes the file and, the first time, also its name.
bool CRawDataWriter::FlushFile() noexcept {
    if (!m_file.FlushToDisk()) return false;
    m_isNameOnDisk = m_isNameOnDisk || m_file.FlushFolder();
    return m_isNameOnDisk;
}

void CRawDataWriter::Close() noexcept {
    if (m_stage == enStage::Closed) return;
    AppendRefusedHdrs();
    FinishRecording(kUnset);
    for (const CRefusedRewrite& rewrite : m_refusedRewrites)
        Repeat(rewrite);  // the last try
    if (m_isFlushed) FlushFile();
    m_file.Close();
    m_stage = enStage::Closed;
    m_refusedHdrs.clear();
    m_refusedRewrites.clear();
    m_recordingHdr = kUnset;
    m_latestSegment = kUnset;
}

void CRawDataWriter::RefuseBefore(enStage needed) const {
    if (m_stage >= needed) return;
    if (m_stage == enStage::Closed) throw CExcVXReader(kNoOpenFile);
    throw CExcVXReader(m_stage == enStage::Opened ? kFileHdrMissing : kNoRecording);
}

void CRawDataWriter::RefuseUnsound(const CSegmentHdr& segment, std::int64_t tick) const {
    Refuse(m_segmentRules.BreachOfTick(segment.ID, tick));
    Refuse(m_segmentRules.BreachOf(*m_layout, segment));
}

std::string CRawDataWriter::GetWriteError() const {
    std::string text = m_file.WriteError();
    if (m_missingSegments > 0) text += "; segments missing: " + std::to_string(m_missingSegments);
    if (!text.empty() && !m_unreadable.empty()) text += "; ";
    return text + m_unreadable;
}

void CRawDataWriter::ReportUnreadable(const CRawDataFileHdr& header) {
    if (!header.HeaderID.starts_with(kFileTypeText)) ReportOnce(kNotOurMark);
    if (header.HeaderID.find('\0') != std::string::npos) ReportOnce(kReadBackCut + std::string("HeaderID"));
    if (header.FileVersion < kOldestWrittenVersion) ReportOnce(kVersionTooOld);
}

void CRawDataWriter::ReportCutTexts(const auto& cells, const auto& header) {
    using CText = std::string std::remove_cvref_t<decltype(header)>::*;
    for (const auto& cell : cells) {
        const auto* const text = std::get_if<CText>(&cell.member);
        if (text == nullptr || cell.traits.standBy || ReadsBackWhole(header.**text)) continue;
        ReportOnce(kReadBackCut + std::string(cell.key));
    }
}

/// Adds a sentence to the report unless it is already there, so the report stays short.
void CRawDataWriter::ReportOnce(const std::string& sentence) {
    if (m_unreadable.find(sentence) != std::string::npos) return;
    m_unreadable += (m_unreadable.empty() ? "" : "; ") + sentence;
}

/// A call rewrites at most once, and the `Close` after it at most twice.
void CRawDataWriter::MakeRoomForRefusals() {
    constexpr std::size_t kMostRewrites = 3;
    const std::size_t size = m_refusedRewrites.size();
    if (m_refusedRewrites.capacity() < size + kMostRewrites) m_refusedRewrites.reserve(2 * size + kMostRewrites);
}

/// Appends headers that were refused before. Returns false if the system refuses again.
bool CRawDataWriter::AppendRefusedHdrs() {
    if (m_refusedHdrs.empty()) return true;
    if (!m_file.Append({AsBytes(m_refusedHdrs)})) return false;
    m_refusedHdrs.clear();
    if (m_stage == enStage::InRecording)
        BeginRecordingAt(m_file.End() - static_cast<std::int64_t>(m_layout->recording.size));
    return true;
}

/// Sets the position of a recording header that was just completed.
void CRawDataWriter::BeginRecordingAt(std::int64_t position) {
    if (m_recordingHdr == kUnset) {
        RewritePosition(0, m_layout->file["FPosFirstRecordingHdr"], position);
    } else {
        FinishRecording(position);
    }
    m_recordingHdr = position;
    m_latestSegment = kUnset;
}

/// Sets the positions of the last recording, if any: of its data and of the next recording.
void CRawDataWriter::FinishRecording(std::int64_t nextRecordingHdr) {
    if (m_recordingHdr == kUnset) return;
    const auto& hdr = m_layout->recording;
    const CRecordingCell& first = hdr["FPosRecordingData"];
    const CRecordingCell& last = hdr["FPosNextRecordingHdr"];
    std::array<char, kMostRewritten> room{};
    const auto bytes = std::span(room).first(last.End() - first.offset);
    const auto put = [&](const CRecordingCell& cell, std::int64_t position) {
        EncodePosition(cell.key, position, bytes.subspan(cell.offset - first.offset, cell.width));
    };
    put(first, m_recordingHdr + static_cast<std::int64_t>(hdr.size));
    put(hdr["FPosRecordingTrailer"], kUnset);
    put(last, nextRecordingHdr);
    Rewrite(m_recordingHdr + static_cast<std::int64_t>(first.offset), {bytes.data(), bytes.size()});
}

/// Rewrites a cell with a position in the header at `hdr`.
void CRawDataWriter::RewritePosition(std::int64_t hdr, const auto& cell, std::int64_t position) {
    std::array<char, kMostRewritten> room{};
    const auto bytes = std::span(room).first(cell.width);
    EncodePosition(cell.key, position, bytes);
    Rewrite(hdr + static_cast<std::int64_t>(cell.offset), {bytes.data(), bytes.size()});
}

/// Overwrites cells at a position now or, if the system refuses, as soon as it accepts them.
void CRawDataWriter::Rewrite(std::int64_t position, std::string_view bytes) {
    RetryRewrites();
    const bool isTaken = WriteCells(position, bytes);
    const auto place = std::lower_bound(m_refusedRewrites.begin(), m_refusedRewrites.end(), position,
                                        [](const auto& rewrite, std::int64_t at) { return rewrite.position < at; });
    const bool isKnown = place != m_refusedRewrites.end() && place->position == position;
    if (isTaken) {
        if (isKnown) m_refusedRewrites.erase(place);
        return;
    }
    // Only the newest cells for a position are kept; they always have the same size.
    const auto kept = isKnown ? place : m_refusedRewrites.insert(place, {position, bytes.size()});
    std::copy(bytes.begin(), bytes.end(), kept->bytes.begin());
}

/// Repeats the refused rewrites up to the first that is refused again, so that a broken disk costs one call.
void CRawDataWriter::RetryRewrites() {
    const auto isRefused = [this](const CRefusedRewrite& rewrite) { return !Repeat(rewrite); };
    const auto first = std::find_if(m_refusedRewrites.begin(), m_refusedRewrites.end(), isRefused);
    m_refusedRewrites.erase(m_refusedRewrites.begin(), first);
}

bool CRawDataWriter::Repeat(const CRefusedRewrite& rewrite) {
    return WriteCells(rewrite.position, {rewrite.bytes.data(), rewrite.size});
}

/// Overwrites cells at a position so that a process killed at any moment leaves each position unset or final.
///
/// The system copies page by page. If a page boundary splits the digits of a number, those after it are written first:
/// until the others follow, the cell still reads as -1, since a NUL follows the -1 before the boundary. If the boundary
/// is too close for that, the part before it is first changed to read as -1, regardless of what follows: readers find a
/// cell by its offset, and a value ends at the next `=`. The other cells follow in file order, so that a recording gets
/// its data before its successor. At worst, recovery finds a truncated key.
bool CRawDataWriter::WriteCells(std::int64_t position, std::string_view bytes) {
    const auto write = [&](std::size_t offset, std::string_view part) {
        return m_file.WriteAt(position + static_cast<std::int64_t>(offset), {AsBytes(part)});
    };
    const auto parted = PartedNumber(position, bytes);
    if (!parted) return write(0, bytes);
    constexpr std::string_view kUnsetText = "=-1=";
    const auto [begin, digits, boundary, end] = *parted;
    if (boundary < digits + kUnsetText.size() - 1) {
        std::array<char, kMostRewritten> room{};
        const auto text = bytes.substr(begin, boundary - begin - kUnsetText.size()).copy(room.data(), room.size());
        kUnsetText.copy(room.data() + text, kUnsetText.size());
        if (!write(begin, {room.data(), boundary - begin})) return false;
    }
    return write(boundary, bytes.substr(boundary, end - boundary)) && write(0, bytes);
}

}  // namespace vxfileio::rawdata
