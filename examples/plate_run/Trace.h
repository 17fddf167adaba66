#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// What one well gave in one recording: the samples from its beginning to its end.
struct CTrace {
    std::int64_t begin = 0;             ///< Time of the first sample.
    std::int64_t tick = 0;              ///< Sample interval.
    double voltsPerAD = 0.0;            ///< Volts per AD step.
    std::vector<std::int32_t> samples;  ///< In AD steps around zero.

    /// The time of a sample.
    std::int64_t TimeOf(std::size_t sample) const { return begin + static_cast<std::int64_t>(sample) * tick; }
};

/// Reads a well's samples of one recording (numbered from 1 within its task) of a file that is open. The reader's well
/// is then this one. Throws `std::runtime_error` if the file doesn't hold the recording, or the well isn't in it.
CTrace ReadTrace(CIRawDataReader& reader, enTask task, std::int32_t recording, std::int32_t wellID);
