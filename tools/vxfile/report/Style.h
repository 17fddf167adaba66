#pragma once

#include <string>
#include <string_view>

/// @file
/// Colours on standard output: only on a terminal that supports them, and not if `NO_COLOR` is set in the environment.

namespace vxfile {

std::string Bold(std::string_view text);
std::string Red(std::string_view text);
std::string Green(std::string_view text);
std::string Yellow(std::string_view text);

}  // namespace vxfile
