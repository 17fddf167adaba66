#pragma once

#include <vxfileio/frame/VXFileIO.h>

/// @file
/// From what was found in wells to numbers that can be compared: between wells, doses and compounds.

/// Sets the responses of a well as measured: the amplitude in volts, the slope in volts per second, and the interval up
/// to the maximum in microseconds. A well without a fast potential has none.
void SetResponses(CResultsWell& well, std::int64_t maximumTime);

/// Sets the normalised responses of all wells of a task: each is measured in what the same well gave at the first dose.
void NormalizeResponses(CResults& results, enTask task);

/// Sets what the wells come to together at each dose: mean and standard deviation of their normalised responses. What
/// the marks of the analyzer take out of account isn't in it.
void SetCompoundMeans(CResults& results, enTask task, const CPropAnalyzer& analyzer);
