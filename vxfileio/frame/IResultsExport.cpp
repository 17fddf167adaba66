#include "vxfileio/frame/IResultsExport.h"

#include "vxfileio/export/ResultsExport.h"

using vxfileio::workbook::CResultsExport;

CIResultsExport::CIResultsExport() : m_export(std::make_unique<CResultsExport>()) {}
CIResultsExport::~CIResultsExport() = default;

void CIResultsExport::SetResults(const CResults* results) { m_export->SetResults(results); }

void CIResultsExport::SetPropertyAnalyzer(const CPropAnalyzer* analyzer) { m_export->SetPropertyAnalyzer(analyzer); }

void CIResultsExport::SetPropertyRecordPlate(const CPropRecordPlate* plate) { m_export->SetPropertyRecordPlate(plate); }

void CIResultsExport::SetPropertyResultsExport(const CPropResultsExport* property) {
    m_export->SetPropertyResultsExport(property);
}

void CIResultsExport::ExportExcel(const std::string& path) { m_export->ExportExcel(path); }

std::string CIResultsExport::GetWriteError() const { return m_export->GetWriteError(); }
