#pragma once

#include <cstdint>
#include <string>

#include "vxfileio/base/Api.h"
#include "vxfileio/settings/VXProperty.h"

/// How the signals are recorded. Times and sample intervals are in the instrument's time unit. A value with deep
/// copies.
class VXFILEIO_API CPropRecording : public CVXProperty {
 public:
    std::uint32_t Gain = 0;          ///< Amplification.
    std::uint32_t DataFormat = 0;    ///< The instrument's number for the form of its samples.
    std::uint16_t ADZero = 0;        ///< AD value of zero volts.
    std::uint16_t ADMax = 0;         ///< Greatest AD value.
    std::uint16_t ADMin = 0;         ///< Least AD value.
    double VoltPerADStep = 0.0;      ///< Volts per AD step.
    std::string VoltageRange;        ///< For people: the plus-minus sign (byte 0xB1), a blank, a number.
    std::int64_t Tick = 0;           ///< Sample interval.
    std::int64_t RecordingTime = 0;  ///< Length of a recording.

    /// Writes the element `PropertyRecording`. A plus-minus sign and blank at the front of `VoltageRange` aren't
    /// written.
    void Save(CXmlFileArchive& archive) override;

    /// Reads on to the end tag of `PropertyRecording`, or of `PropRecording`, its name in older files. Then
    /// prefixes `VoltageRange` with the plus-minus sign and a blank, even if it has them already.
    void Load(CXmlFileArchive& archive) override;
};
