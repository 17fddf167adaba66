#pragma once

// The cells of the workbook that all programs write.

#include <cstdint>

inline constexpr std::uint32_t kRows = 65'000;

inline double CellOf(std::uint32_t row, std::uint32_t column) { return (row * 12 + column) / 7.0 + 0.001; }
