#include "tools/vxfile/page/Chart.h"

#include <algorithm>
#include <cmath>

#include "tools/vxfile/page/Numbers.h"

namespace vxfile::page {

namespace {

constexpr double kMargin = 22;        // between an axis and the first and last dose
constexpr double kControlWidth = 58;  // of the place of the control

double LogOf(std::uint64_t dose) { return std::log10(static_cast<double>(dose)); }

}  // namespace

CDoseAxis::CDoseAxis(const std::vector<CRecordingLine>& recordings) {
    bool isFirst = true;
    for (const CRecordingLine& recording : recordings) {
        if (recording.IsControl()) {
            m_hasControl = true;
            continue;
        }
        m_least = isFirst ? LogOf(recording.dose) : std::min(m_least, LogOf(recording.dose));
        m_greatest = isFirst ? LogOf(recording.dose) : std::max(m_greatest, LogOf(recording.dose));
        isFirst = false;
    }
}

double CDoseAxis::Begin() const { return CChartArea::kLeft + (m_hasControl ? kControlWidth : 0.0); }

double CDoseAxis::PlaceOf(std::uint64_t dose) const {
    if (dose == 0) return CChartArea::kLeft + kControlWidth / 2;
    const double first = Begin() + kMargin;
    const double last = CChartArea::kRight - kMargin;
    if (m_greatest == m_least) return (first + last) / 2;
    return first + (last - first) * (LogOf(dose) - m_least) / (m_greatest - m_least);
}

CValueAxis::CValueAxis(double least, double greatest) {
    const double room = greatest > least ? 0.0 : std::max(std::abs(least) / 10, 1e-12);
    m_marks = MarksBetween(least - room, greatest + room);
    const double span = m_marks.back() - m_marks.front();
    m_factor = span > 0.0 && std::isfinite(span) ? (CChartArea::kTop - CChartArea::kBottom) / span : 0.0;
    m_offset = CChartArea::kBottom - m_factor * m_marks.front();
}

std::string CValueAxis::TextOf(double mark) const {
    const double step = m_marks.size() < 2 ? m_marks.front() : m_marks[1] - m_marks[0];
    return RoundedText(mark, std::max(0, DecimalsFor(step) - 2));
}

std::string PlaceText(double place) { return RoundedText(place, 1); }

}  // namespace vxfile::page
