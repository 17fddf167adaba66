#include "vxfileio/export/WorkbookFile.h"

using vxfileio::compound::CompoundStorage;
using vxfileio::compound::SectorFile;

namespace YExcel {

namespace {

constexpr const char* kStreamName = "Workbook";

}  // namespace

bool WorkbookFile::Create(const std::string& path) {
    m_storage.Create(path);
    return m_storage.IsOpen() && m_storage.MakeFile(kStreamName) == CompoundStorage::kSuccess;
}

bool WorkbookFile::Store(const WorkbookStream& stream) {
    const auto give = [&](const CompoundStorage::TakePiece& take) { stream.GiveTo(take); };
    const std::int32_t result = m_storage.WriteFile(kStreamName, stream.Size(), give);
    return result == CompoundStorage::kSuccess && m_storage.IsComplete();
}
static_assert(RecordStream::kPieceSize % SectorFile::kBlockSize == 0, "the storage wants whole sectors");

std::string WorkbookFile::Close() {
    m_storage.Close();
    return m_storage.WriteError();
}

}  // namespace YExcel
