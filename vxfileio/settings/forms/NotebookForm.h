#pragma once

#include "vxfileio/settings/PropNotebook.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropNotebook> {
    static constexpr std::string_view kElement = "PropertyNotebook";
    static constexpr auto kFields = std::tuple{
        CTextField{"ExperimentID", &CPropNotebook::ExperimentID},
        CTextField{"FileName", &CPropNotebook::FileName},
        CTextField{"Director", &CPropNotebook::Director},
        CTextField{"Scientist", &CPropNotebook::Scientist},
        CTextField{"Operator", &CPropNotebook::Operator},
        CTextField{"Department", &CPropNotebook::Department},
        CTextField{"Company", &CPropNotebook::Company},
        CTextField{"StudyDesignator", &CPropNotebook::StudyDesignator},
        CTextField{"Species", &CPropNotebook::Species},
        CTextField{"Age", &CPropNotebook::Age},
        CTextField{"Comment", &CPropNotebook::Comment},
    };
};

}  // namespace vxfileio::xmlarchive
