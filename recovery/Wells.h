#pragma once

#include "recovery/Found.h"

namespace vxfileio::recovery {

/// Determines, for each recording, the well of each segment and the interval of each well.
///
/// No checksum protects the ID of a segment, but other values confirm it: a recording lists its wells and intervals,
/// the segments of a well follow one another in time, and the wells take turns. A segment is in doubt if its well isn't
/// listed, if its times don't fit the interval of its well, or if the well has another segment with the same times. If
/// exactly one listed well lacks these times and continues with them to the tick, the segment is assigned to it.
///
/// The interval of a well is that of the header, unless more segments fit another one. If a segment doesn't fit it, one
/// of its times is damaged: it is computed if the segments before and after it determine it; otherwise the segment is
/// lost.
void SettleWells(CFound& found);

}  // namespace vxfileio::recovery
