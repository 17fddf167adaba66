#include "vxfileio/results/Response.h"

#include "vxfileio/results/ResultsFile.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CResponse> {
    static constexpr std::string_view kElement = results::kResponseElement;
    static constexpr auto kFields = std::tuple{
        CTextField{"Label", &CResponse::Label},
        CValueField{"Value", &CResponse::Value},
    };
};

}  // namespace vxfileio::xmlarchive

void CResponse::Save(CXmlFileArchive& archive) const { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CResponse::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
