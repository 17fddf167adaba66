#include "recovery/Account.h"

#include <algorithm>
#include <map>
#include <utility>

#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

constexpr const char* kNextSegment = "FPosNextSegmentHdr";
constexpr const char* kNextRecording = "FPosNextRecordingHdr";

/// Returns a segment with the times of its header.
CFoundSegment FoundSegment(const CCandidate& segment, std::int64_t samples, std::uint32_t recording) {
    return {.position = segment.begin,
            .data = segment.end,
            .from = segment.from,
            .to = segment.to,
            .samples = static_cast<std::uint32_t>(samples),
            .wellID = segment.well,
            .recording = recording,
            .namesWell = !segment.noID};
}

CFoundRecording FoundRecording(CWindow& window, const CCandidate& header) {
    return {.header = header, .wellList = WellListOf(CellsAt(window, *header.form, header.Place())), .wells = {}};
}

class CAccountant {
 public:
    CAccountant(CWindow& window, const std::vector<CPiece>& pieces, bool keepCut, bool isGrowing)
        : m_window(window), m_pieces(pieces), m_keepCut(keepCut), m_isGrowing(isGrowing) {}

    CFound Run() {
        for (m_index = 0; m_index < m_pieces.size(); ++m_index) {
            const CPiece& piece = m_pieces[m_index];
            const CCandidate& candidate = *piece.candidate;
            PassGap(piece, candidate, std::min(candidate.begin, piece.end));
            if (piece.isAmbiguous) Doubt({.reason = EReason::Ambiguous, .from = m_end, .to = candidate.begin});
            if (candidate.kind == EKind::File) TakeFile(candidate);
            if (candidate.kind == EKind::Recording) TakeRecording(piece, candidate);
            if (candidate.kind == EKind::Segment) TakeSegment(piece, candidate);
            m_shift = piece.shift;
            m_end = piece.end;
        }
        if (m_end < m_window.Size()) LoseEnd();
        EndFile(m_window.Size());
        return std::move(m_found);
    }

 private:
    const CPiece* Before() const { return m_index == 0 ? nullptr : &m_pieces[m_index - 1]; }
    const CCandidate* SegmentBefore() const {
        const CPiece* const before = Before();
        return before != nullptr && before->candidate->kind == EKind::Segment ? before->candidate : nullptr;
    }

    // ---- Headers ----------------------------------------------------------------------------------------------------

    void TakeFile(const CCandidate& file) {
        if (m_found.file.form == nullptr && m_found.recordings.empty()) m_found.file = file;
        m_nextRecording = file.next;
        m_nextKey = "FPosFirstRecordingHdr";
    }

    void TakeRecording(const CPiece& piece, const CCandidate& recording) {
        const bool isDirect = m_end == recording.begin;
        BeginRecording(FoundRecording(m_window, recording));
        if (isDirect) DoubtFirstCells(piece);
        if (recording.moved < 0) Lose({.reason = EReason::TakenOutOfHeader, .from = recording.begin, .to = piece.end});
        if (isDirect) CompareNext(false);
        if (recording.moved > 0) DoubtMoved(piece);
        const CRemark where{.from = recording.begin, .to = piece.end};
        if (recording.next != kUnset) Compare("FPosRecordingData", recording.next, piece.end + piece.shift, where);
    }

    void BeginRecording(CFoundRecording recording) {
        Compare(m_nextKey, m_nextRecording, recording.header.begin + m_shift, Here());
        m_nextRecording = recording.header.form == nullptr ? kLost : recording.header.from;
        m_nextKey = kNextRecording;
        m_found.recordings.push_back(std::move(recording));
    }

    void TakeSegment(const CPiece& piece, const CCandidate& segment) {
        if (piece.isCut) return TakeCut(piece, segment);
        Keep(piece, segment, piece.samples);
        if (segment.moved != 0) {
            DoubtMoved(piece);
        } else if (!segment.IsWhole() || piece.made == EMade::Size) {
            DoubtCells(piece, segment);
        }
    }

    void Keep(const CPiece& piece, const CCandidate& segment, std::int64_t samples) {
        CFoundSegment found = FoundSegment(segment, samples, static_cast<std::uint32_t>(m_found.recordings.size() - 1));
        found.made = piece.made;
        if (piece.isCut) {
            const std::int64_t tick = m_found.recordings.back().wellList.TickOf(segment.well);
            const std::int64_t interval =
                IntervalOf(segment.from, segment.to, static_cast<std::uint32_t>(segment.size), tick);
            found.to = TimeAfter(segment.from, samples - 1, interval).value_or(segment.to);
        }
        m_found.segments.push_back(found);
    }

