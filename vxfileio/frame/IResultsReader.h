#pragma once

#include <memory>
#include <string>

#include "vxfileio/base/Api.h"
#include "vxfileio/results/Results.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::results {
class CResultsReader;
}

/// Reads results files (`.vxr`).
///
/// Call `ReadFile` first, then the getters. Their pointers are never null and are valid as long as the reader, which
/// owns the objects. The next `ReadFile` changes the objects: header fields and tasks that the new file doesn't hold
/// stay as they were. Needs external synchronization.
class VXFILEIO_API CIResultsReader {
 public:
    CIResultsReader();
    ~CIResultsReader();

    CIResultsReader(const CIResultsReader&) = delete;
    CIResultsReader& operator=(const CIResultsReader&) = delete;

    /// Reads a file. A damaged file, or one of another kind, is read as far as possible; `GetReadError` then
    /// says so. Throws `CExcVXReader` with code -1, "Could not open results file: " and the path, if the file can't be
    /// opened.
    void ReadFile(const std::string& path);

    /// Returns an empty text if the last `ReadFile` found what it expected, otherwise sentences that say what was
    /// wrong: another kind of file, an end inside an element, lists whose `Size` isn't the number of their entries,
    /// values that couldn't be read. Of each kind of fault, names the first with the path of its element and its
    /// offset, and counts the others. Elements that are missing, repeated, unknown or in another order are no fault.
    [[nodiscard]] std::string GetReadError() const;

    /// Returns the results. A file holds neither the compound ID nor the values of `CResults::SetFPAverage`; the
    /// compound's name is in the header.
    const CResults* GetResults() const noexcept;

    /// Returns the header.
    const CXmlFileHeader* GetXmlFileHeader() const noexcept;

 private:
    std::unique_ptr<vxfileio::results::CResultsReader> m_reader;
};
