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
/// The setters come first, in any order. They keep the caller's pointers, which must stay valid up to `ExportExcel` and
/// of which null is none. One object can export again and again. One thread at a time.
class VXFILEIO_API CIResultsExport {
 public:
    CIResultsExport();
    ~CIResultsExport();

    CIResultsExport(const CIResultsExport&) = delete;
    CIResultsExport& operator=(const CIResultsExport&) = delete;

    void SetResults(const CResults* results);                    ///< Sets what is exported.
    void SetPropertyAnalyzer(const CPropAnalyzer* analyzer);     ///< Sets the marks that tell which values count.
    void SetPropertyRecordPlate(const CPropRecordPlate* plate);  ///< Sets the wells, their labels and the doses.
    /// Sets the settings of the export. There are none yet, and nothing depends on it.
    void SetPropertyResultsExport(const CPropResultsExport* property);

    /// Writes the main workbook to `path`: its sheet "Results" has a block for each response, with one row per well of
    /// the plate and one column per recording. Values that the marks leave out have no cell. Then it writes one
    /// workbook for each well in the state `PlateWell::kNew`, whose path has "-" and the well's label between title and
    /// extension: its sheet "HB Time Stamps" has the times of the beats, "Averages" the averages in microvolts against
    /// their time.
    ///
    /// Files of these names are replaced. A workbook that can't be created is left out, and one that a full disk
    /// doesn't take whole stays cut short, the file before it being gone. Left out is also the workbook of a well whose
    /// label can't be in the name of a file. All this is quiet, and told by `GetWriteError`. What lies beyond 65536
    /// rows or 256 columns is left out as well. Throws `CExcVXReader`, before anything is written, if results, analyzer
    /// or plate aren't set, and what `DoseToText` throws for a dose without text.
    void ExportExcel(const std::string& path);

    /// Returns an empty text if the last `ExportExcel` brought every workbook to the operating system, else one line
    /// for each that it didn't, which names it by its path as this system has it: "No space left on device, writing 512
    /// bytes at 0 of out/run-A1.xls". Lines are parted by line feeds. A call that was refused before it wrote anything,
    /// by an exception, doesn't count: what is told is that of the one before.
    std::string GetWriteError() const;

 private:
    std::unique_ptr<vxfileio::workbook::CResultsExport> m_export;
};
