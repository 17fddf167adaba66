#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

#include "recovery/Explanation.h"

/// @file
/// Step 2: one way to explain the beginning of the input.

namespace vxfileio::recovery {

/// What positions must still show about a recording header.
enum class EUnproven : std::uint8_t {
    None,
    Cut,     ///< It lacks its end, so an unknown number of bytes is missing.
    Joined,  ///< Cells moved: its end may be that of another header.
};

/// One way to explain the input up to the end of a piece.
struct CNode {
    CPiece piece;          ///< Without a candidate: the beginning of the input.
    std::int64_t gap = 0;  ///< Number of bytes before the piece that belong to nothing.
    std::int64_t cost = 0;
    std::int64_t other = std::numeric_limits<std::int64_t>::max();  ///< Cost of the best way with another piece before.
    std::int32_t wholeBefore = 0;                                   ///< Number of whole candidates up to this one.
    std::shared_ptr<CNode> parent;
    std::int64_t earlierShift = kLost;      ///< The shift before the last known change of it, or before the recording.
    bool goesOn = false;                    ///< It continues after a file within samples.
    EUnproven unproven = EUnproven::None;   ///< Its recording header, until a position confirms it.
    const CNode* file = nullptr;            ///< The header of the file that it is in; null for the first one.
    const CCandidate* recording = nullptr;  ///< The header of the current recording; null before the first of a file.

    /// Releases the pieces before it one by one: there may be too many for one call within another.
    ~CNode() {
        while (parent != nullptr && parent.use_count() == 1)
            parent = std::move(parent->parent);
    }

    const CCandidate& Candidate() const { return *piece.candidate; }
    bool Is(EKind kind) const { return piece.candidate != nullptr && Candidate().kind == kind; }
    /// Returns whether it is a segment whose position says that none follows.
    bool IsLastSegment() const { return Is(EKind::Segment) && Candidate().next == rawdata::kUnset; }
    /// Returns whether the header of its recording is known.
    bool HasRecordingHdr() const { return recording != nullptr && recording->form != nullptr; }
    /// Returns whether it is a segment whose position says that another follows.
    bool ExpectsSegment() const { return Is(EKind::Segment) && IsPosition(Candidate().next); }
};

using CNodePtr = std::shared_ptr<CNode>;

}  // namespace vxfileio::recovery
