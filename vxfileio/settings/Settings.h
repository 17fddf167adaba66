#pragma once

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
