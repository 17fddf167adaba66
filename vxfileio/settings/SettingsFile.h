#pragma once

#include <cstdint>
#include <string>

#include "vxfileio/settings/Settings.h"

namespace vxfileio::settings {

/// The implementation of `CISettingsReader`, which documents the operations.
class CSettingsReader {
 public:
    void ReadFile(const std::string& path);
    const CSettings& Get() const noexcept { return m_settings; }

 private:
    void MakeMarks();

    CSettings m_settings;
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
