#pragma once

#include <string>

#include "vxfileio/helpers/File.h"

namespace vxfileio::helpers {

/// A file that is written beside the one it is to replace, and takes its place at once when it is whole. Whoever reads
/// finds the old file or the new one, and whatever fails before leaves the old one as it was and nothing beside it.
///
/// The new file has the old one's rights; where the path is a symbolic link, the file that it leads to is replaced.
/// What is no plain file is written in place, and so is a file whose folder takes no second one, or lets nobody replace
/// it: then a failure leaves the beginning of the new content.
///
/// Nothing throws, apart from want of memory in `Create` and `Commit`.
class CReplacingFile {
 public:
    CReplacingFile() = default;
    /// Drops what wasn't committed.
    ~CReplacingFile() { Discard(); }
    CReplacingFile(const CReplacingFile&) = delete;
    CReplacingFile& operator=(const CReplacingFile&) = delete;

    /// Begins to replace the file of this path, or to make it if there is none; drops what was begun before. Returns
    /// false if it can't be opened for writing; then it is as it was. If only the disk has no room for a second file,
    /// the result is true, and all that is written is refused.
    bool Create(const std::string& path);

    /// The file to write into until `Commit`. Not moved, it can also be opened for other purposes.
    CFile& File() { return m_file; }

    /// Closes the new file and, if the system took everything, moves it into place. Returns whether it is there.
    bool Commit();

    /// What failed first since `Create`.
    const CFileFailure& Failure() const { return m_failure ? m_failure : m_file.Failure(); }

    /// The same in words, with the path that `Create` got; empty if nothing failed.
    std::string WriteError() const { return Failure().Text(m_path); }

 private:
    bool CreateBeside(const CFile& old);
    bool Move();
    bool CopyOver();
    void Discard();

    CFile m_file;
    CFileFailure m_failure;  ///< One that isn't the file's own.
    std::string m_path;      ///< As the caller named it.
    std::string m_place;     ///< Where the file is to stand.
    std::string m_beside;    ///< Where it is written; empty if it is written in place, or done.
};

}  // namespace vxfileio::helpers
