#pragma once

#include "vxfileio/base/Api.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

/// The base of the property sets: plain values that hold one group of settings each and live inside their owners.
///
/// `Save` writes one element with all fields under it, in a fixed order. `Load` reads on to the end tag of that
/// element, or to the end of the document; fields are found by their tags, in any order, and a field whose tag is
/// missing keeps what it held. Nothing throws but an allocation, unless the property set says so.
class VXFILEIO_API CVXProperty {
 public:
    /// Writes the property set; here it has no element.
    virtual void Save(CXmlFileArchive& archive);

    /// Reads the property set; here there is nothing to read, and the archive stays where it is.
    virtual void Load(CXmlFileArchive& archive);
};
