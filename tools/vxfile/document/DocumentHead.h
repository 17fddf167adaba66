#pragma once

#include <string>

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

/// Returns a sentence if the Guids of settings and results differ; empty if they agree or one is empty, as most
/// programs leave it out.
std::string DifferenceOfRuns(const CRunFile& settings, const CRunFile& results);

}  // namespace vxfile
