#pragma once

#include "vxfileio/export/WorkbookStream.h"
#include "vxfileio/export/compound/CompoundStorage.h"
#include "vxfileio/helpers/File.h"

namespace YExcel {

/// Writes workbooks, each as a compound file with one stream. An object can write several and reuses its memory.
class CWorkbookFile {
 public:
    /// Writes a workbook to an empty file that is open for writing. Returns false if the stream is too large for a
    /// compound file, or if the system refuses something.
    [[nodiscard]] bool Write(const CWorkbookStream& stream, vxfileio::helpers::CFile& file);

 private:
    vxfileio::compound::CompoundStorage m_storage;
};

}  // namespace YExcel
