#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>

#include "recovery/Input.h"
#include "verify/raw/RawScan.h"
#include "verify/raw/SampleReceiver.h"

namespace vxfile {

/// Delivers samples to a receiver. Does nothing if there is none.
class CSampleDelivery {
 public:
    /// The receiver may be null. Otherwise it must outlive this object.
    explicit CSampleDelivery(CSampleReceiver* receiver) : m_receiver(receiver) {}

    /// Begins the recording with this number. `header` is the bytes of its header, as far as they are in the file.
    void Begin(std::size_t number, const CRecordingAt& recording, const vxfileio::rawdata::CLayout& layout,
               std::string_view header);
    /// Delivers the samples of a segment that are before `end`, an offset in the file. Throws `CReadFailure`.
    void Deliver(const CSegmentAt& segment, std::int64_t end, vxfileio::recovery::CWindow& window);
    void Miss() {
        if (m_receiver != nullptr) m_receiver->Miss();
    }

 private:
    void DeliverPart(CSegmentSamples part, std::string_view bytes);

    CSampleReceiver* m_receiver;
    std::map<std::int32_t, std::int64_t> m_intervals;  ///< Of the wells that the header lists, by their IDs.
    std::array<std::uint16_t, 4096> m_samples{};       ///< Of one part.
};

}  // namespace vxfile
