#pragma once

#include "verify/Findings.h"

namespace vxfile {

/// @name Exit status
/// Results for scripts. A command may give them other meanings, which its help describes.
/// @{
inline constexpr int kSound = 0;          ///< Success, nothing to report.
inline constexpr int kFindings = 1;       ///< Done, with findings.
inline constexpr int kTrouble = 2;        ///< Unusable, or not done. This includes a wrong command line.
inline constexpr int kInterrupted = 130;  ///< Ended by Ctrl-C, without leaving partial results.
/// @}

/// Returns the exit status of a check with these findings.
inline int StatusOf(const CFindings& findings) {
    if (!findings.IsUsable()) return kTrouble;
    return findings.Count() == 0 ? kSound : kFindings;
}

}  // namespace vxfile
