#pragma once

#include "vxfileio/base/Api.h"
#include "vxfileio/settings/VXProperty.h"

/// The settings of an export; there are none yet. Callers pass it along.
class VXFILEIO_API CPropResultsExport : public CVXProperty {
 public:
    /// Writes the element `PropResultsExport`.
    void Save(CXmlFileArchive& archive) override;

    /// Reads on to the end tag of `PropResultsExport`, or the end of the document where the element is self-closed.
    void Load(CXmlFileArchive& archive) override;
};
