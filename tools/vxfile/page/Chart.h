#pragma once

#include <string>
#include <vector>

#include "tools/vxfile/page/PlateValues.h"

namespace vxfile::page {

/// The size of a chart, and the part of it inside the axes, in pixels of the drawing.
struct CChartArea {
    static constexpr double kWidth = 480;
    static constexpr double kHeight = 380;
    static constexpr double kLeft = 62;
    static constexpr double kRight = 470;
    static constexpr double kTop = 14;
    static constexpr double kBottom = 328;
};

/// The axis of doses: logarithmic, with a separate place for the control at the left.
class CDoseAxis {
 public:
    explicit CDoseAxis(const std::vector<CRecordingLine>& recordings);

    /// Returns the place of a dose.
    double PlaceOf(std::uint64_t dose) const;
    bool HasControl() const { return m_hasControl; }
    /// Returns where the logarithmic part begins.
    double Begin() const;

 private:
    bool m_hasControl = false;
    double m_least = 0.0;  ///< The logarithms of the least and the greatest dose above 0.
    double m_greatest = 0.0;
};

/// The axis of values: linear, with round numbers at its marks.
class CValueAxis {
 public:
    CValueAxis(double least, double greatest);

    double PlaceOf(double value) const { return m_offset + m_factor * value; }
    /// @name The place of a value is `Offset` + `Factor` * value
    /// @{
    double Offset() const { return m_offset; }
    double Factor() const { return m_factor; }
    /// @}
    const std::vector<double>& Marks() const { return m_marks; }
    /// Returns the text of a mark.
    std::string TextOf(double mark) const;

 private:
    std::vector<double> m_marks;
    double m_offset = 0.0;
    double m_factor = 0.0;
};

/// Returns a place with one decimal.
std::string PlaceText(double place);

}  // namespace vxfile::page
