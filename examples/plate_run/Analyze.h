#pragma once

#include <vxfileio/frame/VXFileIO.h>

/// Analyses the dose series in a raw data file that is open, as settings that were read tell it: which compound in
/// which wells, at which doses, and how beats are found. The library has no part in that; it keeps the results.
CResults AnalyzeSeries(CIRawDataReader& recorded, const CISettingsReader& settings);
