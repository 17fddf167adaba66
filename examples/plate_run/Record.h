#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <string>

#include "PlatePlan.h"
#include "Signal.h"

/// Records the whole plan to a raw data file. Returns the number of seconds spent in the library.
double RecordPlate(CIRawDataWriter& writer, const CPlatePlan& plan, const CSignal& signal, const std::string& path);
