#include "tools/vxfile/system/FileSha256.h"

#include <utility>

#include "tools/vxfile/system/FileBlocks.h"
#include "tools/vxfile/system/Sha256.h"

namespace vxfile {

// Without a free thread, and for a file of one block, `Take` does the work.
CFileSha256::CFileSha256(const vxfileio::helpers::CFile& file, std::string path, std::int64_t size)
    : m_file(file),
      m_sum(std::async(size > CFileBlocks::kSize ? std::launch::async | std::launch::deferred : std::launch::deferred,
                       [this, path = std::move(path), size] { return Compute(path, size); })) {}

CFileSha256::~CFileSha256() { m_isStopped = true; }

std::string CFileSha256::Compute(const std::string& path, std::int64_t size) const {
    CSha256 sum;
    CFileBlocks blocks(m_file, path, size);
    while (blocks.HasMore() && !m_isStopped)
        sum.Add(blocks.Next());
    return sum.Finish();
}

}  // namespace vxfile
