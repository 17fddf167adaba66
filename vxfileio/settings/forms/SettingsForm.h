#pragma once

#include "vxfileio/settings/forms/AnalyzerForm.h"
#include "vxfileio/settings/forms/PropertyForms.h"
#include "vxfileio/settings/forms/RecordPlateForm.h"

namespace vxfileio::settings {

/// A section: a property set that saves and loads its own element.
template <class Section, class Form = CXmlForm<Section>>
struct CSectionField {
    using CEntryForm = Form;
    Section CSettings::*member;
    std::string_view tag = Form::kElement;

    constexpr CXmlElement Element() const noexcept { return kElementOf<Form>; }
    void Get(CXmlFileArchive& archive, CSettings& settings) const {
        LoadChildren(archive, [&] {
            if constexpr (std::is_same_v<Form, CShortPlateForm>) {
                (settings.*member).LoadShort(archive);
            } else {
                (settings.*member).Load(archive);
            }
        });
    }
};
template <class Section>
CSectionField(Section CSettings::*) -> CSectionField<Section>;

/// The sections of a settings file.
struct CSettingsForm {
    static constexpr std::string_view kElement = kSettingsDocument.section;
    static constexpr auto kFields = std::tuple{
        CSectionField{&CSettings::Control},
        CSectionField{&CSettings::Notebook},
        CSectionField{&CSettings::Robot},
        CSectionField<CPropRecordPlate, CShortPlateForm>{&CSettings::RecordPlate},
        CSectionField{&CSettings::QualityCheck},
        CSectionField{&CSettings::WashIn},
        CSectionField{&CSettings::Recording},
        CSectionField{&CSettings::Analyzer},
    };
};

/// The children of the root of a settings file.
inline constexpr CXmlElement kSettingsRoot[] = {kElementOf<CXmlForm<CXmlFileHeader>>, kElementOf<CSettingsForm>};

}  // namespace vxfileio::settings
