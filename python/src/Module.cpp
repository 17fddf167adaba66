#include <pybind11/pybind11.h>

#include "python/src/Call.h"
#include "python/src/Convert.h"
#include "python/src/Parts.h"
#include "vxfileio/base/FileMarks.h"
#include "vxfileio/rawdata/RawDataErrors.h"
#include "vxfileio/xmlarchive/DocumentKinds.h"

namespace vxfileio::python {

void BindWords(py::module_& module) {
    MakeWords<enTask>(module, "Task");
    MakeWords<enResponseType>(module, "ResponseType");
    MakeWords<enAnalysisMark>(module, "AnalysisMark");
    MakeWords<enFPmaxType>(module, "FPmaxType");
    MakeWords<enPipetMode>(module, "PipetMode");
    MakeWords<enPlateLayout>(module, "PlateLayout");
    MakeWords<enAcqMode>(module, "AcqMode");
    MakeWords<enVexaprobeMode>(module, "VexaprobeMode");
    MakeWords<enFPAveIntervalType>(module, "FPAveIntervalType");
}

/// The texts of failures that `vxfileio._errors` raises as exceptions of their own.
void BindTexts(py::module_& module) {
    py::dict texts;
    texts["CannotOpen"] = rawdata::kCannotOpen;
    texts["Exists"] = rawdata::kExists;
    texts["NotOurFile"] = rawdata::kNotOurFile;
    texts["EmptyFile"] = rawdata::kEmptyFile;
    texts["BadRecordingHdr"] = rawdata::kBadRecordingHdr;
    texts["BadSegmentPosition"] = rawdata::kBadSegmentPosition;
    texts["BadSegmentHdr"] = rawdata::kBadSegmentHdr;
    texts["NoSuchRecording"] = rawdata::kNoSuchRecording;
    texts["Unfinished"] = rawdata::kUnfinished;
    module.attr("_texts") = texts;
}

/// The bytes that files of a kind begin with, and the root of documents.
void BindMarks(py::module_& module) {
    py::dict marks;
    marks["raw"] = py::bytes(base::kRawDataMark);
    marks["workbook"] = py::bytes(base::kCompoundMark);
    marks["root"] = py::bytes(std::string(xmlarchive::kRootElement));
    module.attr("_marks") = marks;
}

/// The kinds of documents: name, tag of the section, file type of the header.
void BindDocumentKinds(py::module_& module) {
    py::list kinds;
    for (const auto& kind : xmlarchive::kDocumentKinds)
        kinds.append(py::make_tuple(kind.name, kind.section, kind.fileType));
    module.attr("_document_kinds") = kinds;
}

}  // namespace vxfileio::python

PYBIND11_MODULE(_vxfileio, module) {
    using namespace vxfileio::python;
    module.doc() = "The binding of the C++ library. Use it through the package vxfileio.";
    module.attr("_records") = py::list();
    BindTexts(module);
    BindMarks(module);
    BindDocumentKinds(module);
    BindWords(module);
    BindRawHeaders(module);
    BindRawReading(module);
    BindRawWriting(module);
    BindSettings(module);
    BindResults(module);
    BindTables(module);
}
