#include "vxfileio/settings/PropWashIn.h"

#include "vxfileio/settings/forms/PropertyForms.h"

void CPropWashIn::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CPropWashIn::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
