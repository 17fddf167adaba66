#include "vxfileio/settings/PropRecording.h"

#include "vxfileio/settings/forms/PropertyForms.h"

using vxfileio::settings::kPlusMinus;
using CForm = vxfileio::xmlarchive::CXmlForm<CPropRecording>;

void CPropRecording::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }

void CPropRecording::Load(CXmlFileArchive& archive) {
    const auto isAtEnd = [&] {
        return archive.IsEndTag() &&
               (archive.TagName() == CForm::kElement || archive.TagName() == CForm::kOlderElement);
    };
    while (archive.NextElement() && !isAtEnd())
        vxfileio::xmlarchive::GetField(archive, CForm::kFields, *this);
    VoltageRange.insert(0, kPlusMinus);
}
