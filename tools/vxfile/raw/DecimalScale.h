#pragma once

#include <cstdint>
#include <string>

#include "vxfileio/rawdata/RawDataHeaders.h"

namespace vxfile {

/// Writes samples in physical units, (sample - ADZero) * UnitsPerAD, as exact decimals: with as many decimals as
/// UnitsPerAD has in its shortest form, so 2875 steps of 0.0001 are 0.2875. If that has too many digits for 64 bits or
/// more than 30 decimals, writes the double that is nearest instead.
class CDecimalScale {
 public:
    CDecimalScale() = default;
    explicit CDecimalScale(const CRawDataChannelInfo& channel);

    /// Appends a sample to a text.
    void AddTo(std::string& text, std::uint16_t sample) const;

 private:
    bool m_isExact = false;
    std::int64_t m_zero = 0;
    std::int64_t m_units = 0;    ///< UnitsPerAD times ten to the power of `m_decimals`.
    std::size_t m_decimals = 0;  ///< The digits after the point.
    double m_realUnits = 0;
};

}  // namespace vxfile
