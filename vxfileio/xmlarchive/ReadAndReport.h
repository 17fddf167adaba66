#pragma once

#include <string>

#include "vxfileio/base/VXExceptions.h"

namespace vxfileio::xmlarchive {

/// Reads a settings or results file with the library's reader. Returns what was wrong with it, or an empty text. This
/// includes a dose too large to be shown with a unit, for which the reader throws after it has read all of an older
/// settings file. Throws `CExcVXReader` if the file can't be opened.
template <class CReader>
[[nodiscard]] std::string ReadAndReport(CReader& reader, const std::string& path) {
    try {
        reader.ReadFile(path);
    } catch (const base::CExcConversion&) {  // the reader names the dose
    }
    return reader.GetReadError();
}

}  // namespace vxfileio::xmlarchive
