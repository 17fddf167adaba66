#pragma once

#include <string>

#include "vxfileio/export/WorkbookStream.h"
#include "vxfileio/export/compound/CompoundStorage.h"

namespace YExcel {

/// The file of a saved workbook: a compound file that holds the workbook's stream. It stays open until the next
/// `Create`, `Close` or the object's end.
class WorkbookFile {
 public:
    /// Makes a new file with an empty stream, in place of any file at the path. Returns false if that can't be done.
    bool Create(const std::string& path);
    /// Stores the stream. Returns false if it is more than a file holds, or the disk doesn't take it.
    bool Store(const WorkbookStream& stream);
    /// Closes the file. Returns what the system refused first since `Create`, in words with the path, or nothing.
    std::string Close();

 private:
    vxfileio::compound::CompoundStorage m_storage;
};

}  // namespace YExcel
