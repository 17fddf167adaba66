#include "vxfileio/settings/PropQualityCheck.h"

#include "vxfileio/settings/forms/PropertyForms.h"

void CPropQualityCheck::Save(CXmlFileArchive& archive, bool omitPerformed) {
    if (!omitPerformed) return vxfileio::xmlarchive::SaveElement(archive, *this);
    CPropQualityCheck unperformed = *this;
    for (auto& [task, check] : unperformed.QualityChecks)
        check.QCPerformed.clear();
    vxfileio::xmlarchive::SaveElement(archive, unperformed);
}

void CPropQualityCheck::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
