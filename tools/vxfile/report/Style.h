#pragma once

#include <string>
#include <string_view>

/// @file
/// Colours on standard output: only where that is a terminal that has them, and not if the environment has `NO_COLOR`.

namespace vxfile {

std::string Bold(std::string_view text);
std::string Red(std::string_view text);
std::string Green(std::string_view text);
std::string Yellow(std::string_view text);

}  // namespace vxfile
