#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/xmlarchive/DocumentKinds.h"
#include "vxfileio/xmlarchive/XmlArchive.h"
#include "vxfileio/xmlarchive/XmlFields.h"

/// @file
/// The frame of every document of the library: declaration, root and section. `WriteDocument` and `ReadDocument` throw
/// `CExcVXReader` with `openFailed` and the path, before they write or read anything, if the file can't be opened.

namespace vxfileio::xmlarchive {

inline constexpr std::string_view kXmlVersion = "version=\"1.0\"";

/// Writes a document whose root holds what `save(archive)` writes. Replaces a file of that name once the document is
/// complete; until then the old file stays unchanged. Afterwards `writeError` is empty, or describes the first failure
/// or the exception that ended the document, and the texts that a NUL cut.
template <class Save>
void WriteDocument(const std::string& path, std::string_view openFailed, std::string& writeError, Save save) {
    writeError = "Not finished: " + path;
    gd_xml_stream::CFileBuffer file;
    if (std::string failure = file.OpenReplacing(path); !failure.empty()) {
        writeError = std::move(failure);
        throw CExcVXReader(std::string(openFailed) + path);
    }
    CXmlFileArchive archive(&file, gd_xml_stream::kStore, gd_xml_stream::kBlockSize);
    archive.WriteDeclaration(kXmlVersion);
    archive.OpenChild(kRootElement);
    save(archive);
    archive.CloseElement();
    archive.FlushBuffer();
    writeError = file.Commit();
    const std::string cut = archive.CutTexts();
    writeError += (writeError.empty() || cut.empty() ? "" : "; ") + cut;
}

/// Processes the events of a section, up to its end tag, or to its start tag if it is empty.
template <class Handle>
void ForEachEventOfSection(CXmlFileArchive& archive, std::string_view section, Handle handle) {
    while (archive.NextElement() && !(archive.IsEndTag() && archive.TagName() == section) &&
           !IsEmptyElement(archive, section))
        handle();
}

/// Reads a document by `load(archive)`, with the archive before the root. Skips what precedes the root. `load` must
/// read the document's section last. Afterwards `readError` is empty, or says what was wrong with the document, or that
/// it wasn't read to its end because of an exception.
template <class Load>
void ReadDocument(const std::string& path, std::string_view openFailed, std::string_view section,
                  std::string& readError, Load load) {
    readError = std::string(openFailed) + path;
    gd_xml_stream::CFileBuffer file;
    if (file.Open(path, "r") != 0) throw CExcVXReader(readError);
    readError = "Not read to its end: " + path;
    CXmlFileArchive archive(&file, gd_xml_stream::kLoad, gd_xml_stream::kBlockSize);
    archive.SkipProlog();
    load(archive);
    readError = archive.Finish(section);
}

}  // namespace vxfileio::xmlarchive
