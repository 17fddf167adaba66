#include "vxfileio/settings/PropNotebook.h"

#include "vxfileio/settings/forms/PropertyForms.h"

void CPropNotebook::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CPropNotebook::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