    /// Takes the last segment if the input ends within its samples.
    void TakeCut(const CPiece& piece, const CCandidate& segment) {
        const std::int64_t there = (m_window.Size() - segment.end) / 2;
        CRemark remark{.reason = EReason::Cut,
                       .from = segment.begin,
                       .to = m_window.Size(),
                       .wellID = segment.NamedWell(),
                       .count = static_cast<std::uint64_t>(segment.size),
                       .missing = static_cast<std::uint64_t>(segment.size - there)};
        remark.should = there > 0 && !m_keepCut ? 1 : 0;
        if (there > 0 && m_keepCut) {
            Keep(piece, segment, there);
            remark.reason = EReason::CutKept;
            remark.from = segment.end + 2 * there;
            remark.to = segment.DataEnd();
        }
        LoseAtEnd(std::move(remark));
    }

    // ---- Gaps -------------------------------------------------------------------------------------------------------

    /// Reports the bytes from the end of the last piece up to `begin`, which belong to nothing.
    void PassGap(const CPiece& piece, const CCandidate& candidate, std::int64_t begin) {
        const bool isGap = begin > m_end;
        const bool isFile = candidate.kind == EKind::File;
        if (candidate.kind == EKind::Segment && !(piece.lostRecording && isGap)) CompareNext(!piece.lostRecording);
        if (isGap || piece.lostRecording || (!isFile && piece.shift != m_shift - candidate.moved) ||
            candidate.begin < m_end || piece.isAstray)
            DoubtSegmentBefore(piece, candidate, isGap);
        if (isFile) DoubtFile(candidate);
        if (isFile) EndFile(begin);
        const bool isBeforeFile = isFile && m_found.recordings.empty();
        if (piece.lostRecording) BeginLostRecording(begin);
        if (isGap && (piece.lostRecording || isBeforeFile))
            return Lose(
                {.reason = isBeforeFile ? EReason::BeforeFile : EReason::LostRecording, .from = m_end, .to = begin});
        if (isGap) Lose(Unused(EReason::NoHeader, begin));
    }

    /// Returns where the next recording header should begin, if that is in the gap up to `begin`.
    std::optional<std::int64_t> NextRecordingIn(std::int64_t begin) const {
        const std::int64_t next = PlaceOf(m_nextRecording);
        return next >= m_end && next < begin ? std::optional(next) : std::nullopt;
    }

    /// A file that begins among the samples of a segment was either appended to a cut file or stored as these samples.
    void DoubtFile(const CCandidate& file) {
        const CCandidate segment = BestAt(m_window, EKind::Segment, m_end);
        const std::int64_t end = segment.DataEnd();
        if (segment.IsWhole() && segment.end <= file.begin && file.begin < end)
            Doubt({.reason = EReason::Ambiguous, .from = file.begin, .to = std::min(end, m_window.Size())});
    }

    /// Describes the bytes up to `end`, which belong to nothing: at least half of a segment header may be there.
    CRemark Unused(EReason otherwise, std::int64_t end) {
        const CCandidate segment = BestAt(m_window, EKind::Segment, m_end);
        CRemark remark{.reason = otherwise, .from = m_end, .to = end};
        if (segment.whole < segment.damaged || segment.end > m_window.Size()) return remark;
        remark.wellID = segment.NamedWell();
        remark.form = segment.form;
        remark.cells = CellsAt(m_window, *segment.form, segment.Place()).damaged;
        const bool isOverlapped = end < m_window.Size() && segment.DataEnd() > end;
        remark.reason = !segment.IsWhole() ? EReason::DamagedSegment
                        : isOverlapped     ? EReason::TakenOutOf
                                           : EReason::Contradiction;
        return remark;
    }

    /// Begins a recording whose header is lost. Keeps the cells that are left.
    void BeginLostRecording(std::int64_t begin) {
        CFoundRecording lost;
        lost.header.begin = NextRecordingIn(begin).value_or(m_end);
        const CCandidate left = BestAt(m_window, EKind::Recording, lost.header.begin, begin);
        BeginRecording(left.whole > 0 ? FoundRecording(m_window, left) : std::move(lost));
    }

