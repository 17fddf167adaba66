#pragma once

#include "vxfileio/frame/Api.h"

/// The reader of settings files.
///
/// It has no operations yet; its accessor in `CVXFileIO` stands.
class VXFILEIO_API CISettingsReader {
 public:
    CISettingsReader();
    ~CISettingsReader();

    CISettingsReader(const CISettingsReader&) = delete;
    CISettingsReader& operator=(const CISettingsReader&) = delete;
};
