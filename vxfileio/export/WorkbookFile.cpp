#include "vxfileio/export/WorkbookFile.h"

#include "vxfileio/export/compound/CompoundStorage.h"

using vxfileio::compound::CompoundStorage;
using vxfileio::compound::SectorFile;

namespace YExcel {

static_assert(RecordStream::kPieceSize % SectorFile::kBlockSize == 0, "the storage needs whole sectors");

bool WriteWorkbook(const WorkbookStream& stream, vxfileio::helpers::CFile& file) {
    static constexpr const char* kStreamName = "Workbook";
    CompoundStorage storage;
    storage.CreateIn(file);
    storage.MakeFile(kStreamName);
    const auto give = [&](const CompoundStorage::TakePiece& take) { stream.GiveTo(take); };
    return storage.WriteFile(kStreamName, stream.Size(), give) == CompoundStorage::kSuccess && storage.IsComplete();
}

}  // namespace YExcel
