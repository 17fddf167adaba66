#pragma once

#include <memory>

#include "tools/vxfile/shell/Command.h"

/// @file
/// The commands, each defined in its own source. `MakeCommands` calls all of these.

namespace vxfile {

[[nodiscard]] std::unique_ptr<CCommand> MakeCatalogCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakeDiffCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakeExportCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakeInfoCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakePlanCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakeRecoverCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakeReportCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakeSamplesCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakeSealCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakeTableCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakeVerifyCommand();
[[nodiscard]] std::unique_ptr<CCommand> MakeWatchCommand();

}  // namespace vxfile
