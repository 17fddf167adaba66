#pragma once

#include <cstddef>
#include <string>

namespace vxfile::page {

/// The number of colours of the scale.
inline constexpr std::size_t kColours = 64;

/// Returns the style rules of the scale's colours: `.c0` for the least value to `.c63` for the greatest. The scale goes
/// from dark blue to yellow: its lightness grows evenly, so it also works for people who don't see all colours, and in
/// grey. The text is black or white, whichever has the higher contrast, which is at least 4.5:1.
std::string ColourRules();

/// Returns the number of a value's colour within a range. The middle one if the range is a point.
std::size_t ColourNumber(double value, double least, double greatest);

/// Returns the class of a value within a range, such as "c12".
std::string ColourOf(double value, double least, double greatest);

}  // namespace vxfile::page
