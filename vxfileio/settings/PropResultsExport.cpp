#include "vxfileio/settings/PropResultsExport.h"

#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio {

template <>
struct CXmlForm<CPropResultsExport> {
    static constexpr std::string_view kElement = "PropResultsExport";
    static constexpr std::tuple<> kFields{};
};

}  // namespace vxfileio

void CPropResultsExport::Save(CXmlFileArchive& archive) { vxfileio::SaveElement(archive, *this); }
void CPropResultsExport::Load(CXmlFileArchive& archive) { vxfileio::LoadElement(archive, *this); }
