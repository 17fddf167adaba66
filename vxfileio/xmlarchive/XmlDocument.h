#pragma once

#include <string>
#include <string_view>

#include "vxfileio/frame/ExcVXReader.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

/// @file
/// The frame of every document of the library: declaration and root. Both throw `CExcVXReader` with `openFailed` and
/// the path, before anything is written or read, if the file can't be opened; nothing else is reported.

namespace vxfileio {

inline constexpr std::string_view kXmlVersion = "version=\"1.0\"";
inline constexpr std::string_view kRootElement = "Vexaprobe";

/// Opens the file of a document, or throws.
inline void OpenDocument(gd_xml_stream::CFileBuffer& file, const std::string& path, const char* mode,
                         std::string_view openFailed) {
    if (file.Open(path, mode) != 0) throw CExcVXReader(std::string(openFailed) + path);
}

/// Writes a document whose root holds what `save(archive)` writes. A file of that name is replaced.
template <class Save>
void WriteDocument(const std::string& path, std::string_view openFailed, Save save) {
    gd_xml_stream::CFileBuffer file;
    OpenDocument(file, path, "wb", openFailed);
    CXmlFileArchive archive(&file, gd_xml_stream::kStore, gd_xml_stream::kBlockSize);
    archive.WriteDeclaration(kXmlVersion);
    archive.OpenChild(kRootElement);
    save(archive);
    archive.CloseElement();
    archive.FlushBuffer();
}

/// Reads a document by `load(archive)`, which begins ahead of the root. What stands ahead of it is passed over.
template <class Load>
void ReadDocument(const std::string& path, std::string_view openFailed, Load load) {
    gd_xml_stream::CFileBuffer file;
    OpenDocument(file, path, "r", openFailed);
    CXmlFileArchive archive(&file, gd_xml_stream::kLoad, gd_xml_stream::kBlockSize);
    archive.SkipProlog();
    load(archive);
}

}  // namespace vxfileio
