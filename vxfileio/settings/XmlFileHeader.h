#pragma once

#include <cstdint>
#include <string>

#include "vxfileio/base/Api.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

/// The header of every settings and results file: who wrote it, when, and what it is. The library uses none of the
/// fields but `FileVersion` of settings files. A value with deep copies.
class VXFILEIO_API CXmlFileHeader {
 public:
    std::string HeaderID = "OVL Vexaprobe";    ///< The system's mark.
    std::string CompoundName;                  ///< The compound that the file is about.
    std::string VexaprobeMode = "NotDefined";  ///< The kind of instrument, as free text.
    std::string FileType;                      ///< "VXSettings" or "VXResults"; set by the writers.
    std::string ProgramVersion;                ///< The version of the writing program.
    std::int32_t FileVersion = 0;              ///< The format version; settings files have version 3.
    std::uint64_t RecordingDate = 0;           ///< When the run was recorded, as a file time.
    std::string RecordingDateString;           ///< The same for people.
    std::string FileName;                      ///< The name of the file.
    std::string Guid;                          ///< The identifier of the run.

    /// Writes the element `Header`.
    void Save(CXmlFileArchive& archive) const;

    /// Reads on to the end tag of `Header`. What isn't in the file keeps what it held.
    void Load(CXmlFileArchive& archive);
};
