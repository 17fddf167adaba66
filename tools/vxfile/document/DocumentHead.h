#pragma once

#include <string>
#include <string_view>

#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfile {

/// Returns the header of a settings or results file, as far as it can be read; nothing after it is read. Throws
/// `CFailure` if the file can't be opened.
CXmlFileHeader HeadOfDocument(const std::string& path);

/// Returns whether the end tag of the root is in the last bytes of a settings or results file: a file that was cut has
/// none. Throws `CFailure` if the file can't be opened.
[[nodiscard]] bool EndsWithRoot(const std::string& path);

/// A file of a run.
struct CRunFile {
    std::string path;
    std::string guid;
};

/// Returns a sentence if the Guids of two files differ; empty if they agree or one is empty, as most programs leave it
/// out.
std::string DifferenceOfRuns(const CRunFile& file, const CRunFile& other);

/// Returns the Guid of a settings or results file; empty if it can't be read.
std::string GuidOfDocument(const std::string& path);

/// Returns the path of a file in the folder of `path` that has this extension and, by `guidOf`, this Guid: the one with
/// the same name, or else the first by name. Empty if there is none, or the Guid is empty.
std::string FileOfRunBeside(const std::string& path, const std::string& guid, std::string_view extension,
                            std::string (*guidOf)(const std::string& path));

/// Returns the path of such a settings file. Reads only heads.
std::string SettingsBeside(const std::string& path, const std::string& guid);

}  // namespace vxfile
