#include "vxfileio/settings/PropWashIn.h"

#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropWashIn> {
    static constexpr std::string_view kElement = settings::kWashInElement;
    static constexpr auto kFields = std::tuple{
        CValueField{"WashIn", &CPropWashIn::WashIn},
    };
};

}  // namespace vxfileio::xmlarchive

void CPropWashIn::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CPropWashIn::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
