#pragma once

#include "vxfileio/helpers/StdStr.h"

namespace vxfileio::helpers {

/// The parts of a file path, by the rules of drive letters and backslashes on every system.
class CPath {
 public:
    /// Splits the path. Removes quotation marks around the whole path. The flags have no effect: every caller passes
    /// false.
    explicit CPath(const char* path, bool folder = false, bool arguments = false);
    virtual ~CPath() = default;
    CPath(const CPath&) = default;
    CPath& operator=(const CPath&) = default;

    /// Returns drive and folder, up to and including the last separator, with backslashes only.
    CStdStr GetDriveDirectory() const;
    /// Returns the file name without its extension.
    CStdStr GetTitle() const;
    /// Returns the extension with its dot; empty if there is none. A name whose only dot is its first character, such
    /// as `.xls`, has neither title nor extension.
    CStdStr GetExtension() const;

 private:
    CStdStr m_path;
    CStdStr m_drive;      ///< With its colon, or empty.
    CStdStr m_directory;  ///< With its final backslash, or empty.
    CStdStr m_title;
    CStdStr m_extension;  ///< Without its dot.
};

}  // namespace vxfileio::helpers
