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
/// The setters come first, in any order, and copy what they are given; what isn't set is written with its defaults.
/// Any number of files can then be written. A file takes the place of an older one only when it is whole: whoever
/// reads finds the old or the new one, and the old one stays if the system refuses a write, which `GetWriteError`
/// tells. Only where no second file can stand beside it is it written in place. One thread at a time.
class VXFILEIO_API CISettingsWriter {
 public:
    CISettingsWriter();
    ~CISettingsWriter();

    CISettingsWriter(const CISettingsWriter&) = delete;
    CISettingsWriter& operator=(const CISettingsWriter&) = delete;

    /// Sets the header. Its `FileType` becomes "VXSettings", whatever it was. Its `FileVersion` should be 3: below
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
    /// wells, replacing a file of that name. The analyzer's date is that of the writing. Throws `CExcVXReader` with
    /// code -1, "Could not open settings file: " and the path, if the file can't be created.
    void WriteFile(const std::string& path);

    /// The same with the compound at that index in the plate's list; the marks are those of the active wells of the
    /// compound with that number as its ID. A caller whose compounds are numbered by their places gets one compound
    /// with its own wells. -1 is the first compound with all active wells. Throws `CExcVXReader`, and touches no file,
    /// if the plate has no compound there.
    void WriteFile(const std::string& path, std::int32_t compound);

    /// Returns an empty text if the last `WriteFile` brought everything to the operating system, else what that refused
    /// first in words: "No space left on device, writing 65536 bytes at 0 of run.vxs".
    std::string GetWriteError() const;

 private:
    std::unique_ptr<vxfileio::settings::CSettingsWriter> m_writer;
};
