#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <string>

#include "PlatePlan.h"

/// The content of a settings file: how a run is set up.
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

/// Returns the settings of a run with this plan. `signalFile` is the name of the recorded signal that the wells play.
CRunSettings MakeSettings(const CPlatePlan& plan, const std::string& signalFile);

/// Returns the header of a settings or results file of this run.
CXmlFileHeader MakeXmlFileHeader(const CPlatePlan& plan, const std::string& fileName);
