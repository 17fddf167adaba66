#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vxfile/system/Descriptor.h"

namespace vxfile {

/// Throws `CFailure` if `target` is the file that is read, under whatever name: nothing may take its place. Throws it
/// for an empty name, and for `-` too, since what stands in its own place only when it is whole can't go to standard
/// output.
void RefuseTarget(const std::string& target, const std::string& source);

/// A file that is there whole or not at all. It is written under another name beside its place and moved there when it
/// is done; whatever ends the work before that removes it. Where a symbolic link stands, the place is what it leads to,
/// and a file that is replaced leaves its rights to the new one.
class CWholeFile {
 public:
    /// Takes the name that the file will have. Throws `CFailure` if that is a folder, a device or a pipe, or a file and
    /// `replace` isn't set. Nothing is created yet.
    CWholeFile(std::string path, bool replace);
    ~CWholeFile();
    CWholeFile(const CWholeFile&) = delete;
    CWholeFile& operator=(const CWholeFile&) = delete;

    /// The name to write to, in the same folder.
    const std::string& WorkPath() const { return m_workPath; }
    /// Takes a file that was made elsewhere. Throws `CFailure` if that fails.
    void Take(const std::string& made);

    /// Moves the file to its place; whoever wrote it has closed it. Throws `CFailure` if that fails, or if meanwhile
    /// somebody else has put a file there that isn't to be replaced.
    void Commit();

 private:
    void RefuseReplacing() const;

    std::string m_path;   ///< As it was told.
    std::string m_place;  ///< Where that leads.
    bool m_replace;
    std::string m_workPath;
    bool m_committed = false;
};

/// Where the bytes of a command go: a file, or standard output for the path `-`; a device, a pipe or a file that is
/// open already, such as `/dev/stdout`, is written to as it is. Never the file `source`, from which the bytes come.
/// Small parts are gathered in a block, large ones pass by it, and every failure is a `CFailure`: a disk that is full
/// never leaves a file that looks whole.
class COutput {
 public:
    /// Throws `CFailure` if there is a file already and `replace` isn't set.
    COutput(const std::string& path, const std::string& source, bool replace);
    ~COutput();
    COutput(const COutput&) = delete;
    COutput& operator=(const COutput&) = delete;

    /// Writes behind what was written so far. Throws `CInterruption` if Ctrl-C was hit.
    void Write(std::string_view text);
    void Write(std::span<const std::byte> bytes);

    /// Tells whether what stands in front can be written again: in a file, but not in a pipe.
    bool CanRewriteFront() const { return m_file != nullptr; }
    /// Replaces the first bytes that were written. Nothing more is written then.
    void RewriteFront(std::string_view text);

    /// Ends the output; without it nothing is left of a file.
    void Commit();

 private:
    void Pass(std::span<const std::byte> bytes);
    void Flush();
    void Check(bool good);

    void Open(const std::string& path, bool replace);

    std::unique_ptr<CWholeFile> m_file;  ///< Null for standard output and devices.
    std::string m_name;
    CDescriptor m_descriptor;  ///< Closed before the file is removed.
    std::vector<std::byte> m_gathered;
};

/// Ends what was printed on standard output. Throws `CFailure` if it isn't all there.
void FinishPrinting();

}  // namespace vxfile
