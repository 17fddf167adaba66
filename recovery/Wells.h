#pragma once

#include "recovery/Found.h"

namespace vxfileio::recovery {

/// Decides, for each recording, whose its segments are and which sample interval each of its wells has.
///
/// No checksum protects the ID of a segment, but the others speak for it: a recording lists its wells and intervals,
/// the segments of a well follow one another in time, and the wells take turns. A segment is in doubt if its well isn't
/// listed, if its times don't go with the interval of its well, or if the well has another segment of the same times.
/// If exactly one listed well lacks these times and goes on with them to the tick, the segment is given to it.
///
/// The interval of a well is that of the header, unless more segments go with another one. A segment that doesn't go
/// with it has a damaged time, which the segments before and after it tell; otherwise it is lost.
void SettleWells(CFound& found);

}  // namespace vxfileio::recovery
