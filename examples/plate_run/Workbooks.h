#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <string>
#include <vector>

/// Exports results, with the settings of their run, to workbooks: one at `path`, and one next to it for each new well
/// of the plate. Returns all their paths.
std::vector<std::string> ExportWorkbooks(CIResultsExport& exporter, const CISettingsReader& settings,
                                         const CResults& results, const std::string& path);
