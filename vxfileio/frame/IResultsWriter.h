#pragma once

#include <memory>
#include <string>

#include "vxfileio/base/Api.h"
#include "vxfileio/results/Results.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::results {
class CResultsWriter;
}

/// Writes results files (`.vxr`): the results of one compound, as one XML document.
///
/// Any number of files can be written. One takes the place of an older file only when it is whole: whoever reads finds
/// the old or the new one, and the old one stays if the system refuses a write, which `GetWriteError` tells. Only where
/// no second file can stand beside it is it written in place. One thread at a time.
class VXFILEIO_API CIResultsWriter {
 public:
    CIResultsWriter();
    ~CIResultsWriter();

    CIResultsWriter(const CIResultsWriter&) = delete;
    CIResultsWriter& operator=(const CIResultsWriter&) = delete;

    /// Sets the header, which is copied. Its `FileType` becomes "VXResults", whatever it was. Without a call the header
    /// has its defaults.
    void SetXmlFileHeader(const CXmlFileHeader& header);

    /// Writes the file, replacing one of that name. The results aren't kept. Throws `CExcVXReader` with code -1, "Could
    /// not open results file: " and the path, if the file can't be created.
    void WriteFile(const std::string& path, const CResults& results);

    /// Returns an empty text if the last `WriteFile` brought everything to the operating system, else what that refused
    /// first in words: "No space left on device, writing 65536 bytes at 0 of run.vxr".
    std::string GetWriteError() const;

 private:
    std::unique_ptr<vxfileio::results::CResultsWriter> m_writer;
};
