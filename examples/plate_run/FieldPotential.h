#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include "Trace.h"

/// @file
/// What the beats of one well look like: their average, and what can be measured in it. All fields here are those of
/// `CResultsWell`. Times in an average count from the beat, voltages are volts.

/// Fills the average of a well over the beats that were found. Beats whose surroundings aren't all in the trace are
/// left out; `AverageCount` says how many there are behind it.
void AverageBeats(CResultsWell& well, const CTrace& trace);

/// Finds the fast field potential in the average: its extremes and its slope, each within `FPfastRiseTimeMax` around
/// the beat. Without an average nothing is found.
void FindFastPotential(CResultsWell& well, const CPropAnalyzer& analyzer);

/// Finds the maximum that follows: the peak between `FPmaxSearchBegin` and `FPmaxSearchEnd` behind the beat, upwards or
/// downwards. Sets `FPmaxType`, and returns the time of the peak, or 0 without an average.
std::int64_t FindMaximum(CResultsWell& well, const CPropAnalyzer& analyzer);
