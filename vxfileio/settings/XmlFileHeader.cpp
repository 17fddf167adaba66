#include "vxfileio/settings/XmlFileHeader.h"

#include "vxfileio/settings/forms/PropertyForms.h"

void CXmlFileHeader::Save(CXmlFileArchive& archive) const { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CXmlFileHeader::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