    /// Reports that the segment before a gap, or before a change of the shift, is in doubt: bytes may have been
    /// inserted into its samples or removed from them.
    void DoubtSegmentBefore(const CPiece& piece, const CCandidate& candidate, bool isGap) {
        if (!isGap && candidate.kind != EKind::Recording) DoubtFirstCells(piece);
        const CCandidate* const before = SegmentBefore();
        if (before == nullptr || Before()->isCut) return;
        const std::int64_t shift = piece.evidentShift;
        if (candidate.begin < m_end || (piece.lostRecording && !isGap)) {
            DoubtPiece(EReason::TakenOut, *Before());
        } else if (shift == kLost) {
            if (!LooksLikeHeader(m_window, m_end)) DoubtPiece(EReason::Unconfirmed, *Before());
        } else if (shift != m_shift) {
            DoubtPiece(shift > m_shift ? EReason::TakenOut : EReason::PutIn, *Before());
        }
    }

    /// Reports a header right after a piece if at least as many bytes are missing as a header has: its first cells may
    /// be of another one.
    void DoubtFirstCells(const CPiece& piece) {
        const std::int64_t shift = piece.evidentShift;
        if (shift != kLost && shift - m_shift >= LeastSizeOf(piece.candidate->kind))
            DoubtPiece(EReason::OtherHeader, piece);
    }

    // ---- The end ----------------------------------------------------------------------------------------------------

    /// Compares the last positions of a file with its end: the end of the input, or the offset of another file.
    void EndFile(std::int64_t end) {
        if (m_end == end && SegmentBefore() != nullptr && !Before()->isCut)
            EndPosition(kNextSegment, SegmentBefore()->next, end, EReason::MissingSegment);
        EndPosition(m_nextKey, m_nextRecording, end, EReason::MissingRecording);
        if (m_end == end && Before() != nullptr && Before()->candidate->kind == EKind::Recording &&
            !(end == m_window.Size() && m_isGrowing))
            Doubt({.reason = EReason::MaybeEmpty, .from = end, .to = end});
    }

    void LoseEnd() {
        const bool isLike = LooksLikeHeader(m_window, m_end);
        if (SegmentBefore() != nullptr && !isLike) DoubtPiece(EReason::Unconfirmed, *Before());
        LoseAtEnd(Unused(isLike ? EReason::EndsInHeader : EReason::EndsInRubbish, m_window.Size()));
    }

    /// Compares a last position with the end of its file. A writer sets a position only after writing what it points
    /// at. What is in a gap is reported with the gap.
    void EndPosition(const char* key, std::int64_t position, std::int64_t end, EReason reason) {
        if (position == kLost || position == kUnset) return;
        const std::int64_t place = PlaceOf(position);
        if (place < m_end) return Compare(key, position, kUnset, Here());
        if (place < end) return;
        const bool isLast = end == m_window.Size();
        CRemark remark{.reason = reason, .from = end, .to = isLast ? place : end, .value = position};
        if (!isLast || !m_isGrowing) Lose(std::move(remark));
    }

    // ---- Remarks ----------------------------------------------------------------------------------------------------

    /// Returns the offset in the input that a position points at.
    std::int64_t PlaceOf(std::int64_t position) const { return IsPosition(position) ? position - m_shift : position; }

    /// Compares a position with the actual offset, which is what the new file gets. In an unfinished recording, -1 may
    /// not have been replaced yet.
    void Compare(const char* key, std::int64_t position, std::int64_t should, const CRemark& where) {
        if (position == should || position == kLost) return;
        m_found.isStraight = false;
        if (position == kUnset && (m_found.recordings.empty() || m_found.recordings.back().IsUnfinished())) return;
        CRemark remark = where;
        remark.reason = EReason::Position;
        remark.value = position;
        remark.should = should;
        remark.what = key;
        Doubt(std::move(remark));
    }

    /// Compares the position of the previous segment with what follows it.
    void CompareNext(bool isFollowed) {
        const CCandidate* const before = SegmentBefore();
        if (before == nullptr || Before()->isCut) return;
        const CRemark where{.from = before->begin, .to = m_end, .wellID = before->NamedWell()};
        Compare(kNextSegment, before->next, isFollowed ? m_end + m_shift : kUnset, where);
        if (m_shift != 0) m_found.isStraight = false;
    }

    CRemark Here() const { return {.from = m_end, .to = m_end}; }

    void DoubtPiece(EReason reason, const CPiece& piece) {
        const CCandidate& candidate = *piece.candidate;
        Doubt({.reason = reason, .from = candidate.begin, .to = piece.end, .wellID = candidate.NamedWell()});
    }

    void DoubtMoved(const CPiece& piece) {
        DoubtPiece(piece.candidate->moved > 0 ? EReason::PutIntoHeader : EReason::TakenFromHeader, piece);
    }

