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
        BeginRecording(FoundRecording(m_window, recording), ShiftAt(piece));
        if (isDirect) DoubtFirstCells(piece);
        if (recording.moved < 0) Lose({.reason = EReason::TakenOutOfHeader, .from = recording.begin, .to = piece.end});
        if (isDirect) CompareNext(false);
        if (recording.moved > 0) DoubtMoved(piece);
        const std::int64_t data = piece.end + piece.shift;
        m_isDataWrong = recording.next != kLost && recording.next != data;
        if (recording.next != kUnset)
            Compare("FPosRecordingData", recording.next, data, {.from = recording.begin, .to = piece.end});
    }

    /// Begins a recording. `shift` is what positions show at its header, or `kLost`.
    void BeginRecording(CFoundRecording recording, std::int64_t shift = kLost) {
        Compare(m_nextKey, m_nextRecording, recording.header.begin + m_shift, Here());
        const std::int64_t begin = recording.header.begin;
        EndRecording(begin, shift, IsNextAstray(begin, shift) || (m_nextRecording == kUnset && IsFollowed()));
        m_nextRecording = recording.header.form == nullptr ? kLost : recording.header.from;
        m_nextKey = kNextRecording;
        m_found.recordings.push_back(std::move(recording));
    }

    void TakeSegment(const CPiece& piece, const CCandidate& segment) {
        if (piece.isCut) return TakeCut(piece, segment);
        Keep(piece, segment, piece.samples);
        NoteUnshown(piece);
        if (segment.moved != 0) {
            DoubtMoved(piece);
        } else if (!segment.IsWhole() || piece.made == EMade::Size) {
            DoubtCells(piece, segment);
        }
    }

    void Keep(const CPiece& piece, const CCandidate& segment, std::int64_t samples) {
        if (m_first == nullptr) m_first = &piece;
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

    /// Returns whether the new file gets a segment: it isn't cut, or a sample is left that is asked for.
    bool IsKept(const CPiece& piece) const {
        return !piece.isCut || (m_keepCut && m_window.Size() - piece.candidate->end >= 2);
    }

    /// Takes the last segment if the input ends within its samples.
    void TakeCut(const CPiece& piece, const CCandidate& segment) {
        const std::int64_t there = (m_window.Size() - segment.end) / 2;
        CRemark remark{.reason = EReason::Cut,
                       .from = segment.begin,
                       .to = m_window.Size(),
                       .wellID = WellOf(segment),
                       .count = static_cast<std::uint64_t>(segment.size),
                       .missing = static_cast<std::uint64_t>(segment.size - there)};
        remark.should = there > 0 && !m_keepCut ? 1 : 0;
        NoteUnshown(piece);
        if (IsKept(piece)) {
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
            candidate.begin < m_end || IsAloneAstray(piece))
            DoubtSegmentBefore(piece, candidate, isGap);
        if (isFile) DoubtFile(candidate);
        if (isFile) EndFile(begin);
        const bool isBeforeFile = isFile && m_found.recordings.empty();
        if (piece.lostRecording) BeginLostRecording(piece, begin);
        if (isGap && (piece.lostRecording || isBeforeFile))
            return Lose(
                {.reason = isBeforeFile ? EReason::BeforeFile : EReason::LostRecording, .from = m_end, .to = begin});
        if (isGap) Lose(Unused(EReason::NoHeader, begin));
        if (candidate.kind == EKind::Segment && !piece.lostRecording) DoubtAfterLoss(piece, begin);
    }

    /// Returns how many bytes the position of a segment shows to be missing before it; less than 0 if there are extra
    /// bytes. Only a correct position counts, or a larger one that none proves wrong.
    std::int64_t MissingBefore(const CPiece& segment) const {
        const bool hasShift = segment.IsShown() || (IsAloneAstray(segment) && segment.ownShift > m_shift);
        return hasShift ? segment.ownShift - m_shift : 0;
    }

    /// Reports a segment if a recording header may have been before it: in the gap, or among the missing bytes. If
    /// there are more extra bytes than the gap has, nothing shows what was there.
    void DoubtAfterLoss(const CPiece& piece, std::int64_t begin) {
        const std::int64_t gap = std::max<std::int64_t>(begin - m_end, 0);
        const std::int64_t lost = gap + MissingBefore(piece);
        const bool hasRoom = lost >= LeastSizeOf(EKind::Recording);
        // Right after the recording header, both positions may be of the same other recording.
        const bool isConfirmed = (gap > 0 || SegmentBefore() != nullptr) && IsNextConfirmed(piece);
        if (!isConfirmed && (hasRoom || lost < 0 || (gap > 0 && NextRecordingIn(begin)))) DoubtRecordingOf(piece);
    }

    /// Returns whether the shift of a segment confirms the position of the next recording.
    bool IsNextConfirmed(const CPiece& segment) const {
        return segment.nextRecording != kLost && segment.nextRecording == m_nextRecording;
    }

    /// Ends a recording. Reports its segments if they may be of another one. The next one begins at `begin`, where
    /// positions show `shift`, or `kLost`. `isNextWrong` says whether the position of the next one is wrong: if that of
    /// the data is, too, the header may be a copy of another one.
    void EndRecording(std::int64_t begin, std::int64_t shift, bool isNextWrong) {
        if (m_isDataWrong && isNextWrong && m_first != nullptr) DoubtRecordingOf(*m_first);
        DoubtUnshown(begin, shift);
        m_first = nullptr;
        m_unshown = nullptr;
        m_isDataWrong = false;
        m_doubtedFrom = kFarthest;
    }

    /// Reports the segments that no position places if they may be of another recording: positions show that before the
    /// next one, at `begin`, a recording header is missing or a segment was inserted; the next one isn't where its
    /// position says; or positions show nothing, and the header before the segments may be parts of two.
    void DoubtUnshown(std::int64_t begin, std::int64_t shift) {
        const std::int64_t by = shift == kLost ? 0 : shift - m_shift;
        const bool hasRoom = by >= LeastSizeOf(EKind::Recording) || -by >= LeastSizeOf(EKind::Segment);
        if (m_unshown != nullptr && (hasRoom || IsNextAstray(begin, shift) || (shift == kLost && IsInParts())))
            DoubtRecordingOf(*m_unshown);
    }

    /// Returns whether the position of the next recording, which begins at `begin`, fits neither the shift before that
    /// nor `shift`, if known.
    bool IsNextAstray(std::int64_t begin, std::int64_t shift) const {
        const bool isKnown = m_nextRecording != kLost && m_nextRecording != kUnset;
        return isKnown && m_nextRecording != begin + m_shift && (shift == kLost || m_nextRecording != begin + shift);
    }

    /// Returns whether more of the file follows the recording header that begins with the current piece. Before a
    /// writer continues after a header, it replaces the -1 in the recording header before.
    bool IsFollowed() const {
        const std::size_t next = m_index + 1;
        return m_pieces[m_index].lostRecording ||
               (next < m_pieces.size() && m_pieces[next].candidate->kind != EKind::File);
    }

    /// Returns whether cells of the current recording header moved: it may be parts of two.
    bool IsInParts() const { return m_found.recordings.back().header.moved != 0; }

    /// Reports that a segment and those after it may be of another recording, unless that has been reported, or the
    /// segment isn't kept.
    void DoubtRecordingOf(const CPiece& piece) {
        if (piece.candidate->begin >= m_doubtedFrom || !IsKept(piece)) return;
        m_doubtedFrom = piece.candidate->begin;
        DoubtPiece(EReason::OtherRecording, piece);
    }

    /// Remembers a segment if neither its position nor that of the segment before it shows where it is. The position in
    /// a recording header doesn't count: the header may be parts of two.
    void NoteUnshown(const CPiece& piece) {
        const bool isPointedAt = m_end == piece.candidate->begin && SegmentBefore() != nullptr && Before()->IsShown();
        if (piece.IsShown()) {
            m_unshown = nullptr;
        } else if (m_unshown == nullptr && !isPointedAt) {
            m_unshown = &piece;
        }
    }

    /// Returns where the next recording header should begin, if that is in the gap up to `begin`.
    std::optional<std::int64_t> NextRecordingIn(std::int64_t begin) const {
        const std::int64_t next = PlaceOf(m_nextRecording);
        return next >= m_end && next < begin ? std::optional(next) : std::nullopt;
    }

    /// Returns whether a position has another shift and no later one proves it wrong: bytes may be missing before it,
    /// or inserted there.
    bool IsAloneAstray(const CPiece& piece) const {
        const bool isShownLater = m_index + 1 < m_pieces.size() && m_pieces[m_index + 1].shownShift != kLost;
        return piece.ownShift != kLost && piece.ownShift != m_shift && !isShownLater;
    }

    /// Returns the shift that the position of a piece or a later one shows; if none does, that of its wrong position.
    std::int64_t ShiftAt(const CPiece& piece) const { return IsAloneAstray(piece) ? piece.ownShift : piece.shownShift; }

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
        remark.wellID = WellOf(segment);
        remark.form = segment.form;
        remark.cells = CellsAt(m_window, *segment.form, segment.Place()).damaged;
        const bool isOverlapped = end < m_window.Size() && segment.DataEnd() > end;
        remark.reason = !segment.IsWhole() ? EReason::DamagedSegment
                        : isOverlapped     ? EReason::TakenOutOf
                                           : EReason::Contradiction;
        return remark;
    }

    /// Begins a recording whose header is lost, with its first segment. Keeps the cells that are left. If another
    /// header has room after that one, the segments may be of the other.
    void BeginLostRecording(const CPiece& first, std::int64_t begin) {
        const CCandidate left = BestAt(m_window, EKind::Recording, NextRecordingIn(begin).value_or(m_end));
        const bool isLeft = begin > m_end && left.end <= begin && left.whole > 0;
        CFoundRecording lost;
        lost.header.begin = left.begin;
        BeginRecording(isLeft ? FoundRecording(m_window, left) : std::move(lost));
        if (!isLeft) return;
        // Now, `m_nextRecording` is the position among the cells that are left.
        const bool hasRoom = begin - left.end + MissingBefore(first) >= LeastSizeOf(EKind::Recording);
        if (hasRoom && !IsNextConfirmed(first)) DoubtRecordingOf(first);
    }

    /// Reports that the segment before a gap, or before a change of the shift, is in doubt: bytes may have been
    /// inserted into its samples or removed from them.
    void DoubtSegmentBefore(const CPiece& piece, const CCandidate& candidate, bool isGap) {
        if (!isGap && candidate.kind != EKind::Recording) DoubtFirstCells(piece);
        const CCandidate* const before = SegmentBefore();
        if (before == nullptr || Before()->isCut) return;
        const std::int64_t shift = ShiftAt(piece);
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
        const std::int64_t shift = ShiftAt(piece);
        if (shift != kLost && shift - m_shift >= LeastSizeOf(piece.candidate->kind))
            DoubtPiece(EReason::OtherHeader, piece);
    }

    // ---- The end ----------------------------------------------------------------------------------------------------

    /// Compares the last positions of a file with its end: the end of the input, or the offset of another file.
    void EndFile(std::int64_t end) {
        if (m_end == end && SegmentBefore() != nullptr && !Before()->isCut)
            EndPosition(kNextSegment, SegmentBefore()->next, end, EReason::MissingSegment);
        // The next recording may have begun where the last segment should end.
        const bool isCut = Before() != nullptr && Before()->isCut;
        const bool isNextWrong = IsPosition(m_nextRecording) && PlaceOf(m_nextRecording) < m_end;
        EndRecording(isCut ? Before()->candidate->DataEnd() : m_end, kLost, isNextWrong);
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

    /// Returns the well of a segment whose ID can be read.
    static std::optional<std::int32_t> WellOf(const CCandidate& candidate) {
        if (candidate.kind != EKind::Segment || candidate.noID) return std::nullopt;
        return candidate.well;
    }

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
        const CRemark where{.from = before->begin, .to = m_end, .wellID = WellOf(*before)};
        Compare(kNextSegment, before->next, isFollowed ? m_end + m_shift : kUnset, where);
        if (m_shift != 0) m_found.isStraight = false;
    }

    CRemark Here() const { return {.from = m_end, .to = m_end}; }

    void DoubtPiece(EReason reason, const CPiece& piece) {
        const CCandidate& candidate = *piece.candidate;
        Doubt({.reason = reason, .from = candidate.begin, .to = piece.end, .wellID = WellOf(candidate)});
    }

    void DoubtMoved(const CPiece& piece) {
        DoubtPiece(piece.candidate->moved > 0 ? EReason::PutIntoHeader : EReason::TakenFromHeader, piece);
    }

    void DoubtCells(const CPiece& piece, const CCandidate& segment) {
        const CHdrCells cells = CellsAt(m_window, *segment.form, segment.Place());
        CRemark remark{.reason = EReason::DamagedCells,
                       .from = segment.begin,
                       .to = piece.end,
                       .wellID = WellOf(segment),
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
    std::int64_t m_doubtedFrom = kFarthest;  ///< Segments from here on were reported as maybe of another recording.
    const CPiece* m_first = nullptr;         ///< The first kept segment of the current recording, if any.
    bool m_isDataWrong = false;              ///< The position of the data in its header is wrong.
    const CPiece* m_unshown = nullptr;       ///< The first segment after the last one that a position places, if any.
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
