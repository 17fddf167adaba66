#pragma once

#include <span>
#include <string>

#include "vxfileio/helpers/File.h"

namespace vxfileio::helpers {

/// A file that is written beside the file it replaces, as that file's path and ".part1" or a higher number, and moved
/// into place when it is whole. Readers find the old file or the new one. A failure before that leaves the old file as
/// it was and nothing beside it.
///
/// The new file is on the disk before it is moved, and its name before `Commit` returns: a power cut leaves the old
/// file or the new one, and after `Commit` the new one. A folder that may not be read can't be flushed; that isn't
/// reported.
///
/// The new file is created exclusively, so that neither another program nor a planted link can share it, and has the
/// rights of the old file from the start. If the path is a symbolic link, the file that it points to is replaced.
///
/// Throws nothing but `std::bad_alloc`, and only in `Create` and `Commit`.
class CReplacingFile {
 public:
    /// What to do about a file that is there already, or that can't be replaced.
    enum class ERule {
        Overwrite,  ///< Replace it. Write in place what is no plain file, and a file whose folder refuses a second one
                    ///< or a rename; a failure then leaves the beginning of the new content.
        Replace,    ///< Replace it, or fail.
        New,        ///< Fail if there is one, even if it appears just before `Commit`.
    };

    CReplacingFile() = default;
    /// Drops what wasn't committed.
    ~CReplacingFile() { Discard(); }
    CReplacingFile(const CReplacingFile&) = delete;
    CReplacingFile& operator=(const CReplacingFile&) = delete;

    /// Begins to replace the file of this path, or to make it if there is none; drops what was begun before. Returns
    /// false on failure, and the file is as it was. With `Overwrite`, a disk without room for a second file is a
    /// success, and everything written is refused.
    [[nodiscard]] bool Create(const std::string& path, ERule rule = ERule::Overwrite);

    /// The file to write into until `Finish` or `Commit`. It can also be opened for other purposes; then it isn't
    /// moved.
    CFile& File() noexcept { return m_file; }

    /// The path that is written to until `Commit`, in the form that the system takes.
    const std::string& WorkPath() const noexcept { return m_beside; }

    /// Flushes the new file to the disk and closes it; it then waits for `Commit`. Returns whether the disk has all.
    [[nodiscard]] bool Finish();

    /// Finishes the file and, if it is whole, moves it into place. Returns whether it is there for good. If only its
    /// name couldn't be flushed to the disk, the new file is there all the same.
    [[nodiscard]] bool Commit();

    /// Commits all files or none: if one isn't whole, can't be moved, or its name can't be flushed, those moved before
    /// it go back and the old files return. `Failure` of that file then says why. Flushes each folder once. A power cut
    /// before it returns can leave some files old and others new. Requires a rule other than `Overwrite`.
    [[nodiscard]] static bool CommitAll(std::span<CReplacingFile* const> files);

    /// What failed first since `Create`.
    const CFileFailure& Failure() const noexcept { return m_failure ? m_failure : m_file.Failure(); }

    /// The same in words, with the path passed to `Create`; empty if nothing failed.
    std::string WriteError() const { return Failure().Text(m_path); }

 private:
    bool CreateBeside(const CFile& old);
    bool Fail(std::error_code error, CFileFailure::enStep step = CFileFailure::enStep::Replacing);
    bool Move();
    bool CopyOver();
    bool FlushFolder();
    bool SharesFolder(const CReplacingFile& other) const;
    bool KeepOld();
    void BringBackOld() noexcept;
    void Discard() noexcept;

    CFile m_file;
    CFileFailure m_failure;  ///< One that isn't the file's own.
    ERule m_rule = ERule::Overwrite;
    std::string m_path;    ///< As the caller named it.
    std::string m_place;   ///< The file to replace, links followed.
    std::string m_beside;  ///< The new file; empty if it is written in place or was moved.
    std::string m_old;     ///< While several are moved: another name of the old file; empty if there was none.
    bool m_isMoved = false;
};

}  // namespace vxfileio::helpers
