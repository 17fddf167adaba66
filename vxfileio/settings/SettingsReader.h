#pragma once

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

}  // namespace vxfileio::settings
