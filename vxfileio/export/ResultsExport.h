#pragma once

#include <string>

#include "vxfileio/results/Results.h"
#include "vxfileio/settings/PropAnalyzer.h"
#include "vxfileio/settings/PropRecordPlate.h"
#include "vxfileio/settings/PropResultsExport.h"

namespace vxfileio::workbook {

/// The work behind `CIResultsExport`, where the operations are told.
class CResultsExport {
 public:
    void SetResults(const CResults* results) { m_results = results; }
    void SetPropertyAnalyzer(const CPropAnalyzer* analyzer) { m_analyzer = analyzer; }
    void SetPropertyResultsExport(const CPropResultsExport* property) { m_property = property; }
    void SetPropertyRecordPlate(const CPropRecordPlate* plate) { m_plate = plate; }
    void ExportExcel(const std::string& path);
    const std::string& GetWriteError() const { return m_writeError; }

 private:
    const CResults* m_results = nullptr;
    const CPropAnalyzer* m_analyzer = nullptr;
    const CPropResultsExport* m_property = nullptr;  ///< Nothing depends on it yet.
    const CPropRecordPlate* m_plate = nullptr;
    std::string m_writeError;
};

}  // namespace vxfileio::workbook
