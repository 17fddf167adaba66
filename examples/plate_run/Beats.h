#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstdint>
#include <vector>

#include "Trace.h"

/// Finds the beats of a trace, and returns when each was.
///
/// A beat is where the rise of the voltage, seen over `FPfastRiseTimeMax`, crosses a threshold upwards, unless another
/// beat was just before. Looking at rises keeps out what the base line does by itself. The threshold is
/// `FPfastAmplitude`; with `FPfastAutoAdjust` it is `FPfastAutoAdjustFactor` of the greatest rise within the first
/// `FPfastAutoAdjustTime`, and a trace without a rise of `FPfastAmplitude` in that time has no beats.
std::vector<std::int64_t> FindBeats(const CTrace& trace, const CPropAnalyzer& analyzer);

/// Returns how often a heart beats in a minute whose beats were at these times; 0.0 for less than two beats.
double BeatsPerMinute(const std::vector<std::int64_t>& beats);
