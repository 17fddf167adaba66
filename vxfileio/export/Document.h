#pragma once

#include <cstdint>
#include <string>

#include "vxfileio/export/Sheet.h"
#include "vxfileio/export/WorkbookFile.h"
#include "vxfileio/export/WorkbookStream.h"
#include "vxfileio/helpers/ReplacingFile.h"

namespace YExcel {

/// A workbook in memory: sheets with names of their own, which can be saved as a file.
///
/// A new document is empty; `CreateSheets` gives it sheets, as often as it is called. Pointers to sheets and cells are
/// the document's, valid until its end or the next `CreateSheets`. Names are compared byte by byte. Nothing here throws
/// but for want of memory.
class Document {
 public:
    /// Throws all sheets away and begins with `count` new ones, at least one, named "Sheet1", "Sheet2" and so on.
    void CreateSheets(std::int32_t count);

    /// Adds an empty sheet in front of the one at `position`, or at the end if there is none, as for -1. Returns null
    /// if the name is in use. Of a name, the file keeps 255 bytes; spreadsheet programs want at most 31.
    Sheet* AddSheet(const std::string& name, std::int32_t position = -1);

    /// The same with the first free name of "Sheet" and a number, beginning with the number of sheets + 1.
    Sheet* AddDefaultSheet(std::int32_t position = -1);

    /// Gives a sheet another name. Returns false if there is no such sheet or the new name is in use.
    bool RenameSheet(const std::string& oldName, const std::string& newName);

    /// Returns the sheet of this name, or null.
    Sheet* FindSheet(const std::string& name);

    /// Writes the workbook to a new file, which replaces any at the path when it is whole. The sheets stay as they are.
    /// Returns false on failure; then a file that was there is unchanged.
    bool SaveToFile(const std::string& path);

    /// Writes the workbook to a file that was created. The caller commits it. Returns false on failure; what the system
    /// refused is then the file's `Failure`, and a workbook that is too large leaves none.
    [[nodiscard]] bool WriteTo(vxfileio::helpers::CReplacingFile& file);

    /// Returns the workbook's stream, whose bytes `SaveToFile` stores. It is valid until the document changes.
    CWorkbookStream Stream() const { return CWorkbookStream(m_sheets); }

 private:
    Sheets m_sheets;
    CWorkbookFile m_file;
};

}  // namespace YExcel
