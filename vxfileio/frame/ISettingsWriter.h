#pragma once

#include "vxfileio/frame/Api.h"

/// The writer of settings files.
///
/// It has no operations yet; its accessor in `CVXFileIO` stands.
class VXFILEIO_API CISettingsWriter {
 public:
    CISettingsWriter();
    ~CISettingsWriter();

    CISettingsWriter(const CISettingsWriter&) = delete;
    CISettingsWriter& operator=(const CISettingsWriter&) = delete;
};
