#include "SettingsFile.h"

#include <algorithm>
#include <memory>
#include <tuple>
#include <vector>

#include "Difference.h"
#include "XmlHeaderCheck.h"

// The library's value types have no comparison operators. Each function below lists the members that a settings file
// stores.

static auto Stored(const CPropControl& p) {
    return std::tie(p.VexaprobeMode, p.RobotMode, p.DataAcqMode, p.SimulationDataFile);
}

static auto Stored(const CPropNotebook& p) {
    return std::tie(p.ExperimentID, p.FileName, p.Director, p.Scientist, p.Operator, p.Department, p.Company,
                    p.StudyDesignator, p.Species, p.Age, p.Comment);
}

static auto Stored(const CPropRobot& p) {
    const CRobotConfig& c = p.RobotConfig;
    return std::tie(p.RobotSerialNumber, p.FirmwareVersion, p.FirmwareDate, c.TroughMediumNames, c.IPAddress,
                    c.CleanerID, c.WasteID, c.TroughIDStockDilution, c.TroughIDWellMedium, c.StockPlateIDL8x12,
                    c.StockPlateIDL16x6);
}

static auto Stored(const PlateWell& w) {
    return std::tie(w.WellID, w.Label, w.ChID, w.PlateColumn, w.PlateRow, w.State);
}

static auto Stored(const PlateCompound& c) { return std::tie(c.Label, c.Wells, c.CompoundID); }

/// Without compounds and wells.
static auto Stored(const CPropRecordPlate& p) {
    return std::tie(p.Map.ChIDs, p.Map.Labels, p.Map.RowLabels, p.Map.ColumnLabels, p.Data.PlateID, p.Data.Layout,
                    p.Data.PipetMode, p.Data.Series, p.Data.PlateRows, p.Data.PlateColumns);
}

static auto Stored(const QualityCheckRecord& r) {
    return std::tie(r.EnableQC, r.QCPerformed, r.TaskName, r.CompoundName, r.CompoundDose, r.CompoundStockDose,
                    r.CompoundPlateID, r.CompoundPlateCol, r.Series, r.WashInWait, r.RecordingTime, r.WashOutWait,
                    r.WashOutCycles, r.WashOutTroughID, r.ApplyQC, r.QCResponse, r.PerformCompoundQC,
                    r.CompoundQCEffect, r.CompoundQCComparison, r.CompoundQCEffectValue, r.PerformWashOutQC,
                    r.WashOutQCEffect, r.WashOutQCComparison, r.WashOutQCEffectValue);
}

static auto Stored(const CPropWashIn& p) { return std::tie(p.WashIn); }

static auto Stored(const CPropRecording& p) {
    return std::tie(p.Gain, p.DataFormat, p.ADZero, p.ADMax, p.ADMin, p.VoltPerADStep, p.VoltageRange, p.Tick,
                    p.RecordingTime);
}

static auto Stored(const WellAnalysis& w) { return std::tie(w.Responses, w.Analyze); }

/// Without the date, which is set when the file is written.
static auto Stored(const CPropAnalyzer& p) {
    return std::tie(p.Operator, p.Program, p.ProgramVersion, p.FPAveIntervalType, p.FPAveHRDefinedFactor,
                    p.AnalyzeSettings, p.PreFPfastTime, p.FPAverageTime, p.FPmaxSearchBegin, p.FPmaxSearchEnd,
                    p.FPSlopeInterval, p.FPfastAmplitude, p.FPfastAutoAdjust, p.FPfastAutoAdjustFactor,
                    p.FPfastAutoAdjustTime, p.FPfastRiseTimeMin, p.FPfastRiseTimeMax, p.FPfastSlopeRangeMin,
                    p.FPfastSlopeRangeMax);
}

static bool operator==(const QualityCheckRecord& a, const QualityCheckRecord& b) { return Stored(a) == Stored(b); }
static bool operator==(const WellAnalysis& a, const WellAnalysis& b) { return Stored(a) == Stored(b); }

namespace {

template <class Property>
void ExpectSame(const std::string& what, const Property& read, const Property& set) {
    Expect(Stored(read) == Stored(set), what + " of the settings");
}

/// The same for lists of owned objects.
template <class Record>
void ExpectSame(const std::string& what, const std::vector<std::unique_ptr<Record>>& read,
                const std::vector<std::unique_ptr<Record>>& set) {
    const auto isSame = [](const auto& a, const auto& b) { return Stored(*a) == Stored(*b); };
    Expect(std::ranges::equal(read, set, isSame), what + " of the settings");
}

}  // namespace

void WriteSettings(CISettingsWriter& writer, const CRunSettings& settings, const std::string& path) {
    writer.SetXmlFileHeader(settings.header);
    writer.SetControlProperty(settings.control);
    writer.SetNotebookProperty(settings.notebook);
    writer.SetRobotProperty(settings.robot);
    writer.SetRecordPlateProperty(settings.recordPlate);
    writer.SetQualityCheckProperty(settings.qualityCheck);
    writer.SetWashInProperty(settings.washIn);
    writer.SetRecordingProperty(settings.recording);
    writer.SetAnalyzerProperty(settings.analyzer);
    writer.WriteFile(path);
}

void CheckSettings(CISettingsReader& reader, const CRunSettings& settings, const std::string& path) {
    reader.ReadFile(path);
    CheckXmlHeader(*reader.GetXmlFileHeader(), settings.header, "VXSettings");
    const CPropRecordPlate& plate = *reader.GetRecordPlateProperty();
    ExpectSame("The control", *reader.GetControlProperty(), settings.control);
    ExpectSame("The notebook", *reader.GetNotebookProperty(), settings.notebook);
    ExpectSame("The robot", *reader.GetRobotProperty(), settings.robot);
    ExpectSame("The record plate", plate, settings.recordPlate);
    ExpectSame("The list of compounds", plate.Data.Compounds, settings.recordPlate.Data.Compounds);
    ExpectSame("The list of wells", plate.Data.Wells, settings.recordPlate.Data.Wells);
    Expect(reader.GetQualityCheckProperty()->QualityChecks == settings.qualityCheck.QualityChecks,
           "The quality check of the settings");
    ExpectSame("The wash-in", *reader.GetWashInProperty(), settings.washIn);
    ExpectSame("The recording", *reader.GetRecordingProperty(), settings.recording);
    ExpectSame("The analyzer", *reader.GetAnalyzerProperty(), settings.analyzer);
}
