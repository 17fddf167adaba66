#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <string>
#include <vector>

/// Exports results, with the settings of their run, to workbooks: one at `path`, and one beside it for each well that
/// the plate has as new. Returns the paths of all.
std::vector<std::string> ExportWorkbooks(CIResultsExport& exporter, const CISettingsReader& settings,
                                         const CResults& results, const std::string& path);
