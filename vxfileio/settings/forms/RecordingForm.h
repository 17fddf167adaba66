#pragma once

#include "vxfileio/settings/PropRecording.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::settings {

/// The plus-minus sign of Latin-1 and a blank.
inline constexpr std::string_view kPlusMinus = "\xB1 ";

/// The voltage range, without the sign that it has for people.
struct CVoltageRangeField : xmlarchive::CTextField<CPropRecording> {
    constexpr CVoltageRangeField() : CTextField{"VoltageRange", &CPropRecording::VoltageRange} {}

    void Put(CXmlFileArchive& archive, const CPropRecording& recording) const {
        const std::string& range = recording.VoltageRange;
        archive.PutValue(range.starts_with(kPlusMinus) ? range.substr(kPlusMinus.size()) : range);
    }
};

}  // namespace vxfileio::settings

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropRecording> {
    static constexpr std::string_view kElement = "PropertyRecording";
    static constexpr std::string_view kOlderElement = "PropRecording";  ///< Read, never written.
    static constexpr auto kFields = std::tuple{
        CValueField{"DataFormat", &CPropRecording::DataFormat},
        CValueField{"ADMax", &CPropRecording::ADMax},
        CValueField{"ADMin", &CPropRecording::ADMin},
        CValueField{"ADZero", &CPropRecording::ADZero},
        CValueField{"Gain", &CPropRecording::Gain},
        CValueField{"RecordingTime", &CPropRecording::RecordingTime},
        CValueField{"Tick", &CPropRecording::Tick},
        settings::CVoltageRangeField{},
        CValueField{"VoltPerADStep", &CPropRecording::VoltPerADStep},
    };
};

}  // namespace vxfileio::xmlarchive
