#pragma once

#include <cstdint>

#include "vxfileio/base/Api.h"
#include "vxfileio/settings/VXProperty.h"

/// How long a compound is washed in. A value with deep copies.
class VXFILEIO_API CPropWashIn : public CVXProperty {
 public:
    std::int64_t WashIn = 0;  ///< Length of the wash-in.

    /// Writes the element `PropertyWashIn`.
    void Save(CXmlFileArchive& archive) override;

    /// Reads on to the end tag of `PropertyWashIn`.
    void Load(CXmlFileArchive& archive) override;
};
