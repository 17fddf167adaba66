#pragma once

#include <memory>
#include <string>

#include "vxfileio/base/Api.h"
#include "vxfileio/settings/PropAnalyzer.h"
#include "vxfileio/settings/PropControl.h"
#include "vxfileio/settings/PropNotebook.h"
#include "vxfileio/settings/PropQualityCheck.h"
#include "vxfileio/settings/PropRecordPlate.h"
#include "vxfileio/settings/PropRecording.h"
#include "vxfileio/settings/PropRobot.h"
#include "vxfileio/settings/PropViability.h"
#include "vxfileio/settings/PropWashIn.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::settings {
class CSettingsReader;
}

/// Reads settings files (`.vxs`).
///
/// `ReadFile` first, then the getters. Their pointers are never null, belong to the reader and live as long; what they
/// point at changes with the next `ReadFile`, which reads over what is there: what a file doesn't hold stays as it was.
/// One thread at a time.
class VXFILEIO_API CISettingsReader {
 public:
    CISettingsReader();
    ~CISettingsReader();

    CISettingsReader(const CISettingsReader&) = delete;
    CISettingsReader& operator=(const CISettingsReader&) = delete;

    /// Reads a file. Its sections may stand in any order, and those that aren't known are passed over. A file that is
    /// damaged, or is none of ours, is read as far as it makes sense, and nothing is said about it. Where the
    /// header's `FileVersion` is below 3, the task "Series" gets default marks for all active wells and doses, in place
    /// of any that the file has. Throws `CExcVXReader` with code -1, "Could not open settings file: " and the path, if
    /// the file can't be opened; and below version 3 what `DoseToText` throws for a dose without text, all else being
    /// read.
    void ReadFile(const std::string& path);

    const CXmlFileHeader* GetXmlFileHeader() const;    ///< Returns the header.
    const CPropControl* GetControlProperty() const;    ///< Returns how the system is driven.
    const CPropNotebook* GetNotebookProperty() const;  ///< Returns the notebook.
    const CPropRecordPlate* GetRecordPlateProperty()
        const;                                           ///< Returns the record plate, with one compound and its wells.
    const CPropRecording* GetRecordingProperty() const;  ///< Returns how signals are recorded.
    const CPropQualityCheck* GetQualityCheckProperty() const;  ///< Returns the quality checks.
    const CPropViability* GetViabilityProperty()
        const;  ///< Returns the viability test; no settings file holds it, so these are its defaults.
    const CPropAnalyzer* GetAnalyzerProperty() const;  ///< Returns how signals are analysed.
    const CPropRobot* GetRobotProperty() const;        ///< Returns the robot.
    const CPropWashIn* GetWashInProperty() const;      ///< Returns the wash-in.

 private:
    std::unique_ptr<vxfileio::settings::CSettingsReader> m_reader;
};
