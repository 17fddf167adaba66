#pragma once

namespace vxfile {

/// @name Exit status
/// Results for scripts. A command may give them other meanings, which its help describes.
/// @{
inline constexpr int kSound = 0;          ///< Success, nothing to report.
inline constexpr int kFindings = 1;       ///< Done, with findings.
inline constexpr int kTrouble = 2;        ///< Unusable, or not done. This includes a wrong command line.
inline constexpr int kInterrupted = 130;  ///< Ended by Ctrl-C, without leaving partial results.
/// @}

}  // namespace vxfile
