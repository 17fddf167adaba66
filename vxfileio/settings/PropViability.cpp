#include "vxfileio/settings/PropViability.h"

#include "vxfileio/settings/forms/PropertyForms.h"

void CPropViability::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CPropViability::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
