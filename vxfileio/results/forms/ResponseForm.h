#pragma once

#include "vxfileio/results/Response.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CResponse> {
    static constexpr std::string_view kElement = "Response";
    static constexpr auto kFields = std::tuple{
        CTextField{"Label", &CResponse::Label},
        CValueField{"Value", &CResponse::Value},
    };
};

}  // namespace vxfileio::xmlarchive
