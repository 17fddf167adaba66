#include "Settings.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

namespace {

/// The export writes a workbook for each well in the state set by `AddWell`. Two of them are enough here.
bool HasOwnWorkbook(const CPlatePlan& plan, const CWell& well) {
    return well.id == plan.wells.front().id || well.id == plan.wells.back().id;
}

constexpr std::int32_t kMediumTrough = 0;
constexpr std::int32_t kStockTrough = 1;
constexpr char kStockPlate = 'S';
constexpr std::int64_t kWashIn = 20'000'000;  // 20 s

/// Converts milliseconds to a time that is a multiple of the sample interval, so that averages start on a sample.
constexpr std::int64_t Milliseconds(std::int64_t count) { return count * 1000 / kTick * kTick; }

std::vector<std::uint64_t> SeriesOf(const CPlatePlan& plan, enTask task) {
    std::vector<std::uint64_t> series;
    for (const std::int64_t dose : DosesOf(plan, task))
        series.push_back(static_cast<std::uint64_t>(dose));
    return series;
}

CPropControl MakeControl(const std::string& signalFile) {
    CPropControl control;
    control.VexaprobeMode = enVexaprobeMode::Tecan;
    control.RobotMode = enAcqMode::Simulation;
    control.DataAcqMode = enAcqMode::Simulation;
    control.SimulationDataFile = signalFile;
    return control;
}

CPropNotebook MakeNotebook(const CPlatePlan& plan) {
    CPropNotebook notebook;
    notebook.ExperimentID = "E-0001";
    notebook.FileName = "plate";
    notebook.Director = "A. Director";
    notebook.Scientist = "B. Scientist";
    notebook.Operator = "C. Operator";
    notebook.Department = "Cardiac safety";
    notebook.Company = "Example Ltd";
    notebook.StudyDesignator = plan.compoundName + " on plate " + plan.plateID;
    notebook.Species = "Human";
    notebook.Age = "Adult";
    notebook.Comment = "Every well plays the same recorded heart; C2 has no signal, E3 is noisy";
    return notebook;
}

CPropRobot MakeRobot() {
    CPropRobot robot;
    robot.FirmwareVersion = "2.10";
    robot.FirmwareDate = "2023-06-01";
    robot.RobotSerialNumber = "R-0042";
    robot.RobotConfig.TroughMediumNames = {"Well medium", "Stock medium"};
    robot.RobotConfig.IPAddress = "192.0.2.10";
    robot.RobotConfig.CleanerID = 0;
    robot.RobotConfig.WasteID = 0;
    robot.RobotConfig.TroughIDStockDilution = kStockTrough;
    robot.RobotConfig.TroughIDWellMedium = kMediumTrough;
    robot.RobotConfig.StockPlateIDL8x12 = kStockPlate;
    robot.RobotConfig.StockPlateIDL16x6 = kStockPlate;
    return robot;
}

/// One compound, in all wells. (Volumes and the compound's place on the stock plate aren't in a settings file.)
CPropRecordPlate MakeRecordPlate(const CPlatePlan& plan) {
    CPropRecordPlate plate;
    plate.BuildPlateMap(kLayout);
    plate.Data.PlateID = plan.plateID.front();  // the robot identifies a plate by one letter
    plate.Data.Layout = kLayout;
    plate.Data.PlateRows = static_cast<std::int32_t>(plate.Map.RowLabels.size());
    plate.Data.PlateColumns = static_cast<std::int32_t>(plate.Map.ColumnLabels.size());
    plate.Data.PipetMode = enPipetMode::Fast;
    plate.Data.Series = SeriesOf(plan, enTask::Series);
    for (const CWell& well : plan.wells) {
        plate.Data.AddWell(well.id, well.row, well.column, well.id, well.label);
        if (!HasOwnWorkbook(plan, well)) plate.SetWellState(well.id, PlateWell::kActive);
    }

    plate.Data.ResetCompounds(1);
    plate.Data.Compounds.front() =
        std::make_unique<PlateCompound>(PlateCompound{plan.compoundName, WellIDsOf(plan), plan.compoundID});
    return plate;
}

/// Returns the check of one task. It uses the amplitude: a working compound lowers it, and washing out restores it.
QualityCheckRecord MakeCheck(const CPlatePlan& plan, enTask task) {
    QualityCheckRecord check;
    check.EnableQC = true;
    check.QCPerformed = {plan.compoundID};
    check.TaskName = TaskToString(task);
    check.CompoundName = task == enTask::CompoundTest ? "Known compound" : "";
    check.Series = SeriesOf(plan, task);
    check.CompoundDose = check.Series.back();
    check.CompoundStockDose = 1000 * check.CompoundDose;
    check.CompoundPlateID = kStockPlate;
    check.CompoundPlateCol = 11;
    check.WashInWait = kWashIn;
    check.RecordingTime = plan.SamplesPerWell() * kTick;
    check.WashOutWait = kWashIn;
    check.WashOutCycles = 3;
    check.WashOutTroughID = kMediumTrough;
    check.ApplyQC = true;
    check.QCResponse = enResponseType::NaAmplitude;
    check.PerformCompoundQC = task == enTask::CompoundTest;
    check.CompoundQCEffect = "Decrease";
    check.CompoundQCComparison = "MoreThan";
    check.CompoundQCEffectValue = 50;
    check.PerformWashOutQC = task == enTask::CompoundTest;
    check.WashOutQCEffect = "Increase";
    check.WashOutQCComparison = "MoreThan";
    check.WashOutQCEffectValue = 80;
    return check;
}

CPropQualityCheck MakeQualityCheck(const CPlatePlan& plan) {
    CPropQualityCheck qualityCheck;
    for (const enTask task : {enTask::PreQC, enTask::CompoundTest, enTask::PostQC})
        qualityCheck.QualityChecks[task] = MakeCheck(plan, task);
    return qualityCheck;
}

CPropWashIn MakeWashIn() {
    CPropWashIn washIn;
    washIn.WashIn = kWashIn;
    return washIn;
}

CPropRecording MakeRecording(const CPlatePlan& plan) {
    CPropRecording recording;
    recording.Gain = 1000;
    recording.DataFormat = 16;
    recording.ADZero = static_cast<std::uint16_t>(kADZero);
    recording.ADMax = std::numeric_limits<std::uint16_t>::max();
    recording.ADMin = 0;
    recording.VoltPerADStep = kMillivoltPerAD / 1000;
    recording.VoltageRange = "\xB1 10.24 mV";  // plus-minus sign in Latin-1
    recording.Tick = kTick;
    recording.RecordingTime = plan.SamplesPerWell() * kTick;
    return recording;
}

/// Sets how beats are found and averaged. A real application also uses the fields that the analysis in this example
/// ignores: averages by heart rate, the minimum rise time and the range of slopes.
void SetParameters(CPropAnalyzer& analyzer) {
    analyzer.FPAveIntervalType = enFPAveIntervalType::UserDefined;
    analyzer.FPAveHRDefinedFactor = 0.5;
    analyzer.PreFPfastTime = Milliseconds(150);
    analyzer.FPAverageTime = Milliseconds(600);
    analyzer.FPmaxSearchBegin = Milliseconds(160);
    analyzer.FPmaxSearchEnd = Milliseconds(400);
    analyzer.FPSlopeInterval = Milliseconds(12);
    analyzer.FPfastAmplitude = 0.15e-3;
    analyzer.FPfastAutoAdjust = true;
    analyzer.FPfastAutoAdjustFactor = 0.4;
    analyzer.FPfastAutoAdjustTime = 10'000'000;
    analyzer.FPfastRiseTimeMin = Milliseconds(3);
    analyzer.FPfastRiseTimeMax = Milliseconds(51);
    analyzer.FPfastSlopeRangeMin = 20;
    analyzer.FPfastSlopeRangeMax = 80;
}

/// Excludes all responses of a well.
void Deselect(CPropAnalyzer& analyzer, std::int32_t wellID) {
    for (auto& [task, recordings] : analyzer.AnalyzeSettings) {
        for (RecordingAnalysis& wells : recordings) {
            for (auto& [type, mark] : wells.at(wellID).Responses)
                mark = enAnalysisMark::Deselected;
        }
    }
}

/// All wells count in all recordings, except for the responses of wells that the scientist has deselected.
void SetMarks(CPropAnalyzer& analyzer, const CPlatePlan& plan) {
    const std::vector<std::int32_t> wellIDs = WellIDsOf(plan);
    for (const CRecordingPlan& recording : plan.recordings)
        analyzer.InitTask(recording.task, recording.number, wellIDs);  // the task's last call makes all its recordings
    for (const CWell& well : plan.wells) {
        if (well.isDeselected) Deselect(analyzer, well.id);
    }
}

CPropAnalyzer MakeAnalyzer(const CPlatePlan& plan) {
    CPropAnalyzer analyzer;
    analyzer.Operator = "C. Operator";
    analyzer.Program = "plate_run";
    analyzer.ProgramVersion = "1.0";
    SetParameters(analyzer);
    SetMarks(analyzer, plan);
    return analyzer;
}

}  // namespace

CRunSettings MakeSettings(const CPlatePlan& plan, const std::string& signalFile) {
    return {
        .header = MakeXmlFileHeader(plan, "plate.vxs"),
        .control = MakeControl(signalFile),
        .notebook = MakeNotebook(plan),
        .robot = MakeRobot(),
        .recordPlate = MakeRecordPlate(plan),
        .qualityCheck = MakeQualityCheck(plan),
        .washIn = MakeWashIn(),
        .recording = MakeRecording(plan),
        .analyzer = MakeAnalyzer(plan),
    };
}

CXmlFileHeader MakeXmlFileHeader(const CPlatePlan& plan, const std::string& fileName) {
    CXmlFileHeader header;  // the writer sets `FileType`
    header.CompoundName = plan.compoundName;
    header.VexaprobeMode = VexaprobeModeToString(enVexaprobeMode::Tecan);
    header.ProgramVersion = "1.0";
    header.FileVersion = 3;  // since version 3, a settings file contains the analyzer's marks
    header.RecordingDate = plan.date;
    header.RecordingDateString = plan.dateText;
    header.FileName = fileName;
    header.Guid = plan.guid;
    return header;
}
