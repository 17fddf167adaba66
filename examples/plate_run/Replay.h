#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "PlatePlan.h"
#include "Signal.h"

/// The amount of data read.
struct CAmount {
    std::int64_t segments = 0;
    std::int64_t samples = 0;

    CAmount& operator+=(const CAmount& more) {
        segments += more.segments;
        samples += more.samples;
        return *this;
    }
};

/// A task as listed in the file, and the amount of its data.
struct CTaskContent {
    std::string name;
    std::vector<std::int64_t> doses;  ///< One per recording, in picomolar.
    std::size_t wells;
    CAmount read;
};

/// The outcome of reading a whole file.
struct CReplay {
    std::vector<CTaskContent> tasks;
    double seconds;  ///< Time spent in the library.
};

/// Opens a raw data file and compares everything in it with the plan and the signal: headers, order of segments, and
/// every sample of every well. Throws `CDifference` at the first difference.
CReplay ReplayPlate(CIRawDataReader& reader, const CPlatePlan& plan, const CSignal& signal, const std::string& path);

/// Does the same for the samples of one well. The file must be open.
CAmount ReplayWell(CIRawDataReader& reader, const CPlatePlan& plan, const CSignal& signal, const CWell& well);
