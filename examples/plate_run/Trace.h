#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// All samples of one well in one recording.
struct CTrace {
    std::int64_t begin = 0;             ///< Time of the first sample.
    std::int64_t tick = 0;              ///< Sample interval.
    double voltsPerAD = 0.0;            ///< Volts per AD step.
    std::vector<std::int32_t> samples;  ///< In AD steps, relative to zero.

    /// Returns the time of a sample.
    std::int64_t TimeOf(std::size_t sample) const { return begin + static_cast<std::int64_t>(sample) * tick; }
};

/// Reads a well's samples in one recording, numbered from 1 within its task. The file must be open. Leaves this well
/// selected in the reader. Throws `std::runtime_error` if the file doesn't have the recording, or the recording doesn't
/// have the well.
CTrace ReadTrace(CIRawDataReader& reader, enTask task, std::int32_t recording, std::int32_t wellID);
