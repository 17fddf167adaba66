#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "tools/vxfile/page/Trace.h"
#include "tools/vxfile/report/Json.h"

namespace vxfile::page {

/// Curves for scripts, all in one text. Each number takes two characters of the alphabet of Base64: 12 bits, from the
/// least of the curve to the greatest. That is finer than a screen. What `Add` returns has `lo` and `hi`, and its place
/// in the text: the first character `at` and the number of characters `n`.
class CPackedCurves {
 public:
    /// Adds a curve. What isn't finite becomes a gap, which reads "--". Null without a finite number.
    CJson Add(std::span<const double> values);
    /// Adds the steps of a trace: the least, then the greatest of each. They are rounded away from each other, so that
    /// the packed steps contain the real ones. The result also has `begin` and `step`. Null without samples.
    CJson Add(const CTrace& trace);

    const std::string& Text() const { return m_text; }

 private:
    char* Append(std::size_t characters);

    std::string m_text;
};

}  // namespace vxfile::page
