#include <limits>
#include <string>
#include <type_traits>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/xmlarchive/ArchiveTest.h"

namespace {

constexpr enResponseType kAmplitude = enResponseType::NaAmplitude;
constexpr enValueType kPlain = enValueType::Plain;
constexpr enValueType kNormalized = enValueType::Normalized;

static_assert(!std::is_polymorphic_v<CResults> && !std::is_polymorphic_v<CResultsWell>);

CResults Tree() {
    CResults results;
    results.SetFPAverage(100, 10, 25);
    results.Init(7, enTask::Series, "Series", {1000, 2000}, {12, 11}, {"B", "A", "extra"});
    results.SetFPAverage(1, 1, 1);
    return results;
}

TEST(ResultsTest, InitCreatesOneRecordingPerDoseAndOneWellPerID) {
    CResults results = Tree();
    EXPECT_EQ(results.GetCompoundID(), 7);
    EXPECT_EQ(results.GetTasks(), std::vector<enTask>{enTask::Series});
    EXPECT_EQ(results.GetRecordingCount(enTask::Series), 2);
    EXPECT_EQ(results.GetWellIDs(enTask::Series, 1), (std::vector<std::int32_t>{11, 12}));
    EXPECT_EQ(results.GetTaskResults(enTask::Series)->TaskName, "Series");
    EXPECT_EQ(results.GetRecording(enTask::Series, 1)->Dose, 2000U);
    CResultsWell* const well = results.GetWellResults(enTask::Series, 1, 11);
    ASSERT_NE(well, nullptr);
    EXPECT_EQ(well->WellLabel, "A");
    EXPECT_EQ(well->Dose, 2000U);
    EXPECT_EQ(well->GetAveSamples(), 100U) << "as set before Init";
    EXPECT_FALSE(well->AverageExist());
    EXPECT_EQ(well->GetAveTimeStamp(0), -15);
    EXPECT_EQ(well->GetAveTimeStamp(3), 15);
    EXPECT_EQ(well->GetAveTimeStamp(std::numeric_limits<std::uint32_t>::max()), -25) << "i + 1 is computed in 32 bits";
    well->AverageTick = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(well->GetAveTimeStamp(1), -2 - 25) << "wraps around";
    well->Average[99] = 1.5;
    EXPECT_EQ(well->GetAveVoltage(99) + well->GetAveVoltage(100), 1.5);

    results.Init(8, enTask::Series, "again", {5}, {1, 1, 2}, {"x", "y"});
    EXPECT_EQ(results.GetCompoundID(), 8);
    EXPECT_EQ(results.GetRecordingCount(enTask::Series), 1);
    EXPECT_EQ(results.GetWellResults(enTask::Series, 0, 1)->WellLabel, "y");
    EXPECT_EQ(results.GetWellResults(enTask::Series, 0, 2)->WellLabel, "");
    EXPECT_EQ(results.GetWellResults(enTask::Series, 0, 2)->GetAveSamples(), 1U);
    results.Clear();
    EXPECT_TRUE(results.GetTasks().empty());
    EXPECT_EQ(results.GetCompoundID(), 8);
    EXPECT_EQ(results.FPAverageTick, 1);
}

TEST(ResultsTest, MissingObjectsAreNullOrEmpty) {
    CResults results = Tree();
    for (const std::int32_t index : {2, -1, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(results.GetRecording(enTask::Series, index), nullptr);
        EXPECT_EQ(results.GetWellResults(enTask::Series, index, 11), nullptr);
        EXPECT_TRUE(results.GetWellIDs(enTask::Series, index).empty());
        results.SetCompoundResults(enTask::Series, index, kAmplitude, 1, 1, 1);
        results.ClearCompoundResults(enTask::Series, index, kAmplitude);
    }
    EXPECT_EQ(results.GetWellResults(enTask::Series, 0, 13), nullptr);
    EXPECT_EQ(results.GetTaskResults(enTask::Nil), nullptr);
    EXPECT_EQ(results.GetRecording(enTask::Nil, 0), nullptr);
    EXPECT_EQ(results.GetRecordingCount(enTask::Nil), 0);
    EXPECT_EQ(results.GetTasks().size(), 1U) << "a query adds nothing";
}

TEST(ResultsTest, ValueTypesHaveSeparateMaps) {
    CResultsWell well;
    EXPECT_EQ(well.GetResults(kAmplitude, kPlain), 0.0);
    EXPECT_FALSE(well.ResultsExist(kAmplitude, kPlain));
    well.SetResults(kAmplitude, kPlain, 1);
    well.SetResults(kAmplitude, kPlain, 2);
    well.SetResults(kAmplitude, kNormalized, 3);
    EXPECT_EQ(well.Responses.size(), 1U);
    EXPECT_EQ(well.GetResults(kAmplitude, kPlain), 2.0);
    EXPECT_EQ(well.GetResults(kAmplitude, kNormalized), 3.0);
    well.SetResults(static_cast<enResponseType>(9), static_cast<enValueType>(2), 4);
    EXPECT_EQ(well.Responses.at(static_cast<enResponseType>(9)).Label, "NotDefined");
    EXPECT_EQ(well.Responses.at(kAmplitude).Label, "Na-Amplitude");
    well.ClearNormalizedResponses();
    EXPECT_FALSE(well.ResultsExist(kAmplitude, kNormalized));
    EXPECT_TRUE(well.ResultsExist(kAmplitude, kPlain));
    well.SetResults(kAmplitude, kNormalized, 3);
    well.ClearResponses();
    EXPECT_TRUE(well.Responses.empty() && well.NormalizedResponses.empty());
    well.FPfastDetectionTimes = {1};
    well.Average = {1};
    well.FPfastSlopeY1 = 1;
    well.Clear();
    EXPECT_TRUE(well.FPfastDetectionTimes.empty() && well.Average.empty() && well.FPfastSlopeY1 == 0);
}

TEST(ResultsTest, StatisticsBelongToTheRecording) {
    CResults results = Tree();
    results.SetCompoundResults(enTask::Series, 1, kAmplitude, 0.25, 0.125, 9);
    CResultsRecording& recording = *results.GetRecording(enTask::Series, 1);
    const CResults copy = results;
    EXPECT_TRUE(recording.ResultsExist(kAmplitude));
    EXPECT_EQ(recording.NormalizedResponses.at(kAmplitude).Label, "Na-Amplitude");
    EXPECT_EQ(recording.NormalizedResponses.at(kAmplitude).Samples, 9U);
    results.ClearCompoundResults(enTask::Series, 1, kAmplitude);
    results.ClearCompoundResults(enTask::Series, 1, kAmplitude);
    EXPECT_FALSE(recording.ResultsExist(kAmplitude));
    EXPECT_TRUE(copy.GetRecording(enTask::Series, 1)->ResultsExist(kAmplitude)) << "a copy is independent";

    results.SetCompoundResults(enTask::Series, 1, kAmplitude, 1, 1, 1);
    results.GetWellResults(enTask::Series, 1, 11)->SetResults(kAmplitude, kPlain, 1);
    recording.ClearResponses();
    EXPECT_FALSE(recording.ResultsExist(kAmplitude));
    EXPECT_TRUE(results.GetWellResults(enTask::Series, 1, 11)->ResultsExist(kAmplitude, kPlain));
    recording.Clear();
    EXPECT_TRUE(recording.Wells.empty() && recording.Dose == 0);
    results.GetTaskResults(enTask::Series)->Clear();
    EXPECT_EQ(results.GetTaskResults(enTask::Series)->TaskName, "Series");
    const CResults& itself = results;
    results = itself;
    EXPECT_EQ(results.GetTasks().size(), 1U);
}

/// Results files and parts of their documents.
class ResultsFileTest : public CArchiveTest {
 protected:
    CResults Loaded(const std::string& tasks, CResults results = {}) {
        Read("<V><Results>" + tasks + "</Results></V>", [&](CXmlFileArchive& archive) { results.Load(archive); });
        return results;
    }

    /// Loads a well with these elements after `WellID`.
    CResultsWell LoadedWell(const std::string& children) {
        CResults results = Loaded(
            "<Task><TaskName>Series</TaskName><Recordings Size=\"1\"><Recording><Wells Size=\"1\"><Well>"
            "<WellID>5</WellID>" +
            children + "</Well></Wells><Dose>77</Dose></Recording></Recordings></Task>");
        EXPECT_EQ(results.GetRecording(enTask::Series, 0)->Dose, 77U) << "what follows is still read";
        return *results.GetWellResults(enTask::Series, 0, 5);
    }
};

TEST_F(ResultsFileTest, AWellWithoutDetectionsIsWrittenShort) {
    CResultsWell well(5, "A1", 3, 1, 1);
    well.SetResults(kAmplitude, kPlain, 1);
    EXPECT_EQ(Written([&](CXmlFileArchive& archive) { well.Save(archive); }),
              "<WellLabel>A1</WellLabel><Dose>5</Dose><FPfastDetectionTimes Size=\"0\"/>");
    well.FPfastDetectionTimes = {1};
    well.FPfastMaxAmp = 9;
    const std::string saved = Written([&](CXmlFileArchive& archive) { well.Save(archive); });
    EXPECT_NE(saved.find("<FPfastDetected>0</FPfastDetected><FPfastMaxAmp></FPfastMaxAmp>"), std::string::npos);
    const CResultsWell back = LoadedWell(saved);
    EXPECT_EQ(back.FPfastMaxAmp, 0.0);
    EXPECT_EQ(back.GetResults(kAmplitude, kPlain), 1.0);
}

TEST_F(ResultsFileTest, FindingsAreReadOnlyAfterTheFlagThatTheyExist) {
    EXPECT_EQ(LoadedWell("<FPfastMaxAmp>1</FPfastMaxAmp><FPfastDetected>1</FPfastDetected>").FPfastMaxAmp, 0.0);
    const CResultsWell well = LoadedWell(
        "<FPfastDetected>1</FPfastDetected><FPfastMaxAmp>1</FPfastMaxAmp><FPfastDetected>0"
        "</FPfastDetected><FPfastMinAmp>2</FPfastMinAmp>");
    EXPECT_EQ(well.FPfastMaxAmp, 1.0);
    EXPECT_EQ(well.FPfastMinAmp, 0.0);
    CResultsWell used;
    used.FPfastDetected = true;
    used.FPfastMaxAmp = used.FPfastSlopeX0 = 3;
    used.FPmaxType = enFPmaxType::PositivePeak;
    Read("<Well></Well>", [&](CXmlFileArchive& archive) { used.Load(archive); });
    EXPECT_FALSE(used.FPfastDetected);
    EXPECT_EQ(used.FPfastMaxAmp, 0.0);
    EXPECT_EQ(used.FPfastSlopeX0, 3.0) << "only a new well has the default";
    EXPECT_EQ(used.FPmaxType, enFPmaxType::Undefined);
}

TEST_F(ResultsFileTest, ListsHaveTheirStatedLength) {
    using Times = std::vector<std::int64_t>;
    using Samples = std::vector<double>;
    EXPECT_EQ(LoadedWell("<FPfastDetectionTimes Size=\"3\"><Time>1</Time><X>2</X><Time>3</Time></FPfastDetectionTimes>")
                  .FPfastDetectionTimes,
              (Times{1, 0, 3}));
    EXPECT_EQ(LoadedWell("<FPfastDetectionTimes Size=\"2\"><Time>1</Time><Time>2</Time></FPfastDetectionTimes>"
                         "<FPfastDetectionTimes Size=\"2\"><X/><Time>3</Time></FPfastDetectionTimes>")
                  .FPfastDetectionTimes,
              (Times{0, 3}))
        << "the second list wins";
    EXPECT_EQ(LoadedWell("<FPfastDetectionTimes><Time>1</Time></FPfastDetectionTimes>").FPfastDetectionTimes, Times{});
    EXPECT_EQ(LoadedWell("<Average Size=\"2\"><Ave>1;2;3;</Ave></Average>").Average, (Samples{1, 2}));
    EXPECT_EQ(LoadedWell("<Average Size=\"3\"><Ave>1;2</Ave></Average>").Average, (Samples{1, 0, 0}));
    EXPECT_EQ(LoadedWell("<Average Size=\"1\"><X/><Ave>1;</Ave></Average>").Average, (Samples{0}));
    const CResultsWell well = LoadedWell(
        "<Responses Size=\"3\"><Response><Label>?</Label><Value>1</Value></Response>"
        "<Response><Value>2</Value></Response><Response><Value>3</Value><Label>Na-Slope"
        "</Label></Response></Responses><FPmaxType>?</FPmaxType>");
    EXPECT_EQ(well.Responses.size(), 2U);
    EXPECT_EQ(well.GetResults(enResponseType::NotDefined, kPlain), 2.0);
    EXPECT_EQ(well.GetResults(enResponseType::NaSlope, kPlain), 3.0);
}

TEST_F(ResultsFileTest, TasksAreRestoredUnderTheirKeysAndOthersStay) {
    CResults before = Tree();
    const CResults results = Loaded(
        "<Task><TaskName>Analyze</TaskName></Task><Task><TaskName>?</TaskName><Recordings "
        "Size=\"2\"><Recording><Wells Size=\"0\"/><Dose>1</Dose></Recording><Recording><Dose>2"
        "</Dose><Wells Size=\"2\"><Well><X/></Well><Well><WellID>3</WellID></Well></Wells>"
        "</Recording></Recordings></Task>",
        before);
    EXPECT_EQ(results.GetTasks(), (std::vector<enTask>{enTask::Series, enTask::Analyze, enTask::Nil}));
    EXPECT_EQ(results.GetCompoundID(), 7);
    EXPECT_EQ(results.GetWellIDs(enTask::Nil, 1), (std::vector<std::int32_t>{0, 3}));
    const CResults twice = Loaded(
        "<Task><TaskName>Series</TaskName><Recordings Size=\"1\"><Recording><Wells Size=\"2\"><Well><WellID>3</WellID>"
        "<WellLabel>first</WellLabel></Well><Well><WellID>3</WellID><WellLabel>last</WellLabel></Well></Wells>"
        "</Recording></Recordings></Task>");
    EXPECT_EQ(twice.Tasks.at(enTask::Series).Recordings.at(0).Wells.at(3).WellLabel, "last");
    EXPECT_EQ(Loaded("<Task><TaskName>Series</TaskName><Recordings Size=\"1\"><Recording><Dose>1</Dose></Recording>"
                     "</Recordings><Recordings Size=\"1\"><Recording><Dose>2</Dose></Recording></Recordings></Task>")
                  .GetRecordingCount(enTask::Series),
              1)
        << "the second list wins";
    EXPECT_EQ(LoadedWell("<Responses Size=\"1\"><Response><Label>Na-Slope</Label></Response></Responses>"
                         "<Responses Size=\"1\"><Response><Label>Na-Amplitude</Label></Response></Responses>")
                  .Responses.size(),
              1U);
    EXPECT_EQ(Loaded("<Task><TaskName>Series</TaskName><Recordings Size=\"0\"/></Task>", before)
                  .GetRecordingCount(enTask::Series),
              0);
}

TEST_F(ResultsFileTest, OnlyFailureToOpenThrows) {
    CVXFileIO io;
    const std::string path = m_folder.Path("no such folder/a.vxr");
    const std::string failure = "Could not open results file: " + path;
    EXPECT_EQ(TextOfFailure([&] { io.GetResultsWriter()->WriteFile(path, CResults()); }), failure);
    EXPECT_EQ(TextOfFailure([&] { io.GetResultsReader()->ReadFile(path); }), failure);
    EXPECT_EQ(io.GetResultsReader()->GetXmlFileHeader()->HeaderID, "OVL Vexaprobe");
    EXPECT_TRUE(io.GetResultsReader()->GetResults()->GetTasks().empty());
    io.GetResultsWriter()->WriteFile(m_path, CResults());
    EXPECT_TRUE(ReadAll(m_path).ends_with("<Guid></Guid></Header><Results/></Vexaprobe>"));
    io.GetResultsReader()->ReadFile(m_path);
    EXPECT_EQ(io.GetResultsReader()->GetReadError(), "") << "a document without tasks";

    CXmlFileHeader header;
    header.FileType = "X";
    header.Guid = "g";
    io.GetResultsWriter()->SetXmlFileHeader(header);
    io.GetResultsWriter()->WriteFile(m_path, Tree());
    EXPECT_NE(ReadAll(m_path).find("<FileType>VXResults</FileType>"), std::string::npos);
    io.GetResultsReader()->ReadFile(m_path);
    EXPECT_EQ(io.GetResultsReader()->GetResults()->GetWellIDs(enTask::Series, 1).size(), 2U);
    WriteAll(m_path,
             "<V><Header><CompoundName>n</CompoundName></Header><Results><Task><TaskName>Nil</TaskName></Task>");
    io.GetResultsReader()->ReadFile(m_path);
    EXPECT_EQ(io.GetResultsReader()->GetResults()->GetTasks().size(), 2U) << "merged with the earlier content";
    EXPECT_EQ(io.GetResultsReader()->GetXmlFileHeader()->Guid, "g");
    EXPECT_EQ(io.GetResultsReader()->GetXmlFileHeader()->CompoundName, "n");
}

}  // namespace
