#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vxfile/system/Descriptor.h"
#include "vxfileio/helpers/ReplacingFile.h"

namespace vxfile {

/// Throws `CFailure` if `target` can't be written: if it is the file `source`, under any name, or if it has no file
/// name, or if it is `-`, since standard output can't appear only when complete.
void RefuseTarget(const std::string& target, const std::string& source);

/// Throws `CFailure` if a path is a folder, a device or a pipe, or if the file exists and `replace` isn't set.
void RefusePlace(const std::string& path, bool replace);

/// Creates a file that appears when it is committed. Throws `CFailure` like `RefusePlace`, and if the file can't be
/// created.
void CreateWhole(vxfileio::helpers::CReplacingFile& file, const std::string& path, bool replace);

/// Throws the `CFailure` of a file that couldn't be written or moved into place.
[[noreturn]] void RefuseWrite(const std::string& target, const vxfileio::helpers::CFileFailure& failure);

/// The output of a command.
struct CTarget {
    std::string path = "-";                 ///< `-` is standard output.
    std::vector<std::string> sources = {};  ///< The input files, which are never overwritten.
    bool replace = false;                   ///< Whether an existing file is replaced.
};

/// The output of a command: a file that appears when it is committed, or standard output for the path `-`. Devices,
/// pipes and open files such as `/dev/stdout` are written directly. Never overwrites a source. Small parts are
/// collected in a block. All failures are `CFailure`.
class COutput {
 public:
    /// Throws `CFailure` if the file exists and `replace` isn't set.
    explicit COutput(const CTarget& target);
    ~COutput();
    COutput(const COutput&) = delete;
    COutput& operator=(const COutput&) = delete;

    /// Appends bytes. Throws `CInterruption` after Ctrl-C.
    void Write(std::string_view text);
    void Write(std::span<const std::byte> bytes);

    /// Returns whether the first bytes can be rewritten: in a file, but not in a pipe.
    bool CanRewriteFront() const noexcept { return m_isFile; }
    /// Replaces the first bytes. Nothing may be appended afterwards.
    void RewriteFront(std::string_view text);

    /// Writes what is buffered and closes the file, which must then be committed.
    void Finish();

    /// Commits finished outputs: all files appear, or none if one can't be moved into place.
    static void Commit(std::span<COutput* const> outputs);

 private:
    void Open(const std::string& path, bool replace);
    void Pass(std::span<const std::byte> bytes);
    void Flush();

    vxfileio::helpers::CReplacingFile m_file;
    bool m_isFile = false;
    CDescriptor m_descriptor;  ///< For standard output and devices.
    std::string m_name;
    std::vector<std::byte> m_gathered;
};

/// Flushes standard output. Throws `CFailure` if something couldn't be written.
void FinishPrinting();

}  // namespace vxfile
