#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vxfileio/export/Document.h"
#include "vxfileio/helpers/ReplacingFile.h"
#include "vxfileio/results/Results.h"
#include "vxfileio/settings/PropAnalyzer.h"
#include "vxfileio/settings/PropRecordPlate.h"
#include "vxfileio/settings/PropResultsExport.h"

namespace vxfileio::workbook {

/// A workbook that wasn't written, with the reason.
struct CWorkbookFailure {
    enum class EKind {
        NotFinished,  ///< The export ended early.
        NoFileName,   ///< The label can't be in a file name.
        TooLarge,     ///< It exceeds the size limit of compound files.
        Refused,      ///< The system refused something.
    };

    EKind kind = EKind::Refused;
    std::string path;                    ///< In the form that the system expects.
    helpers::CFileFailure refusal = {};  ///< For `Refused`.

    /// Returns one line, such as "No space left on device, writing 512 bytes at 0 of out/run-A1.xls".
    std::string Text() const;
};

/// The workbook of one well.
struct CWellWorkbook {
    std::int32_t wellID = 0;
    std::string path;  ///< In the form that the system expects.
    bool isFileName = false;
};

/// Returns the workbooks of the wells that the plate marks as new, in the order of the plate, for an export to a path.
/// The export skips those whose name can't be that of a file in the same folder, and all if the path has a NUL byte.
std::vector<CWellWorkbook> WellWorkbooksOf(const CPropRecordPlate& plate, const std::string& wholePath);

/// Implements `CIResultsExport`, where the operations are documented.
class CResultsExport {
 public:
    /// Saves a workbook at a path. Returns the failure, if any.
    using CSave = std::function<std::optional<CWorkbookFailure>(YExcel::Document& document, const std::string& path)>;

    void SetResults(const CResults* results) noexcept { m_results = results; }
    void SetPropertyAnalyzer(const CPropAnalyzer* analyzer) noexcept { m_analyzer = analyzer; }
    void SetPropertyResultsExport(const CPropResultsExport* property) noexcept { m_property = property; }
    void SetPropertyRecordPlate(const CPropRecordPlate* plate) noexcept { m_plate = plate; }

    /// Sets how doses are converted to text. An exception from it ends the export before any workbook is written.
    void SetDoseText(std::string (*doseText)(std::uint64_t dose)) noexcept { m_doseText = doseText; }

    void ExportExcel(const std::string& path);
    /// The same, but saves each workbook through a function. An exception from it ends the export.
    void Export(const std::string& path, const CSave& save);

    /// Returns the workbooks that the last export didn't write.
    const std::vector<CWorkbookFailure>& Failures() const noexcept { return m_failures; }
    std::string GetWriteError() const;

 private:
    const CResults* m_results = nullptr;
    const CPropAnalyzer* m_analyzer = nullptr;
    const CPropResultsExport* m_property = nullptr;  ///< Nothing depends on it yet.
    const CPropRecordPlate* m_plate = nullptr;
    std::string (*m_doseText)(std::uint64_t dose) = DoseToText;
    std::vector<CWorkbookFailure> m_failures;
};

}  // namespace vxfileio::workbook
