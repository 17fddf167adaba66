#include "capi/Document.h"
#include "vxfileio/frame/IResultsExport.h"

using namespace vxfileio::capi;

int VX_CALL vx_export(vx_document* results, vx_document* settings, const char* path) {
    return With<CDocument>(results, [&](CDocument& document) {
        const CResults& content = document.Results();
        const std::string name = TakeText(path, "The path");
        Use<CDocument>(settings, [&](CDocument& other) {
            const auto& set = other.Settings();
            CIResultsExport work;
            work.SetResults(&content);
            work.SetPropertyAnalyzer(&set.Analyzer);
            work.SetPropertyRecordPlate(&set.RecordPlate);
            work.ExportExcel(name);
            const std::string failures = work.GetWriteError();
            if (!failures.empty()) throw CFailed{VX_ERROR_WRITE, failures};
        });
    });
}
