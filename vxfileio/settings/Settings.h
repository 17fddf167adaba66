#pragma once

#include <cstdint>

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

/// The first version whose files have the analyzer's marks. They are generated for older files.
inline constexpr std::int32_t kFirstVersionWithMarks = 3;

/// The content of a settings file.
struct CSettings {
    CXmlFileHeader Header;
    CPropControl Control;
    CPropNotebook Notebook;
    CPropRobot Robot;
    CPropRecordPlate RecordPlate;
    CPropQualityCheck QualityCheck;
    CPropWashIn WashIn;
    CPropRecording Recording;
    CPropAnalyzer Analyzer;
    CPropViability Viability;  ///< No settings file holds it.
};

}  // namespace vxfileio::settings
