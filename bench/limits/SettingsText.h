#pragma once

// The text of a settings file around the data of SettingsTree.h: everything else is default.

#include <string_view>

inline constexpr std::string_view kAhead =
    "<?xml version=\"1.0\" ?><Vexaprobe><Header><HeaderID>OVL Vexaprobe</HeaderID><CompoundName></CompoundName>"
    "<VexaprobeMode>NotDefined</VexaprobeMode><FileType>VXSettings</FileType><ProgramVersion></ProgramVersion>"
    "<FileVersion>3</FileVersion><RecordingDate>0</RecordingDate><RecordingDateString></RecordingDateString>"
    "<FileName></FileName><Guid></Guid></Header><Settings><PropertyControl><VexaprobeMode>NotDefined</VexaprobeMode>"
    "<RobotMode>NotDefined</RobotMode><DataAcqMode>NotDefined</DataAcqMode><SimulationDataFile></SimulationDataFile>"
    "</PropertyControl><PropertyNotebook><ExperimentID></ExperimentID><FileName></FileName><Director></Director>"
    "<Scientist></Scientist><Operator></Operator><Department></Department><Company></Company><StudyDesignator>"
    "</StudyDesignator><Species></Species><Age></Age><Comment></Comment></PropertyNotebook><PropertyRobot>"
    "<RobotSerialNumber>not read</RobotSerialNumber><FirmwareVersion>not read</FirmwareVersion><FirmwareDate>not read"
    "</FirmwareDate><IPAddress></IPAddress><CleanerID>-1</CleanerID><WasteID>-1</WasteID><TroughIDStockDilution>-1"
    "</TroughIDStockDilution><TroughIDWellMedium>-1</TroughIDWellMedium><TroughMediumNames Size=\"0\"/>"
    "<StockPlateIDL8x12> </StockPlateIDL8x12><StockPlateIDL16x6> </StockPlateIDL16x6></PropertyRobot>"
    "<PropertyRecordPlate><Layout>NotDefined</Layout><PlateID> </PlateID><PlateRows>0</PlateRows><PlateColumns>0"
    "</PlateColumns><CompoundID>0</CompoundID><Label></Label><Wells Size=\"";
inline constexpr std::string_view kBehindDoses =
    "</Series></PropertyRecordPlate><PropertyQualityCheck><QualityChecks Size=\"0\"/></PropertyQualityCheck>"
    "<PropertyWashIn><WashIn>0</WashIn></PropertyWashIn><PropertyRecording><DataFormat>0</DataFormat><ADMax>0</ADMax>"
    "<ADMin>0</ADMin><ADZero>0</ADZero><Gain>0</Gain><RecordingTime>0</RecordingTime><Tick>0</Tick><VoltageRange>"
    "</VoltageRange><VoltPerADStep>0.</VoltPerADStep></PropertyRecording><PropertyAnalyzer><Operator></Operator>"
    "<Program></Program><ProgramVersion></ProgramVersion><AnalyzingDate>134400387776908002</AnalyzingDate>"
    "<AnalyzingDateString>2026-11-25 00:06:17</AnalyzingDateString><AnalyzeSettings><Tasks Size=\"4\">";
inline constexpr std::string_view kBehindTasks =
    "</Tasks></AnalyzeSettings><FPAveIntervalType>UserDefined</FPAveIntervalType><FPAveHRDefinedFactor>0."
    "</FPAveHRDefinedFactor><PreFPfastTime>0</PreFPfastTime><FPAverageTime>0</FPAverageTime><FPmaxSearchBegin>50000"
    "</FPmaxSearchBegin><FPmaxSearchEnd>0</FPmaxSearchEnd><FPSlopeInterval>0</FPSlopeInterval><FPfastAutoAdjust>1"
    "</FPfastAutoAdjust><FPfastAutoAdjustFactor>0.</FPfastAutoAdjustFactor><FPfastAutoAdjustTime>0"
    "</FPfastAutoAdjustTime><FPfastAmplitude>0.</FPfastAmplitude><FPfastRiseTimeMin>0</FPfastRiseTimeMin>"
    "<FPfastRiseTimeMax>0</FPfastRiseTimeMax><FPfastSlopeRangeMin>0</FPfastSlopeRangeMin><FPfastSlopeRangeMax>0"
    "</FPfastSlopeRangeMax></PropertyAnalyzer></Settings></Vexaprobe>";
