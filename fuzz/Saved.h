#pragma once

#include "fuzz/Fuzz.h"
#include "vxfileio/frame/VXFileIO.h"

/// Returns the document of a property set alone, which is written to a file in blocks of this size.
template <class Property>
inline std::string Saved(const std::string& path, Property& property, std::int32_t blockSize) {
    gd_xml_stream::CFileBuffer file;
    Require(file.Open(path, "wb") == 0, "the document can be made");
    {
        CXmlFileArchive archive(&file, gd_xml_stream::kStore, blockSize);
        if constexpr (requires { property.Save(archive, false); }) {
            property.Save(archive, false);
        } else {
            property.Save(archive);
        }
    }
    file.Close();
    return ReadBytes(path);
}
