#include "tools/vxfile/report/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <system_error>
#include <utility>

namespace vxfile {

namespace {

bool BeginsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }

/// Other ways to write the third unit of doses: in ASCII, with the Greek letter, in Latin-1.
constexpr std::array<std::string_view, 3> kMicromolar = {"uM", "\xCE\xBCM", "\xB5M"};

/// Returns the power of ten by which a unit is larger than picomolar; nothing if it is no unit.
std::optional<int> PowerOf(std::string_view unit) {
    if (std::ranges::find(kMicromolar, unit) != kMicromolar.end()) unit = kDoseUnits[2];
    const auto* const found = std::ranges::find(kDoseUnits, unit);
    if (found == kDoseUnits.end()) return std::nullopt;
    return 3 * static_cast<int>(found - kDoseUnits.begin());
}

}  // namespace

std::size_t Width(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, BeginsCharacter));
}

std::string_view Cut(std::string_view text, std::size_t width) {
    std::size_t end = 0;
    while (end < text.size() && (width > 0 || !BeginsCharacter(text[end])))
        width -= BeginsCharacter(text[end++]) ? 1 : 0;
    return text.substr(0, end);
}

std::string Lowered(std::string text) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    std::ranges::transform(text, text.begin(), lower);
    return text;
}

std::string BareGuid(const std::string& guid) {
    std::string bare = Lowered(guid);
    std::erase_if(bare, [](char c) { return c == '{' || c == '}'; });
    return bare;
}

std::string SizeText(std::int64_t bytes) {
    constexpr std::array kUnits = {"KiB", "MiB", "GiB", "TiB"};
    if (bytes < 1024) return Counted(static_cast<std::uint64_t>(bytes), "byte");
    double size = static_cast<double>(bytes) / 1024;
    std::size_t unit = 0;
    for (; size >= 1024 && unit + 1 < kUnits.size(); ++unit)
        size /= 1024;
    std::array<char, 32> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.1f %s", size, kUnits[unit]));
    return text.data();
}

std::string DoseText(std::int64_t dose) {
    return dose < 0 ? std::to_string(dose) + " pM" : DoseWithUnit(static_cast<std::uint64_t>(dose));
}

std::optional<std::int64_t> ParseDose(std::string_view text) {
    if (text == "0") return 0;
    const std::size_t end = std::min(text.find_first_not_of("0123456789."), text.size());
    const std::string_view number = text.substr(0, end);
    const std::size_t point = std::min(number.find('.'), number.size());
    std::string_view decimals = number.substr(std::min(point + 1, number.size()));
    decimals = decimals.substr(0, decimals.find_last_not_of('0') + 1);
    const auto power = PowerOf(text.substr(std::min(text.find_first_not_of(' ', end), text.size())));
    if (!power || point == 0 || decimals.size() > static_cast<std::size_t>(*power)) return std::nullopt;
    std::string digits(number.substr(0, point));
    digits.append(decimals).append(static_cast<std::size_t>(*power) - decimals.size(), '0');
    std::int64_t dose = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), dose);
    if (error != std::errc() || stop != digits.data() + digits.size()) return std::nullopt;
    return dose;
}

}  // namespace vxfile
