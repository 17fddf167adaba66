#pragma once

#include <string>
#include <vector>

namespace vxfile {

/// Returns the results files among paths: files as they are, and those in folders and their subfolders. A
/// file that is named twice is there once.
std::vector<std::string> ResultsIn(const std::vector<std::string>& paths);

/// Writes a page for each results file, with the other files of its run in the same folder, and an index of all pages,
/// to `folder`. Keeps an existing page if its files haven't changed since the index was made. Reports failures on
/// standard error and continues. Returns the exit status. Never replaces one of the results: that page is a failure.
/// Throws `CFailure` if the folder can't be created, if the index would replace one, or if there are pages or an index
/// that aren't from an earlier report and `replace` isn't set.
int ReportOnFolder(const std::vector<std::string>& results, const std::string& folder, bool replace);

}  // namespace vxfile
