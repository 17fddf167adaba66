#pragma once

#include <string>

namespace vxfile {

/// Returns all bytes of a file. Throws `CFailure` if it can't be opened.
std::string ReadWholeText(const std::string& path);

}  // namespace vxfile
