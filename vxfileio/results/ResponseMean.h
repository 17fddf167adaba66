#pragma once

#include <cstdint>
#include <string>

#include "vxfileio/base/Api.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

/// The mean of one response over all wells of a compound at one dose. A value.
class VXFILEIO_API CResponseMean {
 public:
    std::string Label = {};     ///< The word of its `enResponseType`.
    double normMean = 0.0;      ///< Mean of the normalised response.
    double normStdDev = 0.0;    ///< Its standard deviation.
    std::uint32_t Samples = 0;  ///< The number of wells in the mean.

    /// Writes the element `Response`.
    void Save(CXmlFileArchive& archive) const;
    /// Reads on to the end tag of `Response`.
    void Load(CXmlFileArchive& archive);
};
