#include "vxfileio/results/Response.h"

#include "vxfileio/results/forms/ResultsForm.h"

void CResponse::Save(CXmlFileArchive& archive) const { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CResponse::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
