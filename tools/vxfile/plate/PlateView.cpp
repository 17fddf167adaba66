#include "tools/vxfile/plate/PlateView.h"

#include <array>
#include <charconv>

namespace vxfile {

std::string SecondsText(std::int64_t ticks, double ticksPerSecond) {
    std::array<char, 32> text{};
    const double seconds = static_cast<double>(ticks) / ticksPerSecond;
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), seconds).ptr};
}

std::string CPlateView::TimeText(std::int64_t ticks) const {
    const std::string text = std::to_string(ticks) + " ticks";
    return ticksPerSecond == 0 ? text : text + " (" + SecondsText(ticks, ticksPerSecond) + " s)";
}

std::string CPlateView::TimesText(std::int64_t from, std::int64_t to) const {
    std::string text = std::to_string(from) + " to " + std::to_string(to) + " ticks";
    if (ticksPerSecond == 0) return text;
    return text + " (" + SecondsText(from, ticksPerSecond) + " to " + SecondsText(to, ticksPerSecond) + " s)";
}

}  // namespace vxfile
