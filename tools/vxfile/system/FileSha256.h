#pragma once

#include <atomic>
#include <cstdint>
#include <future>
#include <string>

#include "vxfileio/helpers/File.h"

namespace vxfile {

/// The SHA-256 of a file. A thread of its own reads the file from beginning to end, starting in the constructor, so
/// other work on the file meanwhile finds its bytes in the page cache. Uses one block of memory.
class CFileSha256 {
 public:
    /// Uses the first `size` bytes of a file, which must outlive this object. `path` is its name in messages.
    CFileSha256(const vxfileio::helpers::CFile& file, std::string path, std::int64_t size);
    /// Stops reading, and waits for the thread.
    ~CFileSha256();
    CFileSha256(const CFileSha256&) = delete;
    CFileSha256& operator=(const CFileSha256&) = delete;

    /// Waits for the end, and returns the sum as 64 hexadecimal digits. Call it once. Throws `CFailure` if the file
    /// can't be read, and `CInterruption` after Ctrl-C.
    std::string Take() { return m_sum.get(); }

 private:
    std::string Compute(const std::string& path, std::int64_t size) const;

    const vxfileio::helpers::CFile& m_file;
    std::atomic<bool> m_isStopped = false;
    std::future<std::string> m_sum;  ///< The last member: the thread uses the others.
};

}  // namespace vxfile
