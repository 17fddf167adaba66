#pragma once

/// @file
/// Ctrl-C. The signal only sets a flag; long work checks it now and then and unwinds, so that destructors remove
/// temporary files.

namespace vxfile {

/// Thrown when Ctrl-C was hit.
class CInterruption {};

/// From now on Ctrl-C, SIGTERM and SIGHUP set a flag instead of ending the program. A second one, half a second later
/// or more, ends it. Signals that are ignored, as by `nohup`, stay ignored. A file that grows beyond the size that is
/// allowed is a failed write from now on.
void CatchInterrupts();

/// Returns whether Ctrl-C was hit.
bool IsInterrupted();

/// Throws `CInterruption` if Ctrl-C was hit. It costs next to nothing.
void CheckInterrupt();

}  // namespace vxfile
