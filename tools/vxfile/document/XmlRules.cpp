#include "tools/vxfile/document/XmlRules.h"

#include "vxfileio/base/EnumerationWords.h"

using vxfileio::base::kWords;

namespace vxfile {

namespace {

using enum EXmlKind;
using CRule = CXmlRule;

template <class Enumeration>
constexpr CRule WordRule(std::string_view tag, EXmlKind kind = Word) {
    return {.tag = tag, .kind = kind, .words = kWords<Enumeration>.words};
}

constexpr CRule kHeader[] = {
    {"HeaderID"},           {"CompoundName"},          {"VexaprobeMode"},       {"FileType"}, {"ProgramVersion"},
    {"FileVersion", Int32}, {"RecordingDate", UInt64}, {"RecordingDateString"}, {"FileName"}, {"Guid"},
};

// ---- Settings -------------------------------------------------------------------------------------------------------

constexpr CRule kControl[] = {
    WordRule<enVexaprobeMode>("VexaprobeMode"),
    WordRule<enAcqMode>("RobotMode"),
    WordRule<enAcqMode>("DataAcqMode"),
    {"SimulationDataFile"},
};

constexpr CRule kNotebook[] = {
    {"ExperimentID"}, {"FileName"},        {"Director"}, {"Scientist"}, {"Operator"}, {"Department"},
    {"Company"},      {"StudyDesignator"}, {"Species"},  {"Age"},       {"Comment"},
};

constexpr CRule kMediumName[] = {{"MediumName"}};

constexpr CRule kRobot[] = {
    {"RobotSerialNumber"},
    {"FirmwareVersion"},
    {"FirmwareDate"},
    {"IPAddress"},
    {"CleanerID", Int32},
    {"WasteID", Int32},
    {"TroughIDStockDilution", Int32},
    {"TroughIDWellMedium", Int32},
    {"TroughMediumNames", List, kMediumName},
    {"StockPlateIDL8x12", Character},
    {"StockPlateIDL16x6", Character},
};

constexpr CRule kPlateWell[] = {
    {"WellID", Int32}, {"ChID", Int32}, {"Label"}, {"PlateColumn", Int32}, {"PlateRow", Int32}, {"State", Int32},
};
constexpr CRule kPlateWells[] = {{"Well", Object, kPlateWell}};
constexpr CRule kDose[] = {{"Dose", UInt64}};

constexpr CRule kRecordPlate[] = {
    WordRule<enPlateLayout>("Layout"),
    {"PlateID", Character},
    {"PlateRows", Int32},
    {"PlateColumns", Int32},
    {"CompoundID", Int32},
    {"Label"},
    {"Wells", List, kPlateWells},
    WordRule<enPipetMode>("PipetMode"),
    {"Series", List, kDose},
};

constexpr CRule kCompoundID[] = {{"CompoundID", Int32}};

constexpr CRule kCheck[] = {
    {"TaskName"},
    {"EnableQC", Bool},
    {"QCPerformed", List, kCompoundID},
    {"CompoundName"},
    {"CompoundDose", UInt64},
    {"Series", List, kDose},
    {"CompoundStockDose", UInt64},
    {"CompoundPlateID", Character},
    {"CompoundPlateCol", Int32},
    {"WashInWait", Int64},
    {"RecordingTime", Int64},
    {"WashOutCycles", Int32},
    {"WashOutTroughID", Int32},
    {"WashOutWait", Int64},
    {"ApplyQC", Bool},
    WordRule<enResponseType>("QCResponse"),
    {"PerformCompoundQC", Bool},
    {"CompoundQCEffect"},
    {"CompoundQCComparison"},
    {"CompoundQCEffectValue", Int32},
    {"PerformWashOutQC", Bool},
    {"WashOutQCEffect"},
    {"WashOutQCComparison"},
    {"WashOutQCEffectValue", Int32},
};
constexpr CRule kChecks[] = {{"QC", Object, kCheck}};
constexpr CRule kQualityCheck[] = {{"QualityChecks", List, kChecks}};

constexpr CRule kWashIn[] = {{"WashIn", Int64}};

constexpr CRule kRecordingProperty[] = {
    {"DataFormat", UInt32},   {"ADMax", UInt16}, {"ADMin", UInt16}, {"ADZero", UInt16},        {"Gain", UInt32},
    {"RecordingTime", Int64}, {"Tick", Int64},   {"VoltageRange"},  {"VoltPerADStep", Double},
};

constexpr CRule kMarks[] = {
    WordRule<enAnalysisMark>("Na-Amplitude"),
    WordRule<enAnalysisMark>("Na-Slope"),
    WordRule<enAnalysisMark>("QT-Interval"),
};
constexpr CRule kMarkedWell[] = {{"WellID", Int32}, {"Analyze", Bool}, {"Responses", List, kMarks}};
constexpr CRule kMarkedWells[] = {{"Well", Object, kMarkedWell}};
constexpr CRule kMarkedRecording[] = {{"Recording", Int32}, {"Wells", List, kMarkedWells}};
constexpr CRule kMarkedRecordings[] = {{"Recording", Object, kMarkedRecording}};
constexpr CRule kMarkedTask[] = {WordRule<enTask>("TaskName", NoWord), {"Recordings", List, kMarkedRecordings}};
constexpr CRule kMarkedTasks[] = {{"Task", Object, kMarkedTask}};
constexpr CRule kAnalyzeSettings[] = {{"Tasks", List, kMarkedTasks}};

constexpr CRule kAnalyzer[] = {
    {"Operator"},
    {"Program"},
    {"ProgramVersion"},
    {"AnalyzingDate", UInt64},
    {"AnalyzingDateString"},
    {"AnalyzeSettings", Object, kAnalyzeSettings},
    WordRule<enFPAveIntervalType>("FPAveIntervalType"),
    {"FPAveHRDefinedFactor", Double},
    {"PreFPfastTime", Int64},
    {"FPAverageTime", Int64},
    {"FPmaxSearchBegin", Int64},
    {"FPmaxSearchEnd", Int64},
    {"FPSlopeInterval", Int64},
    {"FPfastAutoAdjust", Bool},
    {"FPfastAutoAdjustFactor", Double},
    {"FPfastAutoAdjustTime", Int64},
    {"FPfastAmplitude", Double},
    {"FPfastRiseTimeMin", Int64},
    {"FPfastRiseTimeMax", Int64},
    {"FPfastSlopeRangeMin", Int32},
    {"FPfastSlopeRangeMax", Int32},
};

constexpr CRule kSettings[] = {
    {"PropertyControl", Object, kControl},
    {"PropertyNotebook", Object, kNotebook},
    {"PropertyRobot", Object, kRobot},
    {"PropertyRecordPlate", Object, kRecordPlate},
    {"PropertyQualityCheck", Object, kQualityCheck},
    {"PropertyWashIn", Object, kWashIn},
    {"PropertyRecording", Object, kRecordingProperty},
    {"PropertyAnalyzer", Object, kAnalyzer},
};

constexpr CRule kSettingsRoot[] = {{"Header", Object, kHeader}, {"Settings", Object, kSettings}};

// ---- Results --------------------------------------------------------------------------------------------------------

constexpr CRule kResponse[] = {{"Label"}, {"Value", Double}};
constexpr CRule kResponses[] = {{"Response", Object, kResponse}};
constexpr CRule kMean[] = {{"Label"}, {"normMean", Double}, {"normStdDev", Double}, {"Samples", UInt32}};
constexpr CRule kMeans[] = {{"Response", Object, kMean}};
constexpr CRule kTime[] = {{"Time", Int64}};
constexpr CRule kAverage[] = {{"Ave", Samples}};

constexpr CRule kWell[] = {
    {"WellID", Int32},
    {"WellLabel"},
    {"Dose", UInt64},
    {"FPfastDetectionTimes", List, kTime},
    {"AverageCount", UInt32},
    {"AveragePreFPfastTime", Int64},
    {"AverageTick", Int64},
    {"Average", List, kAverage},
    {"FPfastDetected", Bool},
    {"FPfastMaxAmp", FoundDouble},
    {"FPfastMaxAmpTimeStamp", FoundInt64},
    {"FPfastMinAmp", FoundDouble},
    {"FPfastMinAmpTimeStamp", FoundInt64},
    {"FPfastSlopeX0", FoundDouble},
    {"FPfastSlopeY0", FoundDouble},
    {"FPfastSlopeX1", FoundDouble},
    {"FPfastSlopeY1", FoundDouble},
    WordRule<enFPmaxType>("FPmaxType"),
    {"Responses", List, kResponses},
    {"NormalizedResponses", List, kResponses},
};
constexpr std::size_t kHeadOfWell = 4;  // a well without detection times has no more
constexpr CRule kWells[] = {{.tag = "Well", .kind = Object, .children = kWell, .enough = kHeadOfWell}};
constexpr CRule kRecording[] = {{"Dose", UInt64}, {"NormalizedResponses", List, kMeans}, {"Wells", List, kWells}};
constexpr CRule kRecordings[] = {{"Recording", Object, kRecording}};
constexpr CRule kTask[] = {{"TaskName"}, {"Recordings", List, kRecordings}};
constexpr CRule kTasks[] = {{"Task", Object, kTask}};

constexpr CRule kResultsRoot[] = {{"Header", Object, kHeader}, {"Results", Entries, kTasks}};

}  // namespace

const std::span<const CXmlRule> kSettingsRules = kSettingsRoot;
const std::span<const CXmlRule> kResultsRules = kResultsRoot;

}  // namespace vxfile
