#pragma once

#include <string>
#include <vector>

namespace vxfile::page {

/// Returns a number with the fewest digits that read back as the same, such as "0.9983"; "nan", "inf" and "-inf" are
/// texts too.
std::string ExactText(double value);

/// Returns a number with this many decimals; with an exponent if it is so large that they would make no sense.
std::string RoundedText(double value, int decimals);

/// Returns how many decimals numbers up to `greatest` need to show three digits; 0 to 6.
int DecimalsFor(double greatest);

/// Returns four to eight round numbers that cover the range between two finite numbers, for the marks of an axis.
std::vector<double> MarksBetween(double least, double greatest);

}  // namespace vxfile::page
