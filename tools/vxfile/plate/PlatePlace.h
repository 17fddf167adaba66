#pragma once

#include <cstdint>
#include <string_view>

namespace vxfile {

/// A place on a plate, from 0.
struct CPlatePlace {
    std::int64_t row = -1;  ///< -1 if the place isn't known.
    std::int64_t column = -1;

    bool IsKnown() const { return row >= 0 && column >= 0; }
    bool operator==(const CPlatePlace&) const = default;
};

/// Returns the place that a coordinate such as "B7" or "B07" names; an unknown one if the text has another form.
constexpr CPlatePlace PlaceOf(std::string_view text) {
    if (text.size() < 2 || text.size() > 3 || text[0] < 'A' || text[0] > 'Z') return {};
    std::int64_t column = 0;
    for (const char c : text.substr(1)) {
        if (c < '0' || c > '9') return {};
        column = 10 * column + (c - '0');
    }
    return column == 0 ? CPlatePlace() : CPlatePlace{text[0] - 'A', column - 1};
}

}  // namespace vxfile
