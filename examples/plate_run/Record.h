#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <string>

#include "PlatePlan.h"
#include "Signal.h"

/// Records the whole plan into a raw data file. Returns the seconds that the library took of it.
double RecordPlate(CIRawDataWriter& writer, const CPlatePlan& plan, const CSignal& signal, const std::string& path);
