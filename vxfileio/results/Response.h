#pragma once

#include <string>

#include "vxfileio/base/Api.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

/// One response of a well. A value.
class VXFILEIO_API CResponse {
 public:
    std::string Label = {};  ///< The word of its `enResponseType`.
    double Value = 0.0;      ///< The value.

    /// Writes the element `Response`.
    void Save(CXmlFileArchive& archive) const;
    /// Reads on to the end tag of `Response`.
    void Load(CXmlFileArchive& archive);
};
