#include "recovery/Membership.h"

#include <algorithm>

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

/// The beginning of the next recording, or the end of the file.
struct CBoundary {
    std::int64_t offset = 0;
    std::int64_t shift = kLost;  ///< What positions show there, or `kLost`.
};

/// What is known about the current recording.
struct CCurrentRecording {
    std::int64_t next = kLost;         ///< The position of the next recording, by the header.
    bool isDataWrong = false;          ///< The position of its own data is wrong.
    bool isInParts = false;            ///< Cells of the header moved or are missing: it may be parts of two.
    const CPiece* first = nullptr;     ///< Its first segment, if any.
    const CPiece* unshown = nullptr;   ///< The first segment after the last one that a position places, if any.
    const CPiece* doubtful = nullptr;  ///< The first segment that may be of another recording, if any.
};

class CMembership {
 public:
    CMembership(const std::vector<CPiece>& pieces, CFound& found) : m_pieces(pieces), m_found(found) {}

    void Run() {
        for (const CPiece& piece : m_pieces) {
            const EKind kind = piece.candidate->kind;
            if (kind == EKind::File) BeginFile(piece);
            if (kind == EKind::Recording) BeginRecording(piece);
            if (kind == EKind::Segment) TakeSegment(piece);
            m_before = &piece;
        }
        EndFile();
    }

 private:
    std::int64_t End() const { return m_before == nullptr ? 0 : m_before->end; }
    std::int64_t Shift() const { return m_before == nullptr ? 0 : m_before->shift; }
    bool FollowsSegment() const { return m_before != nullptr && m_before->candidate->kind == EKind::Segment; }

    // ---- Recordings -------------------------------------------------------------------------------------------------

    void BeginFile(const CPiece& piece) {
        EndFile();
        m_recording = {.next = piece.candidate->next};
    }

    /// Begins a recording with its header, or if that is lost, with its first segment.
    void BeginRecording(const CPiece& piece) {
        const CCandidate& header = m_found.recordings[m_recordings].header;
        const CBoundary end{header.begin, piece.lostRecording ? kLost : piece.evidentShift};
        EndRecording(end, IsNextAstray(end) || (m_recording.next == kUnset && IsFollowed(piece)));
        ++m_recordings;
        const bool hasData = !piece.lostRecording && header.next != kLost;
        m_recording = {.next = header.form == nullptr ? kLost : header.from,
                       .isDataWrong = hasData && header.next != piece.end + piece.shift,
                       .isInParts = header.moved != 0};
    }

    void EndFile() {
        const bool isCut = m_before != nullptr && m_before->isCut;
        // Where the last segment should end, the next recording may have begun.
        const CBoundary end{.offset = isCut ? m_before->candidate->DataEnd() : End()};
        EndRecording(end, IsNextBefore(End()));
    }

    /// `isNextWrong` says whether the position of the next recording is wrong: if that of the data is, too, the header
    /// may be a copy of another one.
    void EndRecording(const CBoundary& end, bool isNextWrong) {
        if (m_recording.isDataWrong && isNextWrong) Doubt(m_recording.first);
        if (MayMisplaceUnshown(end)) Doubt(m_recording.unshown);
        if (m_recording.doubtful != nullptr) Report(*m_recording.doubtful);
    }

    /// Returns whether segments that no position places may be of another recording: positions show that before `end`,
    /// a recording header is missing or a segment was inserted; the next recording isn't where its position says; or
    /// positions show nothing, and the header may be parts of two.
    bool MayMisplaceUnshown(const CBoundary& end) const {
        const std::int64_t missing = end.shift == kLost ? 0 : end.shift - Shift();
        const bool hasRoom = missing >= LeastSizeOf(EKind::Recording) || -missing >= LeastSizeOf(EKind::Segment);
        return hasRoom || IsNextAstray(end) || (end.shift == kLost && m_recording.isInParts);
    }

