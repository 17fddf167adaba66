#pragma once

#include <string>

#include "fuzz/Fuzz.h"
#include "vxfileio/frame/VXFileIO.h"

/// Calls `load(archive)` to read a document in blocks of the given size.
template <class Load>
void ReadDocument(const std::string& path, std::int32_t blockSize, Load load) {
    gd_xml_stream::CFileBuffer file;
    Require(file.Open(path, "r") == 0, "the document opens");
    CXmlFileArchive archive(&file, gd_xml_stream::kLoad, blockSize);
    load(archive);
}

/// Returns the document that `save(archive)` writes in blocks of the given size.
template <class Save>
std::string WrittenDocument(const std::string& path, std::int32_t blockSize, Save save) {
    gd_xml_stream::CFileBuffer file;
    Require(file.Open(path, "wb") == 0, "the document can be made");
    {
        CXmlFileArchive archive(&file, gd_xml_stream::kStore, blockSize);
        save(archive);
    }
    file.Close();
    return ReadBytes(path);
}
