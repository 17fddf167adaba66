#pragma once

#include "vxfileio/helpers/StdStr.h"

namespace vxfileio::helpers {

/// The pieces of a file path, by the rules of drive letters and backslashes on every host.
class CPath {
 public:
    /// Splits at once. Quotation marks around the whole path are taken off. Both flags are for paths of other kinds
    /// and have no effect: every caller passes false.
    explicit CPath(const char* path, bool folder = false, bool arguments = false);
    virtual ~CPath() = default;
    CPath(const CPath&) = default;
    CPath& operator=(const CPath&) = default;

    /// Returns drive and folder, up to and including the last separator, with backslashes only.
    CStdStr GetDriveDirectory() const;
    /// Returns the file name without its extension.
    CStdStr GetTitle() const;
    /// Returns the extension with its dot, or nothing if the path has none. A name that begins with its only dot, such
    /// as `.xls`, counts as having neither title nor extension.
    CStdStr GetExtension() const;

 private:
    CStdStr m_path;
    CStdStr m_drive;      ///< With its colon, or empty.
    CStdStr m_directory;  ///< With its final backslash, or empty.
    CStdStr m_title;
    CStdStr m_extension;  ///< Without its dot.
};

}  // namespace vxfileio::helpers
