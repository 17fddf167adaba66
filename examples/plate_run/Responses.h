#pragma once

#include <vxfileio/frame/VXFileIO.h>

/// @file
/// Turns the findings of wells into numbers that can be compared between wells, doses and compounds.

/// Sets the responses of a well as measured: the amplitude in volts, the slope in volts per second, and the interval to
/// the maximum in microseconds. A well without a fast potential gets none.
void SetResponses(CResultsWell& well, std::int64_t maximumTime);

/// Sets the normalised responses of all wells of a task, relative to the same well's response at the first dose, the
/// control.
void NormalizeResponses(CResults& results, enTask task);

/// Sets the mean and standard deviation, over all wells, of the normalised responses at each dose. Ignores responses
/// that the marks of the analyzer exclude.
void SetCompoundMeans(CResults& results, enTask task, const CPropAnalyzer& analyzer);
