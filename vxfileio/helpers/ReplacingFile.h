#pragma once

#include <span>
#include <string>

#include "vxfileio/helpers/File.h"

namespace vxfileio::helpers {

/// Replaces a file atomically: writes a new file next to it, named like it with ".part1" or a higher number appended,
/// and moves that into place when it is complete. Readers find the old file or the new one. A failure leaves the old
/// file unchanged and no other file.
///
/// The new file is on the disk before it is moved, and its name before `Commit` returns. So after a power cut there is
/// the old file or the new one; after `Commit`, the new one. A folder that can't be read can't be flushed; that isn't
/// reported.
///
/// The new file is created exclusively, so that no other program and no planted link can share it. It has the rights of
/// the old file from the beginning. If the path is a symbolic link, its target is replaced.
///
/// Throws only `std::bad_alloc`, and only in `Create` and `Commit`.
class CReplacingFile {
 public:
    /// What to do if there is a file already, or if it can't be replaced.
    enum class ERule {
        Overwrite,  ///< Replace it. Write in place if it isn't a plain file, or if its folder refuses a second file or
                    ///< a rename; a failure then leaves the beginning of the new content.
        Replace,    ///< Replace it, or fail.
        New,        ///< Fail if there is a file, even if it appears just before `Commit`.
    };

    CReplacingFile() = default;
    /// Discards what wasn't committed.
    ~CReplacingFile() { Discard(); }
    CReplacingFile(const CReplacingFile&) = delete;
    CReplacingFile& operator=(const CReplacingFile&) = delete;

    /// Starts to replace the file at this path, or to create it. Discards a file started before. Returns false on
    /// failure and leaves the old file unchanged. With `Overwrite`, a disk without room for a second file is no
    /// failure; all writes are then refused.
    [[nodiscard]] bool Create(const std::string& path, ERule rule = ERule::Overwrite);

    /// The file to write into until `Finish` or `Commit`. If the caller opens it for anything else, it isn't moved.
    CFile& File() noexcept { return m_file; }

    /// The path of the temporary file in the form that the system expects; empty if there is none.
    const std::string& WorkPath() const noexcept { return m_beside; }

    /// Flushes the new file to the disk and closes it; call `Commit` next. Returns whether everything is on the disk.
    [[nodiscard]] bool Finish();

    /// Finishes the file and moves it into place if it is complete. Returns whether it is there permanently. If only
    /// flushing its name fails, the new file is there anyway.
    [[nodiscard]] bool Commit();

    /// Commits all files or none. If one is incomplete, can't be moved, or its name can't be flushed, those moved
    /// before it are removed and the old files restored; `Failure` of that file has the reason. Flushes each folder
    /// once. A power cut before it returns can leave some files old and others new. Requires a rule other than
    /// `Overwrite`.
    [[nodiscard]] static bool CommitAll(std::span<CReplacingFile* const> files);

    /// The first failure since `Create`.
    const CFileFailure& Failure() const noexcept { return m_failure ? m_failure : m_file.Failure(); }

    /// The same as text, with the path passed to `Create`; empty without a failure.
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
    CFileFailure m_failure;  ///< A failure outside `m_file`.
    ERule m_rule = ERule::Overwrite;
    std::string m_path;    ///< As passed by the caller.
    std::string m_place;   ///< The file to replace, with links resolved.
    std::string m_beside;  ///< The new file; empty if it is written in place or was moved.
    std::string m_old;     ///< While several files are moved: another name of the old file; empty if there is none.
    bool m_isMoved = false;
};

}  // namespace vxfileio::helpers
