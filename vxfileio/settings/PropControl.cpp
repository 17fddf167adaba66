#include "vxfileio/settings/PropControl.h"

#include "vxfileio/settings/forms/PropertyForms.h"

void CPropControlSlots::Save(CXmlFileArchive& /*archive*/) {}
void CPropControlSlots::Load(CXmlFileArchive& /*archive*/) {}

template <class File>
void CPropControl::Save(gd_xml_stream::CXMLArchive<File>& archive) const {
    vxfileio::xmlarchive::SaveElement(archive, *this);
}

template <class File>
void CPropControl::Load(gd_xml_stream::CXMLArchive<File>& archive) {
    vxfileio::xmlarchive::LoadElement(archive, *this);
}

template VXFILEIO_API void CPropControl::Save(CXmlFileArchive& archive) const;
template VXFILEIO_API void CPropControl::Load(CXmlFileArchive& archive);
