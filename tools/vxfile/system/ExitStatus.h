#pragma once

namespace vxfile {

/// @name Exit status
/// The results for scripts. A command may give them another meaning; its help says so.
/// @{
inline constexpr int kSound = 0;          ///< All is well.
inline constexpr int kFindings = 1;       ///< Done, and there is something to look at.
inline constexpr int kTrouble = 2;        ///< Not usable, or not done. A wrong command line is trouble, too.
inline constexpr int kInterrupted = 130;  ///< Ended by Ctrl-C, with nothing half done left behind.
/// @}

}  // namespace vxfile
