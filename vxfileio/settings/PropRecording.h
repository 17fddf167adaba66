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
    std::uint16_t ADZero = 0;        ///< AD value that stands for zero.
    std::uint16_t ADMax = 0;         ///< Greatest AD value.
    std::uint16_t ADMin = 0;         ///< Least AD value.
    double VoltPerADStep = 0.0;      ///< Volts per AD step.
    std::string VoltageRange;        ///< For people: the plus-minus sign (byte 0xB1), a blank, a number.
    std::int64_t Tick = 0;           ///< Sample interval.
    std::int64_t RecordingTime = 0;  ///< Length of a recording.

    /// Writes the element `PropertyRecording`. The plus-minus sign and the blank at the front of `VoltageRange` stay
    /// out of the file.
    void Save(CXmlFileArchive& archive) override;

    /// Reads on to the end tag of `PropertyRecording`, or of `PropRecording`, its name in older files. Whatever the
    /// file holds, the plus-minus sign and the blank then stand at the front of `VoltageRange`, also a second time.
    void Load(CXmlFileArchive& archive) override;
};
