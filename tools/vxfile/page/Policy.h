#pragma once

#include <string_view>

#include "tools/vxfile/page/Html.h"

namespace vxfile::page {

/// Writes what the head of a page begins with: the encoding, the size of the window, and a policy that forbids every
/// load, every script but the named ones, and sending anything anywhere.
void WritePolicy(CHtml& html, std::string_view scripts);

}  // namespace vxfile::page
