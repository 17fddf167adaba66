#pragma once

/// @file
/// Includes the header of the interface, which is C, as a header of the system: checks for C++ don't apply to it.

#pragma GCC system_header

#include "capi/vxfileio.h"
