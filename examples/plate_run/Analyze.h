#pragma once

#include <vxfileio/frame/VXFileIO.h>

/// Analyses the dose series in an open raw data file. The settings say which compound is in which wells at which doses,
/// and how to find beats. The analysis is this program's own; the library only stores its results.
CResults AnalyzeSeries(CIRawDataReader& recorded, const CISettingsReader& settings);
