#pragma once

#include <vxfileio/frame/VXFileIO.h>

/// Hands everything that was read from a settings file to a writer.
inline void CopySettings(const CISettingsReader& reader, CISettingsWriter& writer) {
    writer.SetXmlFileHeader(*reader.GetXmlFileHeader());
    writer.SetControlProperty(*reader.GetControlProperty());
    writer.SetNotebookProperty(*reader.GetNotebookProperty());
    writer.SetRobotProperty(*reader.GetRobotProperty());
    writer.SetRecordPlateProperty(*reader.GetRecordPlateProperty());
    writer.SetQualityCheckProperty(*reader.GetQualityCheckProperty());
    writer.SetWashInProperty(*reader.GetWashInProperty());
    writer.SetRecordingProperty(*reader.GetRecordingProperty());
    writer.SetAnalyzerProperty(*reader.GetAnalyzerProperty());
}
