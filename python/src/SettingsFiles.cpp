#include "vxfileio/settings/Settings.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "python/src/Call.h"
#include "python/src/Parts.h"
#include "python/src/Records.h"
#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/settings/forms/SettingsForm.h"
#include "vxfileio/xmlarchive/ReadAndReport.h"

namespace vxfileio::python {

namespace {

using settings::CSettings;

void BindRobot(py::module_& module) {
    CRecordClass<CRobotPlate>(module, "RobotPlate").Add("ID", &CRobotPlate::ID).Add("Values", &CRobotPlate::Values);
    CRecordClass<CRobotConfig>(module, "RobotConfig")
        .AddPartOf<CPropRobot>()
        .Add("Range", &CRobotConfig::Range)
        .Add("Dilutor", &CRobotConfig::Dilutor)
        .Add("RecordPlate", &CRobotConfig::RecordPlate)
        .Add("Cleaners", &CRobotConfig::Cleaners)
        .Add("Wastes", &CRobotConfig::Wastes)
        .Add("Troughs", &CRobotConfig::Troughs)
        .Add("StockPlates", &CRobotConfig::StockPlates);
    CRecordClass<CPropRobot>(module, "PropRobot").AddForm().Add("RobotConfig", &CPropRobot::RobotConfig);
}

void BindPlate(py::module_& module) {
    CRecordClass<PlateMap>(module, "PlateMap")
        .Add("ChIDs", &PlateMap::ChIDs)
        .Add("Labels", &PlateMap::Labels)
        .Add("RowLabels", &PlateMap::RowLabels)
        .Add("ColumnLabels", &PlateMap::ColumnLabels);
    CRecordClass<PlateWell>(module, "PlateWell").AddForm();
    CRecordClass<PlateCompound>(module, "PlateCompound").AddForm();
    CRecordClass<PlateData>(module, "PlateData").AddPartOf<CPropRecordPlate>().Add("Layout", &PlateData::Layout);
    CRecordClass<CPropRecordPlate>(module, "PropRecordPlate")
        .Add("Map", &CPropRecordPlate::Map)
        .Add("Data", &CPropRecordPlate::Data)
        .Class()
        .def(
            "BuildPlateMap", [](CPropRecordPlate& plate) { plate.BuildPlateMap(plate.Data.Layout); },
            "Fills `Map` for the layout in `Data`. Does nothing for a layout without a map.");
}

void BindAnalyzer(py::module_& module) {
    CRecordClass<WellAnalysis>(module, "WellAnalysis").AddForm<settings::CMarkedWellForm>();
    CRecordClass<CPropAnalyzer>(module, "PropAnalyzer").AddForm();
}

void BindContent(py::module_& module) {
    CRecordClass<CSettings> content(module, "SettingsContent");
    content.Add("Header", &CSettings::Header);
    xmlarchive::ForEachField(settings::CSettingsForm::kFields, [&](const auto& section) {
        std::string_view name = section.tag;
        name.remove_prefix(std::string_view("Property").size());
        content.Add(name, section.member);
    });
    content.Add("Viability", &CSettings::Viability);
}

/// Makes an object of a Python class with the content of a file. Returns it, and what is wrong with the document.
py::tuple ReadSettings(const py::object& made, const std::string& path) {
    const auto reader = std::make_shared<settings::CSettingsReader>();
    const std::string damage = Interruptible(path, [reader, path] { return xmlarchive::ReadAndReport(*reader, path); });
    py::object content = made();
    content.cast<CSettings&>() = reader->Get();
    return py::make_tuple(content, TextToPython(damage));
}

/// Returns the error of the system, or an empty text.
py::object WriteSettings(const CSettings& content, const std::string& path, std::int32_t compound) {
    settings::CSettingsWriter writer;
    writer.Content() = content;
    writer.SetXmlFileHeader(content.Header);
    WithoutLock(path, [&] { writer.WriteFile(path, compound); });
    return TextToPython(writer.GetWriteError());
}

}  // namespace

void BindSettings(py::module_& module) {
    CRecordClass<CXmlFileHeader>(module, "XmlFileHeader").AddForm();
    CRecordClass<CPropControl>(module, "PropControl").AddForm();
    CRecordClass<CPropNotebook>(module, "PropNotebook").AddForm().Add("Reserved", &CPropNotebook::Reserved);
    CRecordClass<QualityCheckRecord>(module, "QualityCheckRecord").AddForm();
    CRecordClass<CPropQualityCheck>(module, "PropQualityCheck").AddForm();
    CRecordClass<CPropWashIn>(module, "PropWashIn").AddForm();
    CRecordClass<CPropRecording>(module, "PropRecording").AddForm();
    CRecordClass<CPropViability>(module, "PropViability").AddForm();
    CRecordClass<CPropResultsExport>(module, "PropResultsExport").AddForm();
    BindRobot(module);
    BindPlate(module);
    BindAnalyzer(module);
    BindContent(module);
    module.def("read_settings", &ReadSettings, py::arg("made"), py::arg("path"));
    module.def("write_settings", &WriteSettings, py::arg("content"), py::arg("path"), py::arg("compound"));
}

}  // namespace vxfileio::python
