#include "vxfileio/settings/PropResultsExport.h"

#include "vxfileio/settings/forms/PropertyForms.h"

void CPropResultsExport::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CPropResultsExport::Load(CXmlFileArchive& archive) {
    using Form = vxfileio::xmlarchive::CXmlForm<CPropResultsExport>;
    vxfileio::xmlarchive::LoadFields<Form>(archive, *this);
}
