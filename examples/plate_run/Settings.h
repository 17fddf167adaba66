#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <string>

#include "PlatePlan.h"

/// Everything that a settings file holds: how a run is set up.
struct CRunSettings {
    CXmlFileHeader header;
    CPropControl control;
    CPropNotebook notebook;
    CPropRobot robot;
    CPropRecordPlate recordPlate;
    CPropQualityCheck qualityCheck;
    CPropWashIn washIn;
    CPropRecording recording;
    CPropAnalyzer analyzer;
};

/// Returns the settings of a run that goes by this plan. `signalFile` is the name of the file that the wells play.
CRunSettings MakeSettings(const CPlatePlan& plan, const std::string& signalFile);

/// Returns the header of a settings or results file of this run.
CXmlFileHeader MakeXmlFileHeader(const CPlatePlan& plan, const std::string& fileName);
