#pragma once

namespace vxfile {

/// @name Exit status
/// What the program says to a script. A command may use them in a sense of its own, which its text tells.
/// @{
inline constexpr int kSound = 0;          ///< All is well.
inline constexpr int kFindings = 1;       ///< Done, and there is something to look at.
inline constexpr int kTrouble = 2;        ///< Not usable, or not done. A wrong command line is trouble, too.
inline constexpr int kInterrupted = 130;  ///< Ended by Ctrl-C, with nothing half done left behind.
/// @}

}  // namespace vxfile
