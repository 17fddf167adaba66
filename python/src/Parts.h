#pragma once

#include <pybind11/pybind11.h>

/// @file
/// The parts of the module, one source each.

namespace vxfileio::python {

void BindWords(pybind11::module_& module);       ///< The enumerations.
void BindRawHeaders(pybind11::module_& module);  ///< The headers of raw data files.
void BindRawReading(pybind11::module_& module);  ///< Bulk access.
void BindRawWriting(pybind11::module_& module);  ///< The writer of raw data files.
void BindSettings(pybind11::module_& module);    ///< The property sets, settings files.
void BindResults(pybind11::module_& module);     ///< The tree of results, results files, workbooks.
void BindTables(pybind11::module_& module);      ///< The columns of tables of results.

}  // namespace vxfileio::python
