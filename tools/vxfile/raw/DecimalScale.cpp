#include "tools/vxfile/raw/DecimalScale.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace vxfile {

namespace {

constexpr std::int64_t kMostDecimals = 30;

/// A decimal: a whole number times a power of ten.
struct CDecimal {
    std::int64_t digits = 0;
    std::int64_t power = 0;
};

/// Returns the shortest decimal that reads back as this number, which is finite.
CDecimal ShortestDecimal(double number) {
    std::array<char, 32> room{};
    const char* const end =
        std::to_chars(room.data(), room.data() + room.size(), number, std::chars_format::scientific).ptr;
    const std::string_view text(room.data(), static_cast<std::size_t>(end - room.data()));
    const std::string_view front = text.substr(0, text.find('e'));
    const std::size_t point = front.find('.');
    std::string digits(front);
    std::erase(digits, '.');
    CDecimal decimal;
    std::from_chars(digits.data(), digits.data() + digits.size(), decimal.digits);
    const std::string_view power = text.substr(front.size() + (text[front.size() + 1] == '+' ? 2 : 1));
    std::from_chars(power.data(), power.data() + power.size(), decimal.power);
    if (point != std::string_view::npos) decimal.power -= static_cast<std::int64_t>(front.size() - point - 1);
    return decimal;
}

}  // namespace

CDecimalScale::CDecimalScale(const CRawDataChannelInfo& channel)
    : m_zero(channel.ADZero), m_realUnits(channel.UnitsPerAD) {
    if (!std::isfinite(channel.UnitsPerAD)) return;
    CDecimal units = ShortestDecimal(channel.UnitsPerAD);
    constexpr std::int64_t kMostSample = std::numeric_limits<std::uint16_t>::max();
    const std::int64_t mostSteps = std::max(std::abs(m_zero), std::abs(kMostSample - m_zero));
    const std::int64_t most = std::numeric_limits<std::int64_t>::max() / mostSteps;
    for (; units.power > 0 && std::abs(units.digits) <= most / 10; --units.power)
        units.digits *= 10;
    m_isExact = units.power <= 0 && units.power >= -kMostDecimals && std::abs(units.digits) <= most;
    m_units = units.digits;
    m_decimals = m_isExact ? static_cast<std::size_t>(-units.power) : 0;
}

void CDecimalScale::AddTo(std::string& text, std::uint16_t sample) const {
    std::array<char, 32> room{};
    const auto put = [&](auto number) {
        return std::string_view(
            room.data(),
            static_cast<std::size_t>(std::to_chars(room.data(), room.data() + room.size(), number).ptr - room.data()));
    };
    const std::int64_t steps = sample - m_zero;
    if (!m_isExact) {
        text += put(static_cast<double>(steps) * m_realUnits);
        return;
    }
    std::string_view digits = put(steps * m_units);
    if (digits.front() == '-') {
        text += '-';
        digits.remove_prefix(1);
    }
    if (digits.size() <= m_decimals) {
        text.append("0.").append(m_decimals - digits.size(), '0').append(digits);
    } else {
        text += digits.substr(0, digits.size() - m_decimals);
        if (m_decimals > 0) text.append(".").append(digits.substr(digits.size() - m_decimals));
    }
}

}  // namespace vxfile
