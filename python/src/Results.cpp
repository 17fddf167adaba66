#include <memory>
#include <string>
#include <utility>

#include "python/src/Call.h"
#include "python/src/Parts.h"
#include "python/src/Records.h"
#include "vxfileio/export/ResultsExport.h"
#include "vxfileio/results/ResultsContent.h"
#include "vxfileio/results/ResultsFile.h"
#include "vxfileio/results/forms/ResultsForm.h"
#include "vxfileio/settings/Settings.h"
#include "vxfileio/xmlarchive/ReadAndReport.h"

namespace vxfileio::python {

namespace {

/// Makes an object of a Python class with the content of a file. Returns it, and what is wrong with the document.
py::tuple ReadResults(const py::object& made, const std::string& path) {
    const auto reader = std::make_shared<results::CResultsReader>();
    const std::string damage = Interruptible(path, [reader, path] { return xmlarchive::ReadAndReport(*reader, path); });
    py::object object = made();
    auto& content = object.cast<results::CResultsContent&>();
    content.Header = *reader->GetXmlFileHeader();
    static_cast<CResults&>(content) = reader->TakeResults();
    return py::make_tuple(object, TextToPython(damage));
}

/// Returns the error of the system, or an empty text. Writes a copy, so that other threads may change the results
/// meanwhile.
py::object WriteResults(const results::CResultsContent& content, const std::string& path) {
    results::CResultsWriter writer;
    writer.SetXmlFileHeader(content.Header);
    const results::CResultsContent copy = content;
    WithoutLock(path, [&] { writer.WriteFile(path, copy); });
    return TextToPython(writer.GetWriteError());
}

/// Returns the error of the system, or an empty text.
py::object WriteWorkbooks(const results::CResultsContent& content, const settings::CSettings& settings,
                          const std::string& path) {
    const results::CResultsContent results = content;
    const CPropAnalyzer analyzer = settings.Analyzer;
    const CPropRecordPlate plate = settings.RecordPlate;
    workbook::CResultsExport writer;
    writer.SetResults(&results);
    writer.SetPropertyAnalyzer(&analyzer);
    writer.SetPropertyRecordPlate(&plate);
    WithoutLock(path, [&] { writer.ExportExcel(path); });
    return TextToPython(writer.GetWriteError());
}

/// Returns the paths of the wells' workbooks that an export to this path writes.
py::list WellWorkbooks(const settings::CSettings& settings, const std::string& path) {
    py::list paths;
    for (const workbook::CWellWorkbook& workbook : workbook::WellWorkbooksOf(settings.RecordPlate, path)) {
        if (workbook.isFileName) paths.append(py::bytes(workbook.path));
    }
    return paths;
}

}  // namespace

void BindResults(py::module_& module) {
    CRecordClass<CResponse>(module, "Response").AddForm();
    CRecordClass<CResponseMean>(module, "ResponseMean").AddForm();
    CRecordClass<CResultsWell>(module, "ResultsWell").AddForm();
    CRecordClass<CResultsRecording>(module, "ResultsRecording").AddForm();
    CRecordClass<CResultsTask>(module, "ResultsTask").AddForm();
    CRecordClass<results::CResultsContent>(module, "ResultsContent")
        .Add("Header", &results::CResultsContent::Header)
        .Add("CompoundID", &CResults::CompoundID)
        .Add("Tasks", &CResults::Tasks)
        .Add("FPAverageSamples", &CResults::FPAverageSamples)
        .Add("FPAverageTick", &CResults::FPAverageTick)
        .Add("FPAveragePreFPfastTime", &CResults::FPAveragePreFPfastTime);
    module.def("read_results", &ReadResults, py::arg("made"), py::arg("path"));
    module.def("write_results", &WriteResults, py::arg("content"), py::arg("path"));
    module.def("well_workbooks", &WellWorkbooks, py::arg("settings"), py::arg("path"));
    module.def("write_workbooks", &WriteWorkbooks, py::arg("content"), py::arg("settings"), py::arg("path"));
}

}  // namespace vxfileio::python
