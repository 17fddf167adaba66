#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vxfileio/rawdata/Layout.h"
#include "vxfileio/rawdata/RawDataHeaders.h"

/// @file
/// What makes the values of a raw data file sound: one table of rules, and the functions that judge by them. A strict
/// writer refuses what breaks a rule; `vxfile verify` reports it. Where things are in the file is judged by verify
/// alone, since a writer puts them there itself.

namespace vxfileio::rawdata {

/// The rules. Those of a cell by itself come first, in the order of `ECellFault`.
enum class ERule {
    LineEnd,
    PaddingPresent,
    PaddingEmpty,
    Mark,
    Key,
    Fixed,
    NoLoneSign,
    NumberPresent,
    NumberForm,
    NoSeparator,
    NoControls,
    WholeHeader,
    Version,
    ListLength,
    WellOnce,
    Interval,
    FiniteUnits,
    WellListed,
    TimeOrder,
    TimeSpan,
    Size,
    NoOverlap,
    Tick,
    Task,
    WholeNumbers,
};

/// One rule in words.
struct CRule {
    std::string_view id;        ///< Its name for programs.
    std::string_view sentence;  ///< What holds in a sound file.
};

/// The table of rules, in the order of `ERule`.
inline constexpr std::array kRules = {
    CRule{"line-end", "Each cell ends in CR LF."},
    CRule{"padding-present", "At least one NUL precedes the line end of a cell."},
    CRule{"padding-empty", "After the text of a cell come only NULs."},
    CRule{"mark", "The file begins with OVL Vexaprobe."},
    CRule{"key", "Each cell begins with its key."},
    CRule{"fixed", "Cells without a value of the caller hold what all writers put there."},
    CRule{"no-lone-sign", "A cell without a value holds its key alone."},
    CRule{"number-present", "Cells of numbers hold one."},
    CRule{"number-form", "Numbers are within the range of their cell and in the form that writers use."},
    CRule{"no-separator", "Texts have no separator and no line end."},
    CRule{"no-controls", "Texts have no control characters."},
    CRule{"whole-header", "Headers have all their bytes."},
    CRule{"version", "The headers have the layout of the file's version."},
    CRule{"list-length", "Each list of channels has as many items as the count before it says."},
    CRule{"well-once", "A recording lists each well once."},
    CRule{"interval", "The sample interval of each well is from 1 to 2147483647."},
    CRule{"finite-units", "The units per AD step of each well are a finite number."},
    CRule{"well-listed", "A segment is of a well that its recording lists."},
    CRule{"time-order", "A segment doesn't end before it begins."},
    CRule{"time-span", "A segment is no longer than 2^63 - 1."},
    CRule{"size", "A segment has one sample for each interval from TimeFrom to TimeTo."},
    CRule{"no-overlap", "The segments of a well follow one another in time without overlap."},
    CRule{"tick", "The interval of a segment is that of its well in the recording header."},
    CRule{"task", "Only PreQC, CompoundTest and PostQC have a list in the file header."},
    CRule{"whole-numbers", "The values of those lists are whole numbers of 64 bits."},
};
static_assert(kRules.size() == static_cast<std::size_t>(ERule::WholeNumbers) + 1);

/// Returns the row of a rule.
constexpr const CRule& RowOf(ERule rule) noexcept { return kRules[static_cast<std::size_t>(rule)]; }

/// Where a rule is broken, and what that means.
struct CBreach {
    ERule rule;
    std::string_view key;       ///< The cell or the argument; empty for the first cell of a file.
    std::size_t offset = 0;     ///< Of the cell in its header.
    std::string found = {};     ///< Printable.
    std::string expected = {};  ///< What would be right.
    std::string meaning = {};   ///< What it means for readers.
};

/// Returns a breach as one text: "ID is 13, expected a well that the recording lists. Interval and units of its samples
/// are unknown. (Rule well-listed)"
std::string TextOf(const CBreach& breach);

/// @name Judging the bytes of a header
/// `bytes` is the header in this layout, or as much of it as there is; of a cut header nothing after the cut is judged.
/// Breaches are in the order of the cells.
/// @{
std::vector<CBreach> BreachesOfFileHdr(const CLayout& layout, std::string_view bytes);
/// Returns the wells, too, by the lists, even if the count before them is damaged; none if the header is cut.
std::vector<CBreach> BreachesOfRecordingHdr(const CLayout& layout, std::string_view bytes,
                                            std::vector<CRawDataChannelInfo>* wells = nullptr);
std::vector<CBreach> BreachesOfSegmentHdr(const CLayout& layout, std::string_view bytes);
/// @}

/// @name Judging the values of a header that is to be written
/// They show more than its bytes, in which a NUL at the end of a text looks like padding. Breaches are in the order of
/// the cells, those of wells last. Whether a value fits its cell isn't judged.
/// @{
std::vector<CBreach> BreachesOfValues(const CLayout& layout, const CRawDataFileHdr& header);
std::vector<CBreach> BreachesOfValues(const CLayout& layout, const CRawDataRecordingHdr& header);
/// @}

/// Judges the version of a file that is to be written.
std::optional<CBreach> BreachOfVersion(std::int32_t version);

/// Judges the arguments of `UpdateFileHdr`. `list` is the key of the task's list; null if it has none.
std::optional<CBreach> BreachOfList(const char* list, std::string_view taskName,
                                    const std::vector<std::string>& values);

/// Judges the segments of one recording. Compares each with the previous segment of its well.
class CSegmentRules {
 public:
    CSegmentRules() = default;
    /// If two wells have the same ID, the first one is used.
    explicit CSegmentRules(const std::vector<CRawDataChannelInfo>& wells);

    /// Returns the first rule that a segment breaks. `layout` has the offsets of the cells.
    std::optional<CBreach> BreachOf(const CLayout& layout, const CSegmentHdr& segment) const;

    /// Returns a breach if the recording lists the well of this ID with another interval.
    std::optional<CBreach> BreachOfTick(std::int32_t id, std::int64_t tick) const;

    /// Notes a segment that is part of the recording: the next one of its well must begin after it.
    void Note(const CSegmentHdr& segment) noexcept;

 private:
    struct CWell {
        std::int32_t id = 0;
        std::int64_t tick = 0;
        std::optional<std::int64_t> end = {};  ///< The end of its latest segment.
    };

    const CWell* Find(std::int32_t id) const noexcept;

    std::vector<CWell> m_wells;  ///< Sorted by ID, each once.
};

}  // namespace vxfileio::rawdata
