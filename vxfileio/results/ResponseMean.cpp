#include "vxfileio/results/ResponseMean.h"

#include "vxfileio/results/forms/ResultsForm.h"

void CResponseMean::Save(CXmlFileArchive& archive) const { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CResponseMean::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
