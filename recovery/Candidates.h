#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <vector>

#include "recovery/Cells.h"

/// @file
/// Step 1: finds every header that can be recognised, in any layout, at any offset.

namespace vxfileio::recovery {

/// A position that can't be read from its cell.
inline constexpr std::int64_t kLost = std::numeric_limits<std::int64_t>::min();

/// Larger positions are invalid, so that sums don't overflow.
inline constexpr std::int64_t kFarthest = std::numeric_limits<std::int64_t>::max() / 4;

constexpr bool IsPosition(std::int64_t position) { return position >= 0 && position <= kFarthest; }

/// Bytes that may be a header.
struct CCandidate {
    std::int64_t begin = 0;  ///< Offset of its first byte, or of where it would be.
    std::int64_t claim = 0;  ///< Offset of its first cell that isn't lost; the bytes before may be something else.
    std::int64_t end = 0;    ///< Offset of the byte after the header.
    /// The position of the first recording (file), the data (recording) or the next segment; `kLost` if it can't be
    /// read.
    std::int64_t next = kLost;
    std::int64_t from = 0;  ///< Segment: time of the first sample. Recording: the position of the next one, or `kLost`.
    std::int64_t to = 0;    ///< Segment: time of the last sample.
    std::int64_t size = 0;  ///< Segment: number of samples. Others have none.
    std::int32_t well = 0;  ///< Segment: well ID. Recording: index of its channels in `CCandidates`.
    std::int16_t moved = 0;
    std::uint8_t movedRow = 0;  ///< The first row that moved; the number of rows if only the end of the header did.
    EKind kind = EKind::Segment;
    std::uint8_t damaged = 0;  ///< Number of damaged cells.
    std::uint8_t whole = 0;    ///< Number of undamaged cells, wherever they are.
    /// @name Segment: cells that are lost
    /// @{
    bool noID = false;
    bool noFrom = false;
    bool noTo = false;
    bool noSize = false;
    /// @}

    const CForm* form = nullptr;

    /// Returns the well that it names: nothing if it is no segment, or if its ID is lost.
    std::optional<std::int32_t> NamedWell() const {
        return kind == EKind::Segment && !noID ? std::optional(well) : std::nullopt;
    }
    CHdrPlace Place() const { return {.begin = begin, .movedRow = movedRow, .moved = moved}; }
    bool IsWhole() const { return damaged == 0 && moved == 0; }
    /// Returns the offset of the byte after its samples, by its own size.
    std::int64_t DataEnd() const { return end + 2 * size; }
    /// Returns whether it is a recording header whose last cells moved: they may be of another one.
    bool IsJoined() const { return kind == EKind::Recording && moved != 0 && movedRow < form->cells.size(); }
    /// Returns whether it is a recording header without its end.
    bool IsCutShort() const { return kind == EKind::Recording && moved < 0 && movedRow == form->cells.size(); }
    /// Returns by how much its own position exceeds the offset that it means; nothing if it isn't reliable.
    std::optional<std::int64_t> OwnShift() const;
};

/// The wells that a recording header lists.
struct CWellList {
    std::map<std::int32_t, std::int64_t> wells;  ///< ID and interval; 0 if it is lost. Empty if the IDs are lost.

    /// Returns the interval of a well; 0 if it isn't known.
    std::int64_t TickOf(std::int32_t well) const;
    /// Returns the interval of a segment's well, or if its ID is lost, the one that all wells share; 0 if unknown.
    std::int64_t TickOf(const CCandidate& segment) const { return segment.noID ? CommonTick() : TickOf(segment.well); }
    /// Returns the interval that all wells share; 0 if they differ.
    std::int64_t CommonTick() const;
    bool Lists(std::int32_t well) const { return wells.contains(well); }
};

struct CCandidates {
    std::vector<CCandidate> list;  ///< In the order of their claims.
    std::vector<CWellList> wellLists;

    /// Returns the undamaged header of a kind at an offset; null if there is none.
    const CCandidate* WholeAt(EKind kind, std::int64_t offset) const;
    /// Returns the wells of a recording header; none if it is null or has no form, because it is lost.
    const CWellList& WellsOf(const CCandidate* recording) const;
};

/// Receives the offset reached so far. May throw to stop.
using CReach = std::function<void(std::int64_t)>;

/// Searches an input for headers. Skips the samples of a segment if its header is whole and the header after the
/// samples confirms it.
CCandidates FindCandidates(CWindow& window, const CReach& reach);

/// Reads a header at an offset, in the layout with the most whole cells, the newest of those. Few or none may be whole.
/// Returns a candidate without a form if no header ends at or before `end`.
CCandidate BestAt(CWindow& window, EKind kind, std::int64_t offset, std::int64_t end = kFarthest);

/// Returns the wells that a recording header lists.
CWellList WellListOf(const CHdrCells& recording);

/// Returns whether a header seems to begin at an offset: at least half of its cells are whole, or the input ends within
/// it.
bool LooksLikeHeader(CWindow& window, std::int64_t offset);

}  // namespace vxfileio::recovery
