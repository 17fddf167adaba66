#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

/// @file
/// Columns of tables, described as data.

namespace vxfileio::helpers {

/// The type of a column, which is independent of its values.
enum class EColumnType {
    Text,   ///< Text in UTF-8.
    Whole,  ///< A signed 64-bit integer.
    Count,  ///< An unsigned 64-bit integer.
    Real,   ///< A double.
    Flag,   ///< True or false.
};

/// One column of a table.
struct CColumn {
    std::string_view name;
    EColumnType type;
    std::string_view unit;     ///< Such as "pM"; empty if there is none.
    std::string_view meaning;  ///< One line, without a full stop.
    std::size_t room = 32;     ///< For texts: the number of bytes in an array item.
};

/// The column after one with a dose in picomolar.
inline constexpr CColumn kDoseTextColumn{"dose_text", EColumnType::Text, "",
                                         "The same in the largest unit that needs no fraction"};

/// The value of a column. The alternative is determined by the column's type; `std::monostate` means missing. The user
/// of the row owns the text.
using CCell = std::variant<std::monostate, std::string_view, std::int64_t, std::uint64_t, double, bool>;

}  // namespace vxfileio::helpers