    void DoubtCells(const CPiece& piece, const CCandidate& segment) {
        const CHdrCells cells = CellsAt(m_window, *segment.form, segment.Place());
        CRemark remark{.reason = EReason::DamagedCells,
                       .from = segment.begin,
                       .to = piece.end,
                       .wellID = segment.NamedWell(),
                       .form = segment.form,
                       .cells = cells.damaged,
                       .lost = cells.lost};
        if (piece.made == EMade::Size) {
            remark.cells.set(segment.form->RowOf("Size"));
            remark.lost.set(segment.form->RowOf("Size"));
        }
        remark.should = segment.noID ? 1 : 0;
        Doubt(std::move(remark));
    }

    /// While the input is being written, its end is neither a loss nor a doubt.
    void LoseAtEnd(CRemark remark) {
        if (!m_isGrowing) Lose(std::move(remark));
    }

    void Lose(CRemark remark) { Add(m_found.losses, std::move(remark)); }
    void Doubt(CRemark remark) { Add(m_found.doubts, std::move(remark)); }

    void Add(CRemarks& remarks, CRemark remark) {
        const std::size_t recordings = m_found.recordings.size();
        if (recordings > 0) remark.recording = static_cast<std::uint32_t>(recordings - 1);
        remarks.Add(std::move(remark));
    }

    CWindow& m_window;
    const std::vector<CPiece>& m_pieces;
    bool m_keepCut;
    bool m_isGrowing;
    CFound m_found;
    std::size_t m_index = 0;
    std::int64_t m_end = 0;                  ///< The end of the last piece.
    std::int64_t m_shift = 0;                ///< The shift of the last piece.
    std::int64_t m_nextRecording = kLost;    ///< The position of the next recording, from the last header.
    const char* m_nextKey = kNextRecording;  ///< The key of its cell.
};

/// The ends of headers with their samples, by offset.
using CEnds = std::map<std::int64_t, std::int64_t>;

/// Takes the whole header of a kind at a position; null if there is none, or if it was taken before.
const CCandidate* Take(const CCandidates& candidates, EKind kind, std::int64_t position, CEnds& taken) {
    const CCandidate* const header = candidates.WholeAt(kind, position);
    if (header == nullptr || (kind == EKind::Segment && TicksOf(header->from, header->to, header->size).IsEmpty()))
        return nullptr;
    return taken.emplace(header->begin, header->DataEnd()).second ? header : nullptr;
}

/// Reports the bytes that no position points at as lost. Returns false if headers or samples overlap or are cut.
bool LoseGaps(const CEnds& taken, std::int64_t size, CRemarks& losses) {
    std::int64_t end = 0;
    for (const auto& [from, to] : taken) {
        if (from < end || to > size) return false;
        if (from > end) losses.Add({.reason = EReason::NotReached, .from = end, .to = from});
        end = to;
    }
    if (size > end) losses.Add({.reason = EReason::NotReached, .from = end, .to = size});
    return true;
}

}  // namespace

CFound AccountFor(CWindow& window, const std::vector<CPiece>& pieces, bool keepCut, bool isGrowing) {
    return CAccountant(window, pieces, keepCut, isGrowing).Run();
}

std::optional<CFound> FollowPositions(CWindow& window, const CCandidates& candidates,
                                      const std::vector<CPiece>& pieces) {
    CEnds taken;
    const CCandidate* const file = Take(candidates, EKind::File, 0, taken);
    if (file == nullptr) return std::nullopt;
    CFound found;
    found.file = *file;
    for (std::int64_t next = file->next; next != kUnset;) {
        const CCandidate* const recording = Take(candidates, EKind::Recording, next, taken);
        if (recording == nullptr || recording->next == kUnset) return std::nullopt;
        found.recordings.push_back(FoundRecording(window, *recording));
        next = recording->next;
        const bool isEmpty = next == recording->end && candidates.WholeAt(EKind::Segment, next) == nullptr;
        while (const CCandidate* const segment = Take(candidates, EKind::Segment, next, taken)) {
            const auto index = static_cast<std::uint32_t>(found.recordings.size() - 1);
            found.segments.push_back(FoundSegment(*segment, segment->size, index));
            next = segment->next;
        }
        if (next != kUnset && !isEmpty) return std::nullopt;
        next = recording->from;
    }
    const auto isTaken = [&](const CPiece& piece) { return taken.contains(piece.candidate->begin); };
    if (!std::ranges::all_of(pieces, isTaken) || !LoseGaps(taken, window.Size(), found.losses)) return std::nullopt;
    return found;
}

}  // namespace vxfileio::recovery
