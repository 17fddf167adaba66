#pragma once

/// @file
/// Ctrl-C. The signal only leaves a note; whoever works for long asks for it now and then and unwinds, so that
/// temporary files go the ordinary way.

namespace vxfile {

/// Thrown when Ctrl-C was hit.
class CInterruption {};

/// From now on Ctrl-C, or a polite request to end, leaves a note instead of ending the program. Another one, half a
/// second later or more, ends it. What is to be ignored, as by `nohup`, stays so.
void CatchInterrupts();

/// Tells whether Ctrl-C was hit.
bool IsInterrupted();

/// Throws `CInterruption` if Ctrl-C was hit. It costs next to nothing.
void CheckInterrupt();

}  // namespace vxfile
