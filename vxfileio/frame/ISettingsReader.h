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
/// Call `ReadFile` first, then the getters. Their pointers are never null and are valid as long as the reader, which
/// owns the objects. The next `ReadFile` changes the objects: values that the new file doesn't hold stay as they were.
/// Needs external synchronization.
class VXFILEIO_API CISettingsReader {
 public:
    CISettingsReader();
    ~CISettingsReader();

    CISettingsReader(const CISettingsReader&) = delete;
    CISettingsReader& operator=(const CISettingsReader&) = delete;

    /// Reads a file. Its sections may be in any order; unknown ones are skipped. A damaged file, or one of another
    /// kind, is read as far as possible; `GetReadError` then says so. If the header's `FileVersion` is below 3, the
    /// task "Series" gets default marks for all active wells and doses instead of those in the file, 100,000 at most.
    ///
    /// Throws `CExcVXReader` with code -1, "Could not open settings file: " and the path, if the file can't be opened.
    /// Below version 3, throws what `DoseToText` throws for a dose without a text, after everything else was read.
    void ReadFile(const std::string& path);

    /// Returns an empty text if the last `ReadFile` found what it expected, otherwise sentences that say what was
    /// wrong: another kind of file, an end inside an element, lists whose `Size` isn't the number of their entries,
    /// values that couldn't be read. Of each kind of fault, names the first with the path of its element and its
    /// offset, and counts the others. Elements that are missing, repeated, unknown or in another order are no fault.
    [[nodiscard]] std::string GetReadError() const;

    const CXmlFileHeader* GetXmlFileHeader() const noexcept;    ///< Returns the header.
    const CPropControl* GetControlProperty() const noexcept;    ///< Returns how the system is driven.
    const CPropNotebook* GetNotebookProperty() const noexcept;  ///< Returns the notebook.
    /// Returns the record plate, with one compound and its wells.
    const CPropRecordPlate* GetRecordPlateProperty() const noexcept;
    const CPropRecording* GetRecordingProperty() const noexcept;        ///< Returns how signals are recorded.
    const CPropQualityCheck* GetQualityCheckProperty() const noexcept;  ///< Returns the quality checks.
    /// Returns the viability test with its defaults: no settings file holds it.
    const CPropViability* GetViabilityProperty() const noexcept;
    const CPropAnalyzer* GetAnalyzerProperty() const noexcept;  ///< Returns how signals are analysed.
    const CPropRobot* GetRobotProperty() const noexcept;        ///< Returns the robot.
    const CPropWashIn* GetWashInProperty() const noexcept;      ///< Returns the wash-in.

 private:
    std::unique_ptr<vxfileio::settings::CSettingsReader> m_reader;
};
