#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <sstream>
#include <string>

#include "tests/reference/Twin.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/TempFolder.h"

// The reference files of settings and results are made by make_xml.py and read by read_xml.py, both without the
// library. The library must read the same content from each of them, and write the two files in its own form byte for
// byte.

namespace {

/// Collects the lines of one object, named as in the file.
class CLines {
 public:
    explicit CLines(const char* name) : m_lines(std::string(name) + "\n") {}

    CLines& Add(const char* tag, const auto& value) {
        m_lines += FieldLine(tag, value);
        return *this;
    }
    CLines& Add(const char* tag, char value) { return Add(tag, std::string(1, value)); }
    /// Adds a line for each value. `tags` are separated by blanks.
    CLines& AddAll(const std::string& tags, const auto&... values) {
        std::istringstream names(tags);
        std::string tag;
        ((names >> tag, Add(tag.c_str(), values)), ...);
        EXPECT_FALSE(names.fail() || names >> tag) << "as many tags as values";
        return *this;
    }
    CLines& Begin(const char* tag) {
        m_lines += std::string("  ") + tag + "\n";
        return *this;
    }
    CLines& Item(const std::string& text) {
        m_lines += "    " + text + "\n";
        return *this;
    }
    operator std::string() const { return m_lines; }

 private:
    std::string m_lines;
};

/// Has a name for every member of these classes. With one more member this doesn't compile: add a name, and a tag with
/// its value to `Lines`.
[[maybe_unused]] void NameEveryMember(const CXmlFileHeader& header, const CPropControl& control,
                                      const CPropNotebook& notebook, const CPropRobot& robot, const CPropWashIn& washIn,
                                      const CPropRecording& recording, const CPropAnalyzer& analyzer,
                                      const WellAnalysis& mark, const QualityCheckRecord& check, const PlateWell& place,
                                      const CResultsWell& well, const CResponse& response, const CResponseMean& mean,
                                      const CResultsRecording& results, const CResultsTask& task) {
    [[maybe_unused]] const auto& [h1, h2, h3, h4, h5, h6, h7, h8, h9, h10] = header;
    [[maybe_unused]] const auto& [c1, c2, c3, c4] = control;
    [[maybe_unused]] const auto& [n1, n2, n3, n4, n5, n6, n7, n8, n9, n10, n11, n12] = notebook;
    [[maybe_unused]] const auto& [b1, b2, b3, b4] = robot;
    [[maybe_unused]] const auto& [i1] = washIn;
    [[maybe_unused]] const auto& [r1, r2, r3, r4, r5, r6, r7, r8, r9] = recording;
    [[maybe_unused]] const auto& [a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15, a16, a17, a18, a19,
                                  a20] = analyzer;
    [[maybe_unused]] const auto& [k1, k2] = mark;
    [[maybe_unused]] const auto& [q1, q2, q3, q4, q5, q6, q7, q8, q9, q10, q11, q12, q13, q14, q15, q16, q17, q18, q19,
                                  q20, q21, q22, q23, q24] = check;
    [[maybe_unused]] const auto& [p1, p2, p3, p4, p5, p6] = place;
    [[maybe_unused]] const auto& [w1, w2, w3, w4, w5, w6, w7, w8, w9, w10, w11, w12, w13, w14, w15, w16, w17, w18,
                                  w19] = well;
    [[maybe_unused]] const auto& [s1, s2] = response;
    [[maybe_unused]] const auto& [m1, m2, m3, m4] = mean;
    [[maybe_unused]] const auto& [t1, t2, t3] = results;
    [[maybe_unused]] const auto& [x1, x2] = task;
}

std::string Lines(const CXmlFileHeader& h) {
    return CLines("Header").AddAll(
        "HeaderID CompoundName VexaprobeMode FileType ProgramVersion FileVersion RecordingDate RecordingDateString "
        "FileName Guid",
        h.HeaderID, h.CompoundName, h.VexaprobeMode, h.FileType, h.ProgramVersion, h.FileVersion, h.RecordingDate,
        h.RecordingDateString, h.FileName, h.Guid);
}

std::string Lines(const CPropControl& p) {
    return CLines("PropertyControl")
        .AddAll("VexaprobeMode RobotMode DataAcqMode SimulationDataFile", VexaprobeModeToString(p.VexaprobeMode),
                AcqModeToString(p.RobotMode), AcqModeToString(p.DataAcqMode), p.SimulationDataFile);
}

std::string Lines(const CPropNotebook& p) {
    return CLines("PropertyNotebook")
        .AddAll(
            "ExperimentID FileName Director Scientist Operator Department Company StudyDesignator Species Age Comment",
            p.ExperimentID, p.FileName, p.Director, p.Scientist, p.Operator, p.Department, p.Company, p.StudyDesignator,
            p.Species, p.Age, p.Comment);
}

std::string Lines(const CPropRobot& p) {
    return CLines("PropertyRobot")
        .AddAll(
            "RobotSerialNumber FirmwareVersion FirmwareDate IPAddress CleanerID WasteID TroughIDStockDilution "
            "TroughIDWellMedium TroughMediumNames StockPlateIDL8x12 StockPlateIDL16x6",
            p.RobotSerialNumber, p.FirmwareVersion, p.FirmwareDate, p.RobotConfig.IPAddress, p.RobotConfig.CleanerID,
            p.RobotConfig.WasteID, p.RobotConfig.TroughIDStockDilution, p.RobotConfig.TroughIDWellMedium,
            p.RobotConfig.TroughMediumNames, p.RobotConfig.StockPlateIDL8x12, p.RobotConfig.StockPlateIDL16x6);
}

std::string Lines(const CPropRecordPlate& p) {
    const PlateCompound& compound = *p.Data.Compounds.at(0);
    CLines lines("PropertyRecordPlate");
    lines
        .AddAll("Layout PlateID PlateRows PlateColumns CompoundID Label", PlateLayoutToString(p.Data.Layout),
                p.Data.PlateID, p.Data.PlateRows, p.Data.PlateColumns, compound.CompoundID, compound.Label)
        .Begin("Wells");
    EXPECT_EQ(p.GetAllWellIDs(), compound.Wells);
    for (const auto& w : p.Data.Wells)
        lines.Item("WellID " + Show(w->WellID) + ", ChID " + Show(w->ChID) + ", Label " + Show(w->Label) +
                   ", PlateColumn " + Show(w->PlateColumn) + ", PlateRow " + Show(w->PlateRow) + ", State " +
                   Show(w->State));
    return lines.Add("PipetMode", PipetModeToString(p.Data.PipetMode)).Add("Series", p.Data.Series);
}

std::string Lines(const CPropWashIn& p) { return CLines("PropertyWashIn").Add("WashIn", p.WashIn); }

std::string Lines(const CPropRecording& p) {
    return CLines("PropertyRecording")
        .AddAll("DataFormat ADMax ADMin ADZero Gain RecordingTime Tick VoltageRange VoltPerADStep", p.DataFormat,
                p.ADMax, p.ADMin, p.ADZero, p.Gain, p.RecordingTime, p.Tick, p.VoltageRange, p.VoltPerADStep);
}

void AddMarks(CLines& lines, const CPropAnalyzer& p) {
    lines.Begin("AnalyzeSettings");
    for (const auto& [task, recordings] : p.AnalyzeSettings) {
        lines.Item(TaskToString(task) + ": " + Show(recordings.size()) + " recordings");
        for (std::size_t number = 0; number < recordings.size(); ++number) {
            for (const auto& [id, well] : recordings[number]) {
                std::string line = TaskToString(task) + " " + Show(number) + " well " + Show(id) + ": Analyze " +
                                   Show(static_cast<int>(well.Analyze));
                for (const auto& [response, mark] : well.Responses)
                    line += " " + ResponseTypeToString(response) + " " + AnalysisMarkToString(mark);
                lines.Item(line);
            }
        }
    }
}

std::string Lines(const CPropAnalyzer& p) {
    CLines lines("PropertyAnalyzer");
    lines.AddAll("Operator Program ProgramVersion AnalyzingDate", p.Operator, p.Program, p.ProgramVersion,
                 p.AnalyzingDate);
    AddMarks(lines, p);
    return lines.AddAll(
        "FPAveIntervalType FPAveHRDefinedFactor PreFPfastTime FPAverageTime FPmaxSearchBegin FPmaxSearchEnd "
        "FPSlopeInterval FPfastAutoAdjust FPfastAutoAdjustFactor FPfastAutoAdjustTime FPfastAmplitude "
        "FPfastRiseTimeMin FPfastRiseTimeMax FPfastSlopeRangeMin FPfastSlopeRangeMax",
        CPropAnalyzer::FPAveIntervalTypeToString(p.FPAveIntervalType), p.FPAveHRDefinedFactor, p.PreFPfastTime,
        p.FPAverageTime, p.FPmaxSearchBegin, p.FPmaxSearchEnd, p.FPSlopeInterval, p.FPfastAutoAdjust,
        p.FPfastAutoAdjustFactor, p.FPfastAutoAdjustTime, p.FPfastAmplitude, p.FPfastRiseTimeMin, p.FPfastRiseTimeMax,
        p.FPfastSlopeRangeMin, p.FPfastSlopeRangeMax);
}

std::string Lines(const QualityCheckRecord& r) {
    return CLines("QC").AddAll(
        "TaskName EnableQC QCPerformed CompoundName CompoundDose Series CompoundStockDose CompoundPlateID "
        "CompoundPlateCol WashInWait RecordingTime WashOutCycles WashOutTroughID WashOutWait ApplyQC QCResponse "
        "PerformCompoundQC CompoundQCEffect CompoundQCComparison CompoundQCEffectValue PerformWashOutQC "
        "WashOutQCEffect WashOutQCComparison WashOutQCEffectValue",
        r.TaskName, r.EnableQC, r.QCPerformed, r.CompoundName, r.CompoundDose, r.Series, r.CompoundStockDose,
        r.CompoundPlateID, r.CompoundPlateCol, r.WashInWait, r.RecordingTime, r.WashOutCycles, r.WashOutTroughID,
        r.WashOutWait, r.ApplyQC, ResponseTypeToString(r.QCResponse), r.PerformCompoundQC, r.CompoundQCEffect,
        r.CompoundQCComparison, r.CompoundQCEffectValue, r.PerformWashOutQC, r.WashOutQCEffect, r.WashOutQCComparison,
        r.WashOutQCEffectValue);
}

std::string Lines(const CISettingsReader& reader) {
    std::string lines = Lines(*reader.GetXmlFileHeader()) + Lines(*reader.GetControlProperty()) +
                        Lines(*reader.GetNotebookProperty()) + Lines(*reader.GetRobotProperty()) +
                        Lines(*reader.GetRecordPlateProperty()) + Lines(*reader.GetWashInProperty()) +
                        Lines(*reader.GetRecordingProperty()) + Lines(*reader.GetAnalyzerProperty());
    for (const auto& [task, check] : reader.GetQualityCheckProperty()->QualityChecks) {
        EXPECT_EQ(TaskToString(task), check.TaskName);
        lines += Lines(check);
    }
    return lines;
}

template <class Responses>
void AddResponses(CLines& lines, const char* tag, const Responses& responses, auto show) {
    lines.Begin(tag);
    for (const auto& [type, response] : responses) {
        EXPECT_EQ(ResponseTypeToString(type), response.Label);
        lines.Item("Label " + Show(response.Label) + ", " + show(response));
    }
}

std::string Lines(std::int32_t id, const CResultsWell& w) {
    CLines lines("Well");
    lines.AddAll(
        "WellID WellLabel Dose FPfastDetectionTimes AverageCount AveragePreFPfastTime AverageTick Average "
        "FPfastDetected FPfastMaxAmp FPfastMaxAmpTimeStamp FPfastMinAmp FPfastMinAmpTimeStamp FPfastSlopeX0 "
        "FPfastSlopeY0 FPfastSlopeX1 FPfastSlopeY1 FPmaxType",
        id, w.WellLabel, w.Dose, w.FPfastDetectionTimes, w.AverageCount, w.AveragePreFPfastTime, w.AverageTick,
        w.Average, w.FPfastDetected, w.FPfastMaxAmp, w.FPfastMaxAmpTimeStamp, w.FPfastMinAmp, w.FPfastMinAmpTimeStamp,
        w.FPfastSlopeX0, w.FPfastSlopeY0, w.FPfastSlopeX1, w.FPfastSlopeY1, FPmaxTypeToString(w.FPmaxType));
    const auto show = [](const CResponse& response) { return "Value " + Show(response.Value); };
    AddResponses(lines, "Responses", w.Responses, show);
    AddResponses(lines, "NormalizedResponses", w.NormalizedResponses, show);
    return lines;
}

std::string Lines(const CIResultsReader& reader) {
    std::string lines = Lines(*reader.GetXmlFileHeader());
    for (const auto& [key, task] : reader.GetResults()->Tasks) {
        EXPECT_EQ(TaskToString(key), task.TaskName);
        lines += "Task " + Show(task.TaskName) + "\n";
        for (const auto& recording : task.Recordings) {
            CLines fields("Recording");
            fields.Add("Dose", recording.Dose);
            AddResponses(fields, "NormalizedResponses", recording.NormalizedResponses, [](const CResponseMean& mean) {
                return "normMean " + Show(mean.normMean) + ", normStdDev " + Show(mean.normStdDev) + ", Samples " +
                       Show(mean.Samples);
            });
            lines += fields;
            for (const auto& [id, well] : recording.Wells)
                lines += Lines(id, well);
        }
    }
    return lines;
}

/// Reads each file twice with the same reader, so that nothing of the first time must be left.
void ExpectTwins() {
    for (const std::string name :
         {"settings", "settings_indented", "settings_shuffled", "settings_sections", "settings_version_2"}) {
        CVXFileIO io;
        for (int round = 1; round <= 2; ++round) {
            io.GetSettingsReader()->ReadFile(ReferencePath("xml/" + name + ".vxs"));
            EXPECT_EQ(Lines(*io.GetSettingsReader()), ReadAll(ReferencePath("xml/" + name + ".txt"))) << name << round;
        }
    }
    for (const std::string name : {"results", "results_indented", "results_shuffled", "results_sections"}) {
        CVXFileIO io;
        for (int round = 1; round <= 2; ++round) {
            io.GetResultsReader()->ReadFile(ReferencePath("xml/" + name + ".vxr"));
            EXPECT_EQ(Lines(*io.GetResultsReader()), ReadAll(ReferencePath("xml/" + name + ".txt"))) << name << round;
        }
    }
}

TEST(XmlFilesTest, EveryFileReadsAsItsTwinStates) { ExpectTwins(); }

/// Returns the bytes with this date of saving, which otherwise is the current time.
std::string WithDate(std::string bytes, const std::string& number, const std::string& text) {
    const std::string tag = "<AnalyzingDate>";
    const std::string textTag = "</AnalyzingDate><AnalyzingDateString>";
    const std::size_t at = bytes.find(tag) + tag.size();
    bytes.replace(at, number.size(), number);
    EXPECT_EQ(bytes.substr(at + number.size(), textTag.size()), textTag);
    bytes.replace(at + number.size() + textTag.size(), text.size(), text);
    return bytes;
}

void ExpectSameBytes() {
    const CTempFolder folder;
    CVXFileIO io;
    CISettingsReader& read = *io.GetSettingsReader();
    read.ReadFile(ReferencePath("xml/settings.vxs"));
    CISettingsWriter& writer = *io.GetSettingsWriter();
    writer.SetXmlFileHeader(*read.GetXmlFileHeader());
    writer.SetControlProperty(*read.GetControlProperty());
    writer.SetNotebookProperty(*read.GetNotebookProperty());
    writer.SetRobotProperty(*read.GetRobotProperty());
    writer.SetRecordPlateProperty(*read.GetRecordPlateProperty());
    writer.SetQualityCheckProperty(*read.GetQualityCheckProperty());
    writer.SetWashInProperty(*read.GetWashInProperty());
    writer.SetRecordingProperty(*read.GetRecordingProperty());
    writer.SetAnalyzerProperty(*read.GetAnalyzerProperty());
    for (int twice = 0; twice < 2; ++twice) {
        writer.WriteFile(folder.Path("a.vxs"));
        EXPECT_EQ(WithDate(ReadAll(folder.Path("a.vxs")), "133512191990000000", "2024-01-31 23:59:59"),
                  ReadAll(ReferencePath("xml/settings.vxs")));
    }
    io.GetResultsReader()->ReadFile(ReferencePath("xml/results.vxr"));
    io.GetResultsWriter()->SetXmlFileHeader(*io.GetResultsReader()->GetXmlFileHeader());
    io.GetResultsWriter()->WriteFile(folder.Path("a.vxr"), *io.GetResultsReader()->GetResults());
    EXPECT_EQ(ReadAll(folder.Path("a.vxr")), ReadAll(ReferencePath("xml/results.vxr")));
}

TEST(XmlFilesTest, ContentIsWrittenBackUnchanged) { ExpectSameBytes(); }

TEST(XmlFilesTest, ALocaleWithADecimalCommaHasNoEffect) {
    const CCommaLocale comma;
    ExpectTwins();
    ExpectSameBytes();
}

}  // namespace
