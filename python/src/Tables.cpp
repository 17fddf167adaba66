#include <pybind11/numpy.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <variant>
#include <vector>

#include "python/src/Convert.h"
#include "python/src/Parts.h"
#include "vxfileio/helpers/PrintableText.h"
#include "vxfileio/results/ResultsColumns.h"
#include "vxfileio/results/ResultsContent.h"
#include "vxfileio/settings/Settings.h"

/// @file
/// The tables of results, as arrays by the names of their columns.

namespace vxfileio::python {

namespace {

using settings::CSettings;

/// Returns texts as an array of objects. Equal ones, which are the same bytes in memory, share one object.
py::array TextArray(const std::vector<std::string_view>& texts) {
    py::array array(py::dtype("O"), static_cast<py::ssize_t>(texts.size()));
    auto* to = static_cast<PyObject**>(array.mutable_data());
    std::unordered_map<const char*, py::object> made;
    for (const std::string_view text : texts) {
        py::object& object = made[text.data()];
        if (!object) object = TextToPython(text);
        *to++ = object.inc_ref().ptr();
    }
    return array;
}

py::array ArrayOf(const results::CResultsColumn& column) {
    return std::visit(
        []<class Value>(const std::vector<Value>& values) -> py::array {
            if constexpr (std::is_same_v<Value, std::string_view>) {
                return TextArray(values);
            } else if constexpr (std::is_same_v<Value, std::uint8_t>) {
                return py::array(py::dtype::of<bool>(), static_cast<py::ssize_t>(values.size()), values.data());
            } else {
                return py::array_t<Value>(static_cast<py::ssize_t>(values.size()), values.data());
            }
        },
        column.values);
}

/// Returns the columns of a table, which is named as for `vxfile table`. A whole number that is missing is the least.
py::dict ResultsTable(const results::CResultsContent& results, const std::string& name, const CSettings* settings) {
    results::CRowOptions options{.textOf = [](std::string_view bytes) { return std::string(bytes); }};
    if (settings != nullptr) {
        options.plate = &settings->RecordPlate;
        options.analyzer = &settings->Analyzer;
    }
    const results::CResultsColumns table(results, results::ResultsTableOf(name).value(), options);
    py::dict columns;
    for (const results::CResultsColumn& column : table.Columns())
        columns[py::str(std::string(column.column.name))] = ArrayOf(column);
    return columns;
}

/// Takes any whole number, also one of NumPy. A raw data header may have a dose below 0.
std::string DoseText(const py::object& number) {
    const auto dose = py::reinterpret_steal<py::object>(PyNumber_Index(number.ptr()));
    if (!dose) throw py::error_already_set();
    if (dose < py::int_(0)) return std::string(py::str(dose)) + " pM";
    return helpers::DoseWithUnit(FromPython<std::uint64_t>(dose));
}

}  // namespace

void BindTables(py::module_& module) {
    module.def("results_table", &ResultsTable, py::arg("results"), py::arg("name"), py::arg("settings").none(true));
    module.def("dose_text", &DoseText, py::arg("dose"),
               "Returns a dose of picomolar in the largest unit that needs no fraction, such as \"10 nM\".");
}

}  // namespace vxfileio::python
