#pragma once

#include <memory>

#include "tools/vxfile/shell/Command.h"

namespace vxfile {

/// Makes the command that its text tells.
std::unique_ptr<CCommand> MakeSamplesCommand();

}  // namespace vxfile
