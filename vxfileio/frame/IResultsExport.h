#pragma once

#include <memory>
#include <string>

#include "vxfileio/base/Api.h"
#include "vxfileio/results/Results.h"
#include "vxfileio/settings/PropAnalyzer.h"
#include "vxfileio/settings/PropRecordPlate.h"
#include "vxfileio/settings/PropResultsExport.h"

namespace vxfileio::workbook {
class CResultsExport;
}

/// Exports the results of the task "Series" to spreadsheet workbooks.
///
/// Call the setters first, in any order. They store the pointers, which must outlive the call to `ExportExcel`. Null
/// means not set. One object can export any number of times. Use an object from one thread at a time.
class VXFILEIO_API CIResultsExport {
 public:
    CIResultsExport();
    ~CIResultsExport();

    CIResultsExport(const CIResultsExport&) = delete;
    CIResultsExport& operator=(const CIResultsExport&) = delete;

    void SetResults(const CResults* results);                    ///< Sets what is exported.
    void SetPropertyAnalyzer(const CPropAnalyzer* analyzer);     ///< Sets the marks that say which values count.
    void SetPropertyRecordPlate(const CPropRecordPlate* plate);  ///< Sets the wells, their labels and the doses.
    /// Sets the settings of the export. There are none yet; this has no effect.
    void SetPropertyResultsExport(const CPropResultsExport* property);

    /// Writes the main workbook to `path`: its sheet "Results" has a block for each response, with one row per well of
    /// the plate and one column per recording. Values that the marks leave out have no cell. Then it writes one
    /// workbook for each well in the state `PlateWell::kNew`, whose path has "-" and the well's label between title and
    /// extension: its sheet "HB Time Stamps" has the times of the beats, "Averages" the averages in microvolts against
    /// their time.
    ///
    /// Files of these names are replaced, each at once when the new one is whole: after a failure the old file is
    /// unchanged. Skips the workbook of a well whose label can't be in a file name: one with `/`, `\\` or a control
    /// character, or one that makes the name longer than 255 bytes. A failure doesn't throw and doesn't stop the other
    /// workbooks; `GetWriteError` reports it. Leaves out cells beyond 65536 rows or 256 columns.
    ///
    /// Throws `CExcVXReader`, before anything is written, if results, analyzer or plate aren't set, and what
    /// `DoseToText` throws for a dose without text.
    void ExportExcel(const std::string& path);

    /// Returns one line for each workbook that the last `ExportExcel` didn't write, such as "No space left on device,
    /// writing 512 bytes at 0 of out/run-A1.xls", with a line feed between lines; empty if all were written. A call
    /// that threw before it wrote anything doesn't count: the result is that of the call before.
    std::string GetWriteError() const;

 private:
    std::unique_ptr<vxfileio::workbook::CResultsExport> m_export;
};
