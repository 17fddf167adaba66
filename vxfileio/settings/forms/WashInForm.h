#pragma once

#include "vxfileio/settings/PropWashIn.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropWashIn> {
    static constexpr std::string_view kElement = "PropertyWashIn";
    static constexpr auto kFields = std::tuple{
        CValueField{"WashIn", &CPropWashIn::WashIn},
    };
};

}  // namespace vxfileio::xmlarchive
