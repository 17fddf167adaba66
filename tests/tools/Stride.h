#pragma once

#include <cstddef>

/// The distance between tests that have one case for each byte of a file. On Windows, where creating a file takes long,
/// and under sanitizers or when lines are counted, where all calls do, only some bytes are tested.
#if defined(_WIN32)
inline constexpr std::size_t kStride = 41;
#elif defined(VXFILEIO_FEWER_CASES)
inline constexpr std::size_t kStride = 13;
#else
inline constexpr std::size_t kStride = 1;
#endif
