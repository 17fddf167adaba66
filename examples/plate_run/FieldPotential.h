#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include "Trace.h"

/// @file
/// The average of the beats of one well, and measurements in it. All fields named here belong to `CResultsWell`. Times
/// in an average are relative to the beat; voltages are in volts.

/// Averages the well's beats. Skips beats too close to either end of the trace; `AverageCount` is the number of those
/// that are averaged.
void AverageBeats(CResultsWell& well, const CTrace& trace);

/// Finds the fast field potential in the average: its extremes and its slope, each within `FPfastRiseTimeMax` of the
/// beat. Finds nothing without an average.
void FindFastPotential(CResultsWell& well, const CPropAnalyzer& analyzer);

/// Finds the maximum that follows: the peak, upwards or downwards, between `FPmaxSearchBegin` and `FPmaxSearchEnd`
/// after the beat. Sets `FPmaxType` and returns the time of the peak, or 0 without an average.
std::int64_t FindMaximum(CResultsWell& well, const CPropAnalyzer& analyzer);
