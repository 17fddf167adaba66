#include "vxfileio/settings/VXProperty.h"

void CVXProperty::Save(CXmlFileArchive& /*archive*/) {}
void CVXProperty::Load(CXmlFileArchive& /*archive*/) {}
