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
/// Any number of files can be written. A file replaces an older one only when it is complete: readers find the old or
/// the new one. If a write fails, the old one stays and `GetWriteError` says why. Only if the folder takes no second
/// file is the old one overwritten in place. Needs external synchronization.
class VXFILEIO_API CIResultsWriter {
 public:
    CIResultsWriter();
    ~CIResultsWriter();

    CIResultsWriter(const CIResultsWriter&) = delete;
    CIResultsWriter& operator=(const CIResultsWriter&) = delete;

    /// Sets the header, which is copied. Its `FileType` is replaced by "VXResults". Without a call the header has its
    /// defaults.
    void SetXmlFileHeader(const CXmlFileHeader& header);

    /// Writes the file, replacing one of that name. Keeps no reference to the results. Throws `CExcVXReader` with code
    /// -1, "Could not open results file: " and the path, if the file can't be created.
    void WriteFile(const std::string& path, const CResults& results);

    /// Returns an empty text if the last `WriteFile` passed everything to the operating system, otherwise a description
    /// of the first failure: "No space left on device, writing 65536 bytes at 0 of run.vxr". Also reports texts that
    /// were cut at a NUL.
    std::string GetWriteError() const;

 private:
    std::unique_ptr<vxfileio::results::CResultsWriter> m_writer;
};
