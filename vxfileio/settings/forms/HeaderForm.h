#pragma once

#include "vxfileio/settings/XmlFileHeader.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CXmlFileHeader> {
    using Header = CXmlFileHeader;
    static constexpr std::string_view kElement = "Header";
    static constexpr auto kFields = std::tuple{
        CTextField{"HeaderID", &Header::HeaderID},
        CTextField{"CompoundName", &Header::CompoundName},
        CTextField{"VexaprobeMode", &Header::VexaprobeMode},
        CTextField{"FileType", &Header::FileType},
        CTextField{"ProgramVersion", &Header::ProgramVersion},
        CValueField{"FileVersion", &Header::FileVersion},
        CValueField{"RecordingDate", &Header::RecordingDate},
        CTextField{"RecordingDateString", &Header::RecordingDateString},
        CTextField{"FileName", &Header::FileName},
        CTextField{"Guid", &Header::Guid},
    };
};

}  // namespace vxfileio::xmlarchive
