#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "capi/Border.h"
#include "vxfileio/frame/VXFileIO.h"

namespace vxfileio::capi {

/// Returns the header of a recording from the arguments that describe it.
CRawDataRecordingHdr TakeRecordingHdr(const vx_recording_header* header, const std::int32_t* wells,
                                      const std::int32_t* adZeros, const double* unitsPerAD,
                                      const std::int64_t* intervals, std::int64_t count);

/// An object that has its content once its open call has worked.
template <class Content>
class COpened : public CObject {
 public:
    void Open(std::unique_ptr<Content> content) noexcept { m_content = std::move(content); }
    bool IsOpen() const noexcept override { return m_content != nullptr; }
    /// Requires: it is open.
    Content& Get() noexcept { return *m_content; }

 private:
    std::unique_ptr<Content> m_content;
};

}  // namespace vxfileio::capi
