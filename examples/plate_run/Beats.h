#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstdint>
#include <vector>

#include "Trace.h"

/// Finds the beats of a trace and returns their times.
///
/// There is a beat where the rise of the voltage over `FPfastRiseTimeMax` crosses a threshold upwards, unless the
/// previous beat was too recent. Using the rise removes the drift of the baseline. The threshold is `FPfastAmplitude`;
/// with `FPfastAutoAdjust` it is the maximum rise within the first `FPfastAutoAdjustTime`, times
/// `FPfastAutoAdjustFactor`. A trace without a rise of `FPfastAmplitude` in that time then has no beats.
std::vector<std::int64_t> FindBeats(const CTrace& trace, const CPropAnalyzer& analyzer);

/// Returns the number of beats per minute, given the times of the beats; 0.0 for fewer than two beats.
double BeatsPerMinute(const std::vector<std::int64_t>& beats);
