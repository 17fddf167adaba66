#include "vxfileio/results/ResponseMean.h"

#include "vxfileio/results/ResultsFile.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CResponseMean> {
    static constexpr std::string_view kElement = results::kResponseElement;
    static constexpr auto kFields = std::tuple{
        CValueField{"Label", &CResponseMean::Label},
        CValueField{"normMean", &CResponseMean::normMean},
        CValueField{"normStdDev", &CResponseMean::normStdDev},
        CValueField{"Samples", &CResponseMean::Samples},
    };
};

}  // namespace vxfileio::xmlarchive

void CResponseMean::Save(CXmlFileArchive& archive) const { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CResponseMean::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
