#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "vxfileio/base/Api.h"

namespace vxfileio::access {
class CInternals;
class CSelectionData;
}  // namespace vxfileio::access

/// Which samples of a recording to read.
struct CSampleRequest {
    /// The wells; empty means all of `CRecordingIndex::GetWells`. It is not an error if a well has no samples. One that
    /// is named twice counts once.
    std::vector<std::int32_t> WellIDs = {};
    /// The first time, included, in the instrument's time unit. The default is before every sample.
    std::int64_t From = std::numeric_limits<std::int64_t>::min();
    /// The last time, included. The default is after every sample.
    std::int64_t To = std::numeric_limits<std::int64_t>::max();
    /// The first segment, counted from 0 in the order of the file. To limit the memory for the buffers of a long
    /// recording, read it in several requests.
    std::size_t FirstSegment = 0;
    /// The maximum number of segments. The default is all.
    std::size_t Segments = std::numeric_limits<std::size_t>::max();
};

/// Samples of one well that follow each other at one interval, without a gap: sample i of the run has the time
/// `TimeFrom + i * Interval`. (In a damaged file, that can be beyond 64 bits.)
struct CSampleRun {
    std::int64_t TimeFrom = 0;  ///< Time of the first sample.
    std::int64_t Interval = 1;  ///< Time from one sample to the next, above 0.
    std::uint64_t Samples = 0;  ///< Number of samples, at least 1.
    std::uint64_t Offset = 0;   ///< Samples before the run in the well's buffer.

    /// Compares all members.
    bool operator==(const CSampleRun&) const = default;
};

/// What a selection has of one well, and what its buffer will hold: the samples of the runs, one run after the other
/// without a space between them.
struct CWellSamples {
    std::int32_t WellID = -1;           ///< The well.
    std::uint64_t Samples = 0;          ///< Samples of all runs: what the well's buffer must have room for.
    std::uint64_t Missing = 0;          ///< How many of them are beyond the end of a cut file, and are read as 0.
    std::vector<CSampleRun> Runs = {};  ///< In the order of the segments in the file.
};

/// The samples that were selected from a recording, ready to be read. `CRecordingIndex::Select` makes it.
///
/// **Order.** The samples of a well come in the order of its segments in the file, which is the order in which they
/// were recorded. A segment that doesn't begin one interval after the sample before it begins a new run: if it begins
/// later, there is a gap, if it begins earlier, an overlap. Nothing is filled in, left out or sorted.
///
/// **Threads.** Immutable. All operations may run at the same time in any number of threads, on one object or several.
/// Copying is cheap: copies share the open file and the index.
class VXFILEIO_API CSampleSelection {
 public:
    /// Returns the wells in the order of the request, or of `CRecordingIndex::GetWells` if that names none. The
    /// reference is valid as long as this object.
    const std::vector<CWellSamples>& GetWells() const noexcept;

    /// Returns the number of samples of all wells. Never more than the file has room for, plus as much again as it is
    /// long or 8,388,608 samples (16 MiB), whichever is more.
    std::uint64_t GetSamples() const noexcept;

    /// Reads all samples in one pass along the file.
    ///
    /// The caller owns the buffers: one for each well of `GetWells`, in that order, with room for at least its
    /// `Samples`. They must not overlap. Elements after the samples stay unchanged. Besides the buffers, a call takes
    /// up to 100 KiB.
    ///
    /// Throws `CExcVXReader` with "The buffers don't match the wells." if the number of buffers is wrong or one is too
    /// small; then nothing is read. Throws it with "Error reading Data Segment Header" if the file has become shorter
    /// since its index was read, or the system refuses to read it.
    void Read(std::span<const std::span<std::uint16_t>> buffers) const;

    /// Does the same with values in the physical unit of each well: (sample - `ADZero`) x `UnitsPerAD`. Those of a well
    /// whose `UnitsPerAD` or `ADZero` isn't in the recording header, or isn't a number there, are NaN.
    void ReadScaled(std::span<const std::span<double>> buffers) const;

    /// Does the same as `Read`, and calls `check` after each 16 MiB of the file. What it throws ends the call; the
    /// buffers are then partly filled.
    void Read(std::span<const std::span<std::uint16_t>> buffers, const std::function<void()>& check) const;

    /// Does the same with values in physical units, as `ReadScaled`.
    void ReadScaled(std::span<const std::span<double>> buffers, const std::function<void()>& check) const;

 private:
    friend class CRecordingIndex;
    friend class vxfileio::access::CInternals;
    explicit CSampleSelection(std::shared_ptr<const vxfileio::access::CSelectionData> data);

    std::shared_ptr<const vxfileio::access::CSelectionData> m_data;
};
