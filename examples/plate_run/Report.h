#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <iosfwd>
#include <string>

#include "PlatePlan.h"
#include "Replay.h"

/// @file
/// What people are told about a run, on any stream.

/// Prints which wells are recorded, how often and how long.
void PrintPlan(std::ostream& out, const CPlatePlan& plan);

/// Prints one line for each task of the file, and the sum.
void PrintTasks(std::ostream& out, const CReplay& replay);

/// Prints how fast all samples went through the library, both ways: without the time for making and comparing them.
void PrintSpeed(std::ostream& out, const CReplay& replay, double secondsWriting);

/// Prints what was read of one well alone.
void PrintWell(std::ostream& out, const CWell& well, const CAmount& read);

/// Prints how often the heart beats at each dose in some of the wells, and what the responses of all wells come to.
void PrintSeries(std::ostream& out, const CPlatePlan& plan, const CResults& results);

/// Prints where a file lies, and its size.
void PrintFile(std::ostream& out, const std::string& path);
