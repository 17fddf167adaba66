#pragma once

#include <cstdint>
#include <string>

#include "capi/Border.h"

namespace vxfileio::capi {

/// What a caller gets to know during long work.
class CCallbacks {
 public:
    /// Takes the callbacks of a caller, which may be null.
    explicit CCallbacks(const vx_callbacks* callbacks)
        : m_callbacks(callbacks != nullptr ? TakeStruct(callbacks) : vx_callbacks{}) {}

    /// @{
    /// Throws VX_CANCELLED if the caller wants no more.
    void Reach(std::int64_t done, std::int64_t total) const;
    void Find(std::int64_t offset, const std::string& where, const std::string& meaning) const;
    /// @}

 private:
    vx_callbacks m_callbacks;
};

}  // namespace vxfileio::capi
