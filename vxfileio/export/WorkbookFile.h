#pragma once

#include "vxfileio/export/WorkbookStream.h"
#include "vxfileio/export/compound/CompoundStorage.h"
#include "vxfileio/helpers/File.h"

namespace YExcel {

/// Writes workbooks, each a compound file with one stream. One object writes one after the other and keeps its memory.
class CWorkbookFile {
 public:
    /// Writes a workbook to an empty file that is open for writing. Returns false if the stream is more than a compound
    /// file holds, or the system refuses something.
    [[nodiscard]] bool Write(const CWorkbookStream& stream, vxfileio::helpers::CFile& file);

 private:
    vxfileio::compound::CompoundStorage m_storage;
};

}  // namespace YExcel
