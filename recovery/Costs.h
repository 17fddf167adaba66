#pragma once

#include <cstdint>

#include "recovery/Node.h"

/// @file
/// What each step of an explanation assumes, and what that costs.

namespace vxfileio::recovery {

/// What an explanation costs, as in the table of `docs/recovery.md`, which has the reasons. The best explanation has
/// the lowest sum.
namespace costs {
inline constexpr int kHeader = -240;       ///< A header, times the share of its undamaged cells.
inline constexpr int kGap = 100;           ///< Bytes that belong to nothing, and twice the logarithm of their number.
inline constexpr int kValue = 80;          ///< A value that contradicts the others, or is computed; cells that moved.
inline constexpr int kVersion = 80;        ///< A recording of another version than the one before.
inline constexpr int kHeaderWithin = 80;   ///< A whole header within samples.
inline constexpr int kFileWithin = 100;    ///< A file within the samples of a segment whose header is lost.
inline constexpr int kLostRecording = 80;  ///< A recording whose header is lost.
inline constexpr int kForcedRecording = 200;  ///< The same, where there is no room for a header.
inline constexpr int kCutHeader = 160;        ///< A recording header without its end.
inline constexpr int kNoBeginning = 80;       ///< A recording header without its beginning.
inline constexpr int kForeign = 100;          ///< A segment after a gap that doesn't fit its recording.
inline constexpr int kPosition = 150;         ///< A wrong position.
inline constexpr int kShift = 160;            ///< From here on, all positions are wrong by the same distance.
inline constexpr int kShiftByGap = 20;        ///< The same, by the number of missing or extra bytes here.
inline constexpr int kUnconfirmed = 1000;     ///< Nothing confirms where a segment with a damaged header ends.
inline constexpr int kMixedHeader = 1000;     ///< The end of a recording header seems to be that of another one.
inline constexpr int kCut = 60;               ///< The input ends within the samples.
inline constexpr int kNearlyEqual = 5;        ///< Two explanations this close are ambiguous.
}  // namespace costs

/// @name What a step costs by itself
/// A node needs a candidate and a parent, except in `UnconfirmedCost`.
/// @{

/// Returns the cost of bytes that belong to nothing.
int GapCost(std::int64_t bytes);

/// Returns what the parts of a candidate cost that moved or are missing, if it follows a piece that ends at `end`.
int PartsCost(const CCandidate& candidate, std::int64_t end);

/// Returns the cost of a node if the next header doesn't begin at its end. `gap` is the number of bytes up to that
/// header, to its first cell that is left, or to the end of the input.
int UnconfirmedCost(const CNode& node, std::int64_t gap);

/// @}
/// @name What a node contradicts
/// @{

/// Returns whether the next recording should begin before a segment, if positions have a shift there.
bool IsNextRecordingPassed(const CNode& node, std::int64_t shift);

/// Returns whether that is so by the shift before a segment, or by its own.
bool MayPassNextRecording(const CNode& node);

/// Returns whether a recording header whose cells moved seems to be parts of two: the next position shows that bytes
/// are missing, or that more are extra than the gap before it has.
bool HasMixedHeader(const CNode& node);

/// @}

/// The costs that need the wells of a recording, or the other candidates.
class CCosts {
 public:
    /// The candidates must outlive this object.
    explicit CCosts(const CCandidates& candidates) : m_candidates(candidates) {}

    /// Returns the cost of a segment that is of the recording before it.
    int SameRecordingCost(const CNode& node) const;
    /// Returns the cost of a segment with which a recording begins whose header is lost.
    int LostRecordingCost(const CNode& node) const;
    /// Returns whether the position of a node shifts by the number of bytes that the gap before it shows to be missing
    /// or too many, or back to the shift before. After a recording header without its end, any number may be missing,
    /// with another header among them. Requires: the node's own shift is known.
    bool ShiftsByGap(const CNode& node) const;

 private:
    /// Returns whether the current recording header seems to be of another file: a segment doesn't fit it, and has the
    /// shift that positions had before that header.
    bool IsHeaderForeign(const CNode& node) const;
    /// Returns whether neither a segment nor the one after it fits the current recording. A single misfit may be
    /// damaged.
    bool IsForeign(const CNode& node) const;
    /// Returns whether a segment fits the wells and intervals of the recording of `parent`, and the times of its last
    /// 256 segments.
    bool Belongs(const CNode& parent, const CCandidate& segment) const;
    /// Returns how many bytes the whole segment at `begin` lacks if the next header begins at `next`; 0 if there is no
    /// such segment.
    std::int64_t OverlapOf(std::int64_t begin, std::int64_t next) const;

    const CCandidates& m_candidates;
};

}  // namespace vxfileio::recovery
