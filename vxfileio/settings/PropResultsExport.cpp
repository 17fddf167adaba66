#include "vxfileio/settings/PropResultsExport.h"

#include "vxfileio/settings/forms/PropertyForms.h"

void CPropResultsExport::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CPropResultsExport::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
