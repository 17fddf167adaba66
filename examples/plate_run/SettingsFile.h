#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <string>

#include "Settings.h"

/// Writes a settings file.
void WriteSettings(CISettingsWriter& writer, const CRunSettings& settings, const std::string& path);

/// Reads a settings file, whose content stays in the reader, and compares it with what was set. Throws `CDifference` at
/// the first property set that differs.
void CheckSettings(CISettingsReader& reader, const CRunSettings& settings, const std::string& path);
