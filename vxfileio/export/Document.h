#pragma once

#include <cstdint>
#include <string>

#include "vxfileio/export/Sheet.h"
#include "vxfileio/export/WorkbookFile.h"
#include "vxfileio/export/WorkbookStream.h"
#include "vxfileio/helpers/ReplacingFile.h"

namespace YExcel {

/// A workbook in memory: sheets with unique names. It can be saved as a file.
///
/// A new document is empty. Sheets and cells belong to the document; pointers to them are valid until it is destroyed
/// or `CreateSheets` is called. Names are compared byte by byte. Nothing throws except `std::bad_alloc`.
class Document {
 public:
    /// Removes all sheets and creates `count` new ones, at least one, named "Sheet1", "Sheet2" and so on.
    void CreateSheets(std::int32_t count);

    /// Inserts an empty sheet before the one at `position`, or at the end if there is none, as for -1. Returns null if
    /// the name is in use. The file keeps 255 bytes of a name; spreadsheet programs accept at most 31.
    Sheet* AddSheet(const std::string& name, std::int32_t position = -1);

    /// The same with the first unused name of "Sheet" and a number, starting from the number of sheets + 1.
    Sheet* AddDefaultSheet(std::int32_t position = -1);

    /// Renames a sheet. Returns false if there is no such sheet or the new name is in use.
    bool RenameSheet(const std::string& oldName, const std::string& newName);

    /// Returns the sheet with this name, or null.
    Sheet* FindSheet(const std::string& name);

    /// Writes the workbook to a new file, which replaces any file at the path once it is complete. Doesn't change the
    /// sheets. On failure, returns false and leaves an existing file unchanged.
    bool SaveToFile(const std::string& path);

    /// Writes the workbook to a file that was created and that the caller commits. Returns false on failure. If the
    /// system refused something, the file has a `Failure`; if the workbook is too large, it has none.
    [[nodiscard]] bool WriteTo(vxfileio::helpers::CReplacingFile& file);

    /// Returns the workbook's stream, as `SaveToFile` stores it. It is valid until the document changes.
    CWorkbookStream Stream() const { return CWorkbookStream(m_sheets); }

 private:
    Sheets m_sheets;
    CWorkbookFile m_file;
};

}  // namespace YExcel
