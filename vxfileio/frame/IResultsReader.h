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
/// `ReadFile` first, then the getters. Their pointers are never null, belong to the reader and live as long; what they
/// point at changes with the next `ReadFile`, which reads over what is there: header fields and tasks that a file
/// doesn't hold stay as they were. One thread at a time.
class VXFILEIO_API CIResultsReader {
 public:
    CIResultsReader();
    ~CIResultsReader();

    CIResultsReader(const CIResultsReader&) = delete;
    CIResultsReader& operator=(const CIResultsReader&) = delete;

    /// Reads a file. One that is damaged, or is none of ours, is read as far as it makes sense, and nothing is said
    /// about it. Throws `CExcVXReader` with code -1, "Could not open results file: " and the path, if the file can't be
    /// opened.
    void ReadFile(const std::string& path);

    /// Returns the results. A file holds no compound ID and nothing that was given to `CResults::SetFPAverage`; the
    /// compound's name is in the header.
    const CResults* GetResults() const;

    /// Returns the header.
    const CXmlFileHeader* GetXmlFileHeader() const;

 private:
    std::unique_ptr<vxfileio::results::CResultsReader> m_reader;
};
