#pragma once

#include <string>

#include "vxfileio/base/VXExceptions.h"

namespace vxfile {

/// Reads a settings or results file by the library's reader. Returns what was wrong with it, or an empty text. A dose
/// that has no text, which ends the reader's work on files of older versions, is part of that. Throws `CExcVXReader` if
/// the file can't be opened.
template <class CReader>
[[nodiscard]] std::string ReadDocument(CReader& reader, const std::string& path) {
    try {
        reader.ReadFile(path);
    } catch (const vxfileio::base::CExcConversion&) {  // the reader names the dose
    }
    return reader.GetReadError();
}

}  // namespace vxfile