    void Report(const CPiece& piece) {
        const CCandidate& segment = *piece.candidate;
        m_found.doubts.Add({.reason = EReason::OtherRecording,
                            .from = segment.begin,
                            .to = piece.end,
                            .recording = static_cast<std::uint32_t>(m_recordings - 1),
                            .wellID = segment.NamedWell()});
    }

    /// Returns whether the position of the next recording fits neither the shift before `end` nor the one there.
    bool IsNextAstray(const CBoundary& end) const {
        const bool isKnown = m_recording.next != kLost && m_recording.next != kUnset;
        return isKnown && m_recording.next != end.offset + Shift() &&
               (end.shift == kLost || m_recording.next != end.offset + end.shift);
    }

    /// Returns whether more of the file follows the recording header that begins with a piece. Before a writer
    /// continues after a header, it replaces the -1 in the recording header before.
    bool IsFollowed(const CPiece& piece) const {
        const CPiece* const next = &piece + 1;
        return piece.lostRecording ||
               (next != m_pieces.data() + m_pieces.size() && next->candidate->kind != EKind::File);
    }

    // ---- Segments ---------------------------------------------------------------------------------------------------

    void TakeSegment(const CPiece& piece) {
        if (piece.lostRecording) BeginRecording(piece);
        const CCandidate& header = m_found.recordings[m_recordings - 1].header;
        const bool isMadeUp = piece.lostRecording && header.form == nullptr;
        if (!isMadeUp && HasRoom(piece.lostRecording ? header.end : End(), piece)) Doubt(&piece);
        NoteUnshown(piece);
        if (m_recording.first == nullptr) m_recording.first = &piece;
    }

    /// Returns whether a recording header may have been between `from` and a segment: in the gap there, or among the
    /// missing bytes. If there are more extra bytes than the gap has, nothing shows what was there.
    bool HasRoom(std::int64_t from, const CPiece& piece) const {
        const std::int64_t begin = std::min(piece.candidate->begin, piece.end);
        const std::int64_t gap = std::max<std::int64_t>(begin - from, 0);
        // Right after the recording header, both positions may be of the same other recording.
        const bool isAfterHeader = gap == 0 && (piece.lostRecording || !FollowsSegment());
        if (!isAfterHeader && piece.nextRecording != kLost && piece.nextRecording == m_recording.next) return false;
        const std::int64_t lost = gap + piece.MissingBefore();
        return lost >= LeastSizeOf(EKind::Recording) || lost < 0 || (IsNextBefore(begin) && !IsNextBefore(from));
    }

    /// Returns whether the next recording should begin before an offset.
    bool IsNextBefore(std::int64_t offset) const {
        return IsPosition(m_recording.next) && m_recording.next < offset + Shift();
    }

    /// Remembers a segment if neither its position nor that of the segment before it shows where it is. The position in
    /// a recording header doesn't count: the header may be parts of two.
    void NoteUnshown(const CPiece& piece) {
        const bool isPointedAt = End() == piece.candidate->begin && FollowsSegment() && m_before->IsShown();
        if (piece.IsShown()) {
            m_recording.unshown = nullptr;
        } else if (m_recording.unshown == nullptr && !isPointedAt) {
            m_recording.unshown = &piece;
        }
    }

    /// Doubts a segment, if there is one, and those after it in its recording. A cut one counts only if it is kept.
    void Doubt(const CPiece* piece) {
        const CPiece* const doubtful = m_recording.doubtful;
        if (piece == nullptr || (doubtful != nullptr && doubtful->candidate->begin <= piece->candidate->begin)) return;
        const auto& kept = m_found.segments;
        if (!piece->isCut || (!kept.empty() && kept.back().position == piece->candidate->begin))
            m_recording.doubtful = piece;
    }

    const std::vector<CPiece>& m_pieces;
    CFound& m_found;
    const CPiece* m_before = nullptr;  ///< The piece before, if any.
    std::size_t m_recordings = 0;      ///< The number of recordings so far.
    CCurrentRecording m_recording;
};

}  // namespace

void DoubtMembership(const std::vector<CPiece>& pieces, CFound& found) { CMembership(pieces, found).Run(); }

}  // namespace vxfileio::recovery
