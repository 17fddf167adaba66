#pragma once

#include <string>
#include <vector>

namespace vxfile {

/// Returns the results files among paths: files are taken as they are, folders are searched with their subfolders.
std::vector<std::string> ResultsIn(const std::vector<std::string>& paths);

/// Makes a page for each results file, with the files beside it that are of its run, and an index of all, in `folder`.
/// A page whose files haven't changed since the index was made stays, unless it was deleted. Reports what fails to
/// standard error and goes on. Returns the exit status. Throws `CFailure` if the folder can't be made, or has pages or
/// an index that aren't of an earlier report, unless `replace` is set.
int ReportOnFolder(const std::vector<std::string>& results, const std::string& folder, bool replace);

}  // namespace vxfile
