#pragma once

#include "vxfileio/results/ResponseMean.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CResponseMean> {
    static constexpr std::string_view kElement = "Response";
    static constexpr auto kFields = std::tuple{
        CValueField{"Label", &CResponseMean::Label},
        CValueField{"normMean", &CResponseMean::normMean},
        CValueField{"normStdDev", &CResponseMean::normStdDev},
        CValueField{"Samples", &CResponseMean::Samples},
    };
};

}  // namespace vxfileio::xmlarchive
