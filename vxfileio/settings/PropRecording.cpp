#include "vxfileio/settings/PropRecording.h"

#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

namespace {

/// The plus-minus sign of Latin-1 and a blank.
constexpr std::string_view kPlusMinus = "\xB1 ";

/// The voltage range, whose sign is for people and isn't stored.
struct CVoltageRangeField {
    std::string_view tag = "VoltageRange";

    void Put(CXmlFileArchive& archive, const CPropRecording& recording) const {
        const std::string& range = recording.VoltageRange;
        archive.PutValue(range.starts_with(kPlusMinus) ? range.substr(kPlusMinus.size()) : range);
    }
    void Get(CXmlFileArchive& archive, CPropRecording& recording) const { recording.VoltageRange = archive.GetText(); }
};

}  // namespace

template <>
struct CXmlForm<CPropRecording> {
    static constexpr std::string_view kElement = settings::kRecordingElement;
    static constexpr auto kFields = std::tuple{
        CValueField{"DataFormat", &CPropRecording::DataFormat},
        CValueField{"ADMax", &CPropRecording::ADMax},
        CValueField{"ADMin", &CPropRecording::ADMin},
        CValueField{"ADZero", &CPropRecording::ADZero},
        CValueField{"Gain", &CPropRecording::Gain},
        CValueField{"RecordingTime", &CPropRecording::RecordingTime},
        CValueField{"Tick", &CPropRecording::Tick},
        CVoltageRangeField{},
        CValueField{"VoltPerADStep", &CPropRecording::VoltPerADStep},
    };
};

}  // namespace vxfileio::xmlarchive

void CPropRecording::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }

void CPropRecording::Load(CXmlFileArchive& archive) {
    using Form = vxfileio::xmlarchive::CXmlForm<CPropRecording>;
    const auto atEnd = [&] {
        return archive.IsEndTag() &&
               (archive.TagName() == Form::kElement || archive.TagName() == vxfileio::settings::kOlderRecordingElement);
    };
    while (archive.NextElement() && !atEnd())
        vxfileio::xmlarchive::GetField(archive, *this, Form::kFields);
    VoltageRange.insert(0, vxfileio::xmlarchive::kPlusMinus);
}
