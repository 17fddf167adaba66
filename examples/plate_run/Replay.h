#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "PlatePlan.h"
#include "Signal.h"

/// How much was read.
struct CAmount {
    std::int64_t segments = 0;
    std::int64_t samples = 0;

    CAmount& operator+=(const CAmount& more) {
        segments += more.segments;
        samples += more.samples;
        return *this;
    }
};

/// What a file tells about one task, and how much was found of it.
struct CTaskContent {
    std::string name;
    std::vector<std::int64_t> doses;  ///< One for each recording, in picomolar.
    std::size_t wells;
    CAmount read;
};

/// What came out of reading a whole file.
struct CReplay {
    std::vector<CTaskContent> tasks;
    double seconds;  ///< That the library took of it.
};

/// Opens a raw data file and compares all that it holds with the plan: headers, order of segments, and every sample of
/// every well with what the signal gives. Throws `CDifference` at the first thing that differs.
CReplay ReplayPlate(CIRawDataReader& reader, const CPlatePlan& plan, const CSignal& signal, const std::string& path);

/// The same for the samples of one well alone, of a file that is open.
CAmount ReplayWell(CIRawDataReader& reader, const CPlatePlan& plan, const CSignal& signal, const CWell& well);
