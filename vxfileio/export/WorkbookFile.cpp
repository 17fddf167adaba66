#include "vxfileio/export/WorkbookFile.h"

using vxfileio::compound::CompoundStorage;
using vxfileio::compound::SectorFile;

namespace YExcel {

static_assert(CRecordStream::kPieceSize % SectorFile::kBlockSize == 0, "the storage needs whole sectors");

bool CWorkbookFile::Write(const CWorkbookStream& stream, vxfileio::helpers::CFile& file) {
    static constexpr const char* kStreamName = "Workbook";
    m_storage.CreateIn(file);
    m_storage.MakeFile(kStreamName);
    const auto give = [&](const CompoundStorage::TakePiece& take) { stream.GiveTo(take); };
    const std::int32_t result = m_storage.WriteFile(kStreamName, stream.Size(), give);
    const bool isWhole = result == CompoundStorage::kSuccess && m_storage.IsComplete();
    m_storage.Close();
    return isWhole;
}

}  // namespace YExcel
