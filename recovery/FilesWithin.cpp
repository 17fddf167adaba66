#include "recovery/FilesWithin.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <vector>

namespace vxfileio::recovery {

using rawdata::kUnset;

namespace {

/// Finds raw data files that were stored as samples. The *place* of a header is its offset in its own file: its offset
/// here plus its shift. Places of headers in an inner file count from the beginning of that file; after it, those of
/// the outer file continue.
class CFilesWithin {
 public:
    CFilesWithin(CCandidates& candidates, std::int64_t size)
        : m_candidates(candidates), m_list(candidates.list), m_size(size) {}

    void LeaveOut() {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < m_list.size(); ++i) {
            if (m_list[i].kind == EKind::File && m_list[i].begin > 0 && m_list[i].IsWhole() && m_shift) i = EndOf(i);
            if (i == m_list.size()) break;
            Pass(m_list[i]);
            m_list[kept++] = m_list[i];
        }
        m_list.resize(kept);
    }

 private:
    void Pass(const CCandidate& candidate) {
        if (candidate.kind == EKind::Recording) m_around = &m_candidates.WellsOf(candidate);
        if (candidate.kind == EKind::Recording && candidate.from != kLost) m_nextRecording = candidate.from;
        if (candidate.kind == EKind::Segment && candidate.next != kLost) m_nextSegment = candidate.next;
        if (candidate.kind == EKind::File) m_nextRecording = m_nextSegment = kLost;
        if (const auto shift = candidate.OwnShift()) m_shift = shift;
    }

    /// Returns the index of the first candidate after the file that begins at `file`, or `file` if it isn't within
    /// samples.
    std::size_t EndOf(std::size_t file) const {
        if (IsAppended(file)) return file;
        if (const auto end = EndOfSamples(file)) return *end;
        if (const auto end = FirstAround(file)) return *end;
        const std::size_t end = AfterLastSegment(file);
        return end == file && BeginsSamples(file) ? m_list.size() : end;
    }

    /// Returns whether the file begins where another one ends: after the last segment of its last recording.
    bool IsAppended(std::size_t file) const {
        const CCandidate& last = m_list[file - 1];
        return last.kind == EKind::Segment && last.IsWhole() && last.next == kUnset &&
               last.end + 2 * last.size == m_list[file].begin && !IsPosition(m_nextRecording);
    }

    /// Returns whether the file is at the beginning of a whole segment's samples and all that follows is within them.
    bool BeginsSamples(std::size_t file) const {
        const CCandidate& segment = m_list[file - 1];
        return segment.kind == EKind::Segment && segment.IsWhole() && segment.end == m_list[file].begin &&
               m_list.back().end <= segment.end + 2 * segment.size;
    }

    /// Returns the candidate after the samples that hold the file, if their own header was found, even damaged, and
    /// they end at another header or at the end of the input.
    std::optional<std::size_t> EndOfSamples(std::size_t file) const {
        for (std::size_t i = file; i > 0 && m_list[i - 1].end > m_list[file - 1].begin; --i) {
            const CCandidate& segment = m_list[i - 1];
            const std::int64_t end = segment.end + 2 * segment.size;
            if (segment.kind != EKind::Segment || segment.noSize || end <= m_list[file].begin) continue;
            const auto next = std::ranges::lower_bound(m_list, end, {}, &CCandidate::claim);
            if (end == m_size || (next != m_list.end() && next->begin == end))
                return static_cast<std::size_t>(next - m_list.begin());
        }
        return std::nullopt;
    }

    /// Returns the first header after the file that belongs to the outer file again: it has the same shift as those
    /// before the file, or the shift of the header at the place that these point at. Shifts that also have headers at
    /// earlier places are those of other files. Passes only some files, so that joined ones take linear time.
    std::optional<std::size_t> FirstAround(std::size_t file) const {
        std::optional<std::int64_t> shift;
        std::unordered_set<std::int64_t> others;  // the shifts of the file and of other files after it
        int files = 0;
        for (std::size_t i = file; i < m_list.size() && files <= kMostFiles && !shift; ++i) {
            if (m_list[i].kind == EKind::File) others.insert(-m_list[i].begin);
            files += m_list[i].kind == EKind::File ? 1 : 0;
            const auto own = m_list[i].OwnShift();
            if (!own || others.contains(*own)) continue;
            const std::int64_t place = m_list[i].begin + *own;
            if (own == m_shift || place == m_nextSegment || place == m_nextRecording) {
                shift = own;
            } else if (place < m_nextSegment) {
                others.insert(*own);
            }
        }
        if (!shift) return std::nullopt;
        std::size_t first = file + 1;
        while (m_list[first].kind == EKind::File || m_list[first].OwnShift() != shift)
            ++first;
        return first;
    }

    /// Returns the last segment of the outer recording: it comes after the last one of the inner file, or its well
    /// isn't listed there.
    std::size_t AfterLastSegment(std::size_t file) const {
        const CWellList* inside = nullptr;
        bool hasEnded = false;
        for (std::size_t i = file + 1; i < m_list.size() && m_list[i].kind != EKind::File; ++i) {
            const CCandidate& candidate = m_list[i];
            const bool isLast = candidate.kind == EKind::Segment && candidate.next == kUnset;
            if (isLast && m_around != nullptr && m_around->Lists(candidate.well) &&
                (hasEnded || inside == nullptr || !inside->Lists(candidate.well)))
                return i;
            if (candidate.kind == EKind::Recording) inside = &m_candidates.WellsOf(candidate);
            hasEnded = isLast;
        }
        return file;
    }

    static constexpr int kMostFiles = 16;

    const CCandidates& m_candidates;
    std::vector<CCandidate>& m_list;
    std::int64_t m_size;
    const CWellList* m_around = nullptr;  ///< The wells of the outer recording.
    std::optional<std::int64_t> m_shift;  ///< The shift of the last header.
    std::int64_t m_nextSegment = kLost;   ///< The places that the last headers point at.
    std::int64_t m_nextRecording = kLost;
};

}  // namespace

void LeaveOutFilesWithin(CCandidates& candidates, std::int64_t size) { CFilesWithin(candidates, size).LeaveOut(); }

}  // namespace vxfileio::recovery
