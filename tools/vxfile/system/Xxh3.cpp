#include "tools/vxfile/system/Xxh3.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>

namespace vxfile {

struct CXxh3::CState {
    XXH3_state_t state;
};

CXxh3::CXxh3() : m_state(std::make_unique<CState>()) {
    XXH3_INITSTATE(&m_state->state);
    XXH3_128bits_reset(&m_state->state);
}

CXxh3::~CXxh3() = default;

void CXxh3::Add(std::span<const std::byte> bytes) { XXH3_128bits_update(&m_state->state, bytes.data(), bytes.size()); }

CXxh3Sum CXxh3::Take() {
    XXH128_canonical_t canonical;
    XXH128_canonicalFromHash(&canonical, XXH3_128bits_digest(&m_state->state));
    XXH3_128bits_reset(&m_state->state);
    CXxh3Sum sum;
    std::ranges::copy(canonical.digest, sum.begin());
    return sum;
}

}  // namespace vxfile
