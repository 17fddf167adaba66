#pragma once

#include <optional>
#include <span>
#include <string>

#include "tools/vxfile/page/Trace.h"
#include "tools/vxfile/report/Json.h"

namespace vxfile::page {

/// @name Curves for scripts
/// Each number takes two characters of the alphabet of Base64: 12 bits, from the least of the curve to the greatest.
/// That is finer than a screen. The result has `lo`, `hi` and the text `d`.
/// @{
/// Packs a curve. What isn't finite becomes a gap, which reads "--". Null without a finite number.
CJson PackedCurve(std::span<const double> values);
/// Packs the steps of a trace: the least, then the greatest of each. They are rounded away from each other, so that the
/// packed steps contain the real ones. The result also has `begin` and `step`. Null without samples.
CJson PackedTrace(const CTrace& trace);
/// @}

}  // namespace vxfile::page
