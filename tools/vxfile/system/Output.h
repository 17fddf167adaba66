#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vxfile/system/Descriptor.h"
#include "vxfileio/helpers/ReplacingFile.h"

namespace vxfile {

/// Throws `CFailure` if nothing can be written to `target`: it is the file `source` that is read, under any name, or
/// it has no name, or is `-`, since standard output can't hold a file that appears only when it is whole.
void RefuseTarget(const std::string& target, const std::string& source);

/// Throws `CFailure` if a path is a folder, a device or a pipe, or if there is a file and `replace` isn't set.
void RefusePlace(const std::string& path, bool replace);

/// Begins a file that appears when it is committed. Throws `CFailure` like `RefusePlace`, and if the file can't be
/// created.
void CreateWhole(vxfileio::helpers::CReplacingFile& file, const std::string& path, bool replace);

/// Throws the `CFailure` of a file that couldn't be written or moved into place.
[[noreturn]] void RefuseWrite(const std::string& target, const vxfileio::helpers::CFileFailure& failure);

/// Where a command writes.
struct CTarget {
    std::string path = "-";   ///< `-` is standard output.
    std::string source = {};  ///< The file that is read, which is never written to.
    bool replace = false;     ///< Whether a file at the path is replaced.
};

/// Where the bytes of a command go: a file that appears when it is committed, or standard output for the path `-`. A
/// device, a pipe or an open file such as `/dev/stdout` is written directly. Never the source, from which the
/// bytes come. Small parts are gathered in a block. Every failure is a `CFailure`.
class COutput {
 public:
    /// Throws `CFailure` if there is a file already and `replace` isn't set.
    explicit COutput(const CTarget& target);
    ~COutput();
    COutput(const COutput&) = delete;
    COutput& operator=(const COutput&) = delete;

    /// Appends bytes. Throws `CInterruption` after Ctrl-C.
    void Write(std::string_view text);
    void Write(std::span<const std::byte> bytes);

    /// Returns whether the first bytes can be rewritten: those of a file, but not of a pipe.
    bool CanRewriteFront() const noexcept { return m_isFile; }
    /// Replaces the first bytes. Nothing may be appended afterwards.
    void RewriteFront(std::string_view text);

    /// Writes what is gathered and closes the file, which then waits for `Commit`.
    void Finish();

    /// Ends outputs that were finished: all files appear, or none if one can't be moved into place.
    static void Commit(std::span<COutput* const> outputs);

 private:
    void Open(const std::string& path, bool replace);
    void Pass(std::span<const std::byte> bytes);
    void Flush();

    vxfileio::helpers::CReplacingFile m_file;
    bool m_isFile = false;
    CDescriptor m_descriptor;  ///< Of standard output and devices.
    std::string m_name;
    std::vector<std::byte> m_gathered;
};

/// Flushes standard output. Throws `CFailure` if it didn't take everything.
void FinishPrinting();

}  // namespace vxfile
