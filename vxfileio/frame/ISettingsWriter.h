#pragma once

#include <cstdint>
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
#include "vxfileio/settings/PropWashIn.h"
#include "vxfileio/settings/XmlFileHeader.h"

namespace vxfileio::settings {
class CSettingsWriter;
}

/// Writes settings files (`.vxs`): how a run was set up, as one XML document.
///
/// Call the setters first, in any order. They copy their arguments; what isn't set is written with its defaults. Any
/// number of files can then be written. A file replaces an older one only when it is complete: readers find the old or
/// the new one. If a write fails, the old one stays and `GetWriteError` says why. Only if the folder takes no second
/// file is the old one overwritten in place. Needs external synchronization.
class VXFILEIO_API CISettingsWriter {
 public:
    CISettingsWriter();
    ~CISettingsWriter();

    CISettingsWriter(const CISettingsWriter&) = delete;
    CISettingsWriter& operator=(const CISettingsWriter&) = delete;

    /// Sets the header. Its `FileType` is replaced by "VXSettings". Its `FileVersion` should be 3: below
    /// that, a reader makes up the marks of "Series" itself.
    void SetXmlFileHeader(const CXmlFileHeader& header);
    void SetControlProperty(const CPropControl& property);            ///< Sets how the system is driven.
    void SetNotebookProperty(const CPropNotebook& property);          ///< Sets the notebook.
    void SetRobotProperty(const CPropRobot& property);                ///< Sets the robot.
    void SetRecordPlateProperty(const CPropRecordPlate& property);    ///< Sets the record plate.
    void SetQualityCheckProperty(const CPropQualityCheck& property);  ///< Sets the quality checks.
    void SetWashInProperty(const CPropWashIn& property);              ///< Sets the wash-in.
    void SetRecordingProperty(const CPropRecording& property);        ///< Sets how signals are recorded.
    void SetAnalyzerProperty(const CPropAnalyzer& property);          ///< Sets how they are analysed.

    /// Writes the file with the plate's first compound (a default one if it has none) and the marks of its active
    /// wells, replacing a file of that name. Sets the analyzer's date to the current time. Throws `CExcVXReader` with
    /// code -1, "Could not open settings file: " and the path, if the file can't be created.
    void WriteFile(const std::string& path);

    /// The same with the compound at index `compound` of the plate's list, and the marks of the active wells of the
    /// compound whose ID is `compound`. If compounds are numbered by their index, that is one compound with its own
    /// wells. -1 means the first compound with all active wells. Throws `CExcVXReader`, and touches no file, if the
    /// plate has no compound at this index.
    void WriteFile(const std::string& path, std::int32_t compound);

    /// Returns an empty text if the last `WriteFile` passed everything to the operating system, otherwise a description
    /// of the first failure: "No space left on device, writing 65536 bytes at 0 of run.vxs". Also reports texts that
    /// were cut at a NUL.
    std::string GetWriteError() const;

 private:
    std::unique_ptr<vxfileio::settings::CSettingsWriter> m_writer;
};
