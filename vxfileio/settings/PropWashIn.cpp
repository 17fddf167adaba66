#include "vxfileio/settings/PropWashIn.h"

#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio {

template <>
struct CXmlForm<CPropWashIn> {
    static constexpr std::string_view kElement = settings::kWashInElement;
    static constexpr auto kFields = std::tuple{
        CValueField{"WashIn", &CPropWashIn::WashIn},
    };
};

}  // namespace vxfileio

void CPropWashIn::Save(CXmlFileArchive& archive) { vxfileio::SaveElement(archive, *this); }
void CPropWashIn::Load(CXmlFileArchive& archive) { vxfileio::LoadElement(archive, *this); }
