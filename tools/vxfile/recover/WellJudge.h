#pragma once

#include "tools/vxfile/recover/Inventory.h"

namespace vxfile {

/// Decides, for each recording, whose its segments are and which sample interval each of its wells has.
///
/// Nothing in the file checks the ID of a segment. What can be known about it is told by the others: a recording lists
/// its wells and their intervals, the segments of a well follow one another in time, and the wells take turns. So a
/// segment is in doubt if its recording doesn't list its well, if its times don't go with the interval of its well, or
/// if the well has another segment of the same times. Where exactly one listed well lacks those times, and goes on with
/// them to the tick, the segment is given to it; otherwise it stays with the well that it names. Both is told.
///
/// The interval of a well is that of the header, unless more segments go with another one. Of a segment that
/// doesn't go with the interval of its well one time is damaged: it is made up where the segments before and behind
/// tell which one, or the segment is lost. Either is told.
void SettleWells(CInventory& inventory);

}  // namespace vxfile
