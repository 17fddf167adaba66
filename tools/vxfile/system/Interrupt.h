#pragma once

/// @file
/// Ctrl-C. The signal only sets a flag. Long operations check it regularly and throw, so that destructors remove
/// temporary files.

namespace vxfile {

/// Thrown after Ctrl-C.
class CInterruption {};

/// Makes Ctrl-C, SIGTERM and SIGHUP set a flag instead of ending the program. A second one after half a second or more
/// ends it. Ignored signals, as with `nohup`, stay ignored. Also makes writes beyond the file size limit fail.
void CatchInterrupts();

/// Returns whether Ctrl-C was pressed.
bool IsInterrupted();

/// Throws `CInterruption` if Ctrl-C was pressed. Its cost is negligible.
void CheckInterrupt();

}  // namespace vxfile
