#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <iosfwd>
#include <string>

#include "PlatePlan.h"
#include "Replay.h"

/// @file
/// Prints reports about a run to any stream.

/// Prints the number of wells and recordings, and the length of a recording.
void PrintPlan(std::ostream& out, const CPlatePlan& plan);

/// Prints one line per task in the file, and the total.
void PrintTasks(std::ostream& out, const CReplay& replay);

/// Prints the speed of writing and reading samples, without the time for generating and comparing them.
void PrintSpeed(std::ostream& out, const CReplay& replay, double secondsWriting);

/// Prints the amount of data read for one well.
void PrintWell(std::ostream& out, const CWell& well, const CAmount& read);

/// Prints the heart rate at each dose for some of the wells, and the mean responses over all wells.
void PrintSeries(std::ostream& out, const CPlatePlan& plan, const CResults& results);

/// Prints the path and size of a file.
void PrintFile(std::ostream& out, const std::string& path);
