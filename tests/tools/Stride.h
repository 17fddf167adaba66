#pragma once

#include <cstddef>

/// How far apart the cases are where there is one for each byte of a file. Elsewhere every byte has its turn; on
/// Windows making a file takes so long that every so-manieth must do.
#if defined(_WIN32)
inline constexpr std::size_t kStride = 41;
#else
inline constexpr std::size_t kStride = 1;
#endif
