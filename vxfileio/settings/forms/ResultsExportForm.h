#pragma once

#include "vxfileio/settings/PropResultsExport.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropResultsExport> {
    static constexpr std::string_view kElement = "PropResultsExport";
    static constexpr std::tuple<> kFields{};
};

}  // namespace vxfileio::xmlarchive
