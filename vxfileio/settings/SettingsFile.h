#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "vxfileio/settings/Settings.h"

namespace vxfileio::settings {

/// Returns a sentence about the dose with this number in the plate's series, for which `DoseToText` throws.
std::string DoseWithoutText(std::size_t number, std::uint64_t dose);

/// The implementation of `CISettingsReader`, which documents the operations.
class CSettingsReader {
 public:
    void ReadFile(const std::string& path);
    const CSettings& Get() const noexcept { return m_settings; }
    const std::string& GetReadError() const noexcept { return m_readError; }

 private:
    void MakeMarks();
    std::size_t CountDoses();

    CSettings m_settings;
    std::string m_readError;
};

/// The implementation of `CISettingsWriter`, which documents the operations.
class CSettingsWriter {
 public:
    /// The content of the files to be written.
    CSettings& Content() noexcept { return m_settings; }
    void SetXmlFileHeader(const CXmlFileHeader& header);
    void WriteFile(const std::string& path, std::int32_t compound);
    const std::string& GetWriteError() const noexcept { return m_writeError; }

 private:
    CSettings m_settings;
    std::string m_writeError;
};

}  // namespace vxfileio::settings
