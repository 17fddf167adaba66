#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "recovery/Cells.h"

/// @file
/// Step 4: the report of a recovery, as data.

namespace vxfileio::recovery {

/// Why something is lost, or in doubt.
enum class EReason : std::uint8_t {
    // Losses
    BeforeFile,        ///< Bytes before the file header.
    NoHeader,          ///< No header was recognised.
    EndsInHeader,      ///< The input ends within a header.
    EndsInRubbish,     ///< No other whole header follows.
    LostRecording,     ///< The header of a recording is damaged or lost.
    DamagedSegment,    ///< Too many cells of the header, `cells`, are damaged.
    Contradiction,     ///< The values of a segment contradict one another.
    TakenOutOf,        ///< Bytes were removed: the next header begins within it.
    TakenOutOfHeader,  ///< Bytes were removed from a recording header.
    Cut,               ///< `missing` of a segment's `count` samples are missing.
    CutKept,           ///< The same, but the samples that are there are kept.
    MissingSegment,    ///< The input ends, but a segment should follow.
    MissingRecording,  ///< The input ends, but a recording should follow.
    NotReached,        ///< No position points there.
    OtherInterval,     ///< The times of a segment don't fit the interval of its well, `value`.
    // Doubts
    DamagedCells,     ///< Cells of a segment header, `cells`; those in `lost` are computed from the others.
    Position,         ///< A position is `value` but should be `should`.
    PutIn,            ///< Bytes were inserted after this segment or within it.
    TakenOut,         ///< Bytes were removed after this segment or within it.
    Unconfirmed,      ///< Nothing confirms that this segment ends here: its last samples may be wrong.
    PutIntoHeader,    ///< Bytes were inserted into its header; its samples are whole.
    TakenFromHeader,  ///< Bytes were removed from its header; its samples are whole.
    OtherHeader,      ///< Bytes were removed before it or in its header: its first cells may be of another one.
    MaybeEmpty,       ///< The input ends after the header of a recording.
    Ambiguous,        ///< Another explanation is nearly as good.
    OtherRecording,   ///< It and those after it may be of a recording whose header is lost, whole or in part.
    OtherWell,        ///< It names this well, or none, but by its times it is of well `value`.
    Unlisted,         ///< The recording doesn't list this well, which has `count` segments.
    SharedTimes,      ///< `count` segments overlap others of this well; well `value`, if any, has none then.
    LostPages,        ///< Its samples here are whole pages of zeros, as after a power cut.
    MadeTime,         ///< One time didn't fit the interval and was computed from the other segments.
};

/// A part of the input and what became of it.
struct CRemark {
    EReason reason = EReason::NoHeader;
    std::int64_t from = 0;                                  ///< Offset in the input.
    std::int64_t to = 0;                                    ///< Offset of the byte after it.
    std::optional<std::uint32_t> recording = std::nullopt;  ///< Index of the recording it most likely belongs to.
    std::optional<std::int32_t> wellID = std::nullopt;      ///< The well, if that can be read.
    const CForm* form = nullptr;                            ///< The form of the segment header; null without `cells`.
    CRows cells = {};                                       ///< Rows of the form.
    CRows lost = {};
    std::int64_t value = 0;
    std::int64_t should = 0;
    std::uint64_t count = 0;
    std::uint64_t missing = 0;
    std::string what = {};  ///< The key of a cell.
};

/// Remarks of one kind. Only the first ones are kept, so that a badly damaged file can't exhaust the memory.
struct CRemarks {
    static constexpr std::size_t kMost = 10'000;

    std::vector<CRemark> first;
    std::uint64_t more = 0;  ///< The number of remarks that weren't kept.

    void Add(CRemark remark) {
        if (first.size() < kMost) {
            first.push_back(std::move(remark));
        } else {
            ++more;
        }
    }
    bool None() const { return first.empty(); }
    /// Sorts the kept ones by offset. Those at one offset stay in the order in which they were found.
    void Sort() { std::ranges::stable_sort(first, {}, &CRemark::from); }
};

/// What was replaced in a header.
struct CNote {
    enum class EKind : std::uint8_t {
        Lost,      ///< `keys` are lost.
        Restored,  ///< `keys` are damaged, but follow from the rest of the file.
        Legible,   ///< `keys` are damaged, but legible.
        Odd,       ///< `keys` have a separator.
        MadeUp,    ///< The whole header is made up.
        WellsOfSegments,
        ListedTwice,  ///< `wells`
        ListedNow,    ///< `wells`
        Interval,     ///< The interval of the `wells` is `to`; the header had `from`, if that isn't 0.
        NoInterval,   ///< The interval of the `wells` isn't known; the header had `from`.
        NoAuxChannels,
        TooManyWells,
        NewVersion,  ///< The version of the new file is `to`. Recording headers of older ones got `keys`.
    };
    EKind kind = EKind::Lost;
    std::string keys = {};
    std::vector<std::int32_t> wells = {};
    std::int64_t from = 0;
    std::int64_t to = 0;
};

/// What was kept of one well.
struct CKeptWell {
    std::uint64_t segments = 0;
    std::uint64_t samples = 0;
    std::int64_t from = 0;  ///< The first time.
    std::int64_t to = 0;    ///< The last time.

    bool operator==(const CKeptWell&) const = default;
};

struct CReportedRecording {
    std::string task = {};
    std::int32_t number = 0;
    std::int64_t dose = 0;      ///< In picomolar.
    std::int64_t position = 0;  ///< In the input.
    bool unfinished = false;
    std::vector<CNote> notes = {};
    std::map<std::int32_t, CKeptWell> wells = {};
};

/// What was recovered from an input, by recording and well.
struct CReport {
    std::int64_t bytes = 0;  ///< Size of the new file; 0 if there was nothing to save and nothing was written.
    bool isGrowing = false;  ///< The input was still being written. What was appended during recovery was ignored.
    std::vector<CNote> notes;
    std::vector<CReportedRecording> recordings;
    CRemarks losses;  ///< What isn't in the new file.
    CRemarks doubts;  ///< What may be missing or wrong.

    /// Returns whether the new file has all contents of the old one, except positions, without a doubt.
    bool IsComplete() const;
};

}  // namespace vxfileio::recovery
