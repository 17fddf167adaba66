#include <chrono>
#include <cstdint>
#include <ctime>
#include <string>

#include "tests/xmlarchive/ArchiveTest.h"

namespace {

class PropertiesTest : public CArchiveTest {
 protected:
    std::string Saved(auto& property, auto... arguments) {
        return Written([&](CXmlFileArchive& archive) { property.Save(archive, arguments...); });
    }

    /// Loads from inside a root, so that the document doesn't end with the element.
    template <class Property>
    Property Loaded(const std::string& element, Property property = {}) {
        Read("<R>" + element + "<Behind/></R>", [&](CXmlFileArchive& archive) { property.Load(archive); });
        return property;
    }
};

TEST_F(PropertiesTest, NewObjectsAreWrittenWithTheirDefaults) {
    CXmlFileHeader header;
    header.FileType = "VXSettings";
    header.FileVersion = 3;
    EXPECT_EQ(Saved(header),
              "<Header><HeaderID>OVL Vexaprobe</HeaderID><CompoundName></CompoundName><VexaprobeMode>NotDefined"
              "</VexaprobeMode><FileType>VXSettings</FileType><ProgramVersion></ProgramVersion><FileVersion>3"
              "</FileVersion><RecordingDate>0</RecordingDate><RecordingDateString></RecordingDateString><FileName>"
              "</FileName><Guid></Guid></Header>");
    CPropViability viability;
    EXPECT_EQ(Saved(viability),
              "<PropertyViability><ApplyViabilityTest>0</ApplyViabilityTest><AnalyzeHeartRate>1</AnalyzeHeartRate>"
              "<ApplyMinimumWellsPerCompound>0</ApplyMinimumWellsPerCompound><Dose>0</Dose><FMin>0.5</FMin><FMax>4."
              "</FMax><RecordTime>10000000</RecordTime></PropertyViability>");
    CPropResultsExport exporting;
    EXPECT_EQ(Saved(exporting), "<PropResultsExport/>");
    CPropRecordPlate plate;
    EXPECT_EQ(
        Saved(plate),
        "<PropertyRecordPlate><Layout>NotDefined</Layout><PlateID> </PlateID><PlateRows>0</PlateRows><PlateColumns>"
        "0</PlateColumns><Compounds Size=\"0\"/><Wells Size=\"0\"/><Series Size=\"0\"/><MaxVolume>0</MaxVolume>"
        "<MinWellsPerCompound>0</MinWellsPerCompound><MixVolume>0</MixVolume><PipetMode>NotDefined</PipetMode>"
        "<StdVolume>0</StdVolume></PropertyRecordPlate>");
}

TEST_F(PropertiesTest, TheBaseClassStoresNothing) {
    CVXProperty base;
    CPropControl control;
    control.RobotMode = enAcqMode::Offline;
    CPropQualityCheck checks;
    EXPECT_EQ(Saved(base) + Saved(static_cast<CVXProperty&>(control)) + Saved(static_cast<CVXProperty&>(checks)), "");
    EXPECT_EQ(Saved(checks), "");
    Read("<PropertyControl><RobotMode>Online</RobotMode></PropertyControl>", [&](CXmlFileArchive& archive) {
        base.Load(archive);
        static_cast<CVXProperty&>(control).Load(archive);
        EXPECT_EQ(control.RobotMode, enAcqMode::Offline);
        control.Load(archive);
        EXPECT_EQ(control.RobotMode, enAcqMode::Online) << "the calls before read nothing";
    });
}

TEST_F(PropertiesTest, MissingAndUnknownContentChangesNothingElse) {
    CPropControl control;
    control.SimulationDataFile = "kept";
    control = Loaded(
        "<PropertyControl><RobotMode>Sometimes</RobotMode><DataAcqMode>Offline</DataAcqMode>"
        "<DataAcqMode/></PropertyControl>",
        control);
    EXPECT_EQ(control.RobotMode, enAcqMode::NotDefined);
    EXPECT_EQ(control.DataAcqMode, enAcqMode::NotDefined) << "an empty word isn't known";
    EXPECT_EQ(control.SimulationDataFile, "kept");

    const auto viability = Loaded<CPropViability>(
        "<PropertyViability><ApplyViabilityTest>2</ApplyViabilityTest><X>"
        "<Dose>7</Dose></X><FMin></FMin></PropertyViability>");
    EXPECT_FALSE(viability.ApplyViabilityTest);
    EXPECT_EQ(viability.Dose, 7U) << "nesting is ignored";
    EXPECT_EQ(viability.FMin, 0.5);

    const auto robot = Loaded<CPropRobot>(
        "<PropertyRobot><StockPlateIDL8x12>XYZ</StockPlateIDL8x12><StockPlateIDL16x6></StockPlateIDL16x6><IPAddress>a"
        "<b/></IPAddress><TroughMediumNames Size=\"3\"><MediumName>1</MediumName><Other>2</Other></TroughMediumNames>"
        "<FirmwareDate>not counted</FirmwareDate></PropertyRobot>");
    EXPECT_EQ(robot.RobotConfig.StockPlateIDL8x12, 'X');
    EXPECT_EQ(robot.RobotConfig.StockPlateIDL16x6, '\0');
    EXPECT_EQ(robot.RobotConfig.IPAddress, "a") << "the end tag doesn't clear it";
    EXPECT_EQ(robot.RobotConfig.TroughMediumNames, (std::vector<std::string>{"1", "", ""}));
    EXPECT_EQ(robot.FirmwareDate, "not counted");

    const auto header = Loaded<CXmlFileHeader>("<Header><Guid><![CDATA[&lt;]]></Guid></Header>");
    EXPECT_EQ(header.Guid, "&lt;");
    EXPECT_EQ(header.HeaderID, "OVL Vexaprobe");
}

TEST_F(PropertiesTest, EachLoadsUpToItsOwnEnd) {
    Read(
        "<R><PropertyWashIn><WashIn>1</WashIn></PropertyWashIn><PropertyWashIn><WashIn>2</WashIn></PropertyWashIn></R>",
        [](CXmlFileArchive& archive) {
            CPropWashIn washIn;
            washIn.Load(archive);
            EXPECT_EQ(washIn.WashIn, 1);
            washIn.Load(archive);
            EXPECT_EQ(washIn.WashIn, 2);
            EXPECT_TRUE(archive.NextElement());
            EXPECT_EQ(archive.TagName(), "R");
        });
    Read("<PropResultsExport/><R>", [](CXmlFileArchive& archive) {
        CPropResultsExport().Load(archive);
        EXPECT_FALSE(archive.NextElement()) << "a self-closing element has no end tag";
    });
}

TEST_F(PropertiesTest, TheVoltageRangeIsStoredWithoutItsSign) {
    const auto stored = [&](const std::string& range) {
        CPropRecording recording;
        recording.VoltageRange = range;
        const std::string saved = Saved(recording);
        const std::size_t start = saved.find("<VoltageRange>") + 14;
        return saved.substr(start, saved.find("</VoltageRange>") - start);
    };
    EXPECT_EQ(stored("\xB1 5"), "5");
    EXPECT_EQ(stored("\xB1 \xB1 5"), "&#177; 5");
    EXPECT_EQ(stored("\xB1"), "&#177;");
    EXPECT_EQ(stored("\xB1x5"), "&#177;x5");
    EXPECT_EQ(stored("5 \xB1 "), "5 &#177; ");

    CPropRecording before;
    before.VoltageRange = "\xB1 5";
    EXPECT_EQ(Loaded("<PropertyRecording><VoltageRange>10</VoltageRange></PropertyRecording>", before).VoltageRange,
              "\xB1 10");
    EXPECT_EQ(Loaded("<PropertyRecording><VoltageRange></VoltageRange></PropertyRecording>", before).VoltageRange,
              "\xB1 ");
    EXPECT_EQ(Loaded("<PropRecording><ADMax>70000</ADMax></PropRecording>", before).VoltageRange, "\xB1 \xB1 5");
    EXPECT_EQ(Loaded("<PropRecording><ADMax>70000</ADMax></PropRecording><ADMax>1</ADMax>", before).ADMax, 4464);
    EXPECT_EQ(Loaded("<Other/>", before).VoltageRange, "\xB1 \xB1 5") << "even if the document ends first";
}

TEST_F(PropertiesTest, QualityChecksAreRestoredUnderTheirKeys) {
    CPropQualityCheck checks;
    checks.QualityChecks[enTask::PostQC].TaskName = "PostQC";
    checks.QualityChecks[enTask::PreQC].TaskName = "";
    checks.QualityChecks[enTask::CompoundTest].TaskName = "CompoundTest";
    checks.QualityChecks[enTask::CompoundTest].QCPerformed = {3, 7};
    const std::string saved = Saved(checks, false);
    EXPECT_LT(saved.find("CompoundTest"), saved.find("<TaskName></TaskName>"));
    EXPECT_LT(saved.find("<TaskName></TaskName>"), saved.find("PostQC"));

    auto back = Loaded<CPropQualityCheck>(saved).QualityChecks;
    EXPECT_EQ(back.size(), 3U);
    EXPECT_TRUE(back.contains(enTask::Nil));
    EXPECT_EQ(back[enTask::CompoundTest].QCPerformed, (std::vector<std::int32_t>{3, 7}));

    const std::string omitted = Saved(checks, true);
    EXPECT_NE(omitted.find("<EnableQC>0</EnableQC><QCPerformed Size=\"0\"/><CompoundName>"), std::string::npos);
    EXPECT_EQ(omitted.find("<CompoundID>"), std::string::npos);
    EXPECT_EQ(checks.QualityChecks[enTask::CompoundTest].QCPerformed.size(), 2U);

    back = Loaded(
               "<PropertyQualityCheck><QualityChecks Size=\"3\"><QC><TaskName>PreQC</TaskName></QC><QC><TaskName>"
               "Viability</TaskName><Series Size=\"0\"/><QCResponse>?</QCResponse></QC><QC><TaskName>PreQC</TaskName>"
               "<CompoundPlateID>Z</CompoundPlateID><Series Size=\"3\"><Dose>1</Dose><X>2</X><Dose>3</Dose></Series>"
               "</QC></QualityChecks></PropertyQualityCheck>",
               checks)
               .QualityChecks;
    EXPECT_EQ(back.size(), 2U) << "the old ones are removed, and the last one of a task wins";
    EXPECT_EQ(back[enTask::Viability].Series.size(), 0U);
    EXPECT_EQ(back[enTask::PreQC].CompoundPlateID, 'Z');
    EXPECT_EQ(back[enTask::PreQC].Series, (std::vector<std::uint64_t>{1, 3}));
}

TEST_F(PropertiesTest, CopiesHaveTheirOwnRobotGeometry) {
    CPropRobot one;
    one.RobotConfig.Range = std::make_unique<std::array<std::int32_t, 6>>();
    one.RobotConfig.Troughs.push_back(std::make_unique<std::array<std::int32_t, 7>>());
    one.RobotConfig.Troughs.push_back(nullptr);
    one.RobotConfig.StockPlates.push_back(std::make_unique<CRobotPlate>());
    CPropRobot other = one;
    (*one.RobotConfig.Range)[5] = 1;
    (*one.RobotConfig.Troughs[0])[6] = 2;
    one.RobotConfig.StockPlates[0]->Values[11] = 3;
    EXPECT_EQ((*other.RobotConfig.Range)[5] + (*other.RobotConfig.Troughs[0])[6], 0);
    EXPECT_EQ(other.RobotConfig.StockPlates[0]->Values[11], 0);
    EXPECT_EQ(other.RobotConfig.Troughs[1], nullptr);
    const CPropRobot& itself = one;
    one = itself;
    EXPECT_EQ((*one.RobotConfig.Range)[5], 1);
    one = CPropRobot(Loaded(Saved(other), one));
    EXPECT_EQ((*one.RobotConfig.Range)[5], 1) << "files don't contain the geometry";
    one = CPropRobot();
    EXPECT_EQ(one.RobotConfig.Range, nullptr);
}

TEST_F(PropertiesTest, MarksOfOneTaskAreReplacedTogether) {
    CPropAnalyzer analyzer;
    analyzer.InitTask(enTask::Series, 2, {12, 11, 12});
    analyzer.InitTask(enTask::PreQC, 0, {1});
    analyzer.InitTask(enTask::PostQC, -1, {1});
    analyzer.AnalyzeSettings[enTask::Series][1][11].Responses[enResponseType::QTInterval] = enAnalysisMark::Deselected;
    analyzer.AnalyzeSettings[enTask::Series][0][12].Analyze = false;

    EXPECT_EQ(analyzer.GetResponseMark(enTask::Series, 0, 11, enResponseType::NaSlope), enAnalysisMark::Automatic);
    EXPECT_EQ(analyzer.GetResponseMark(enTask::Series, 1, 11, enResponseType::QTInterval), enAnalysisMark::Deselected);
    EXPECT_TRUE(analyzer.IsWellAnalyzed(enTask::Series, 1, 12));
    EXPECT_FALSE(analyzer.IsWellAnalyzed(enTask::Series, 0, 12));
    for (const std::int32_t absent : {2, -1, 2147483647}) {
        EXPECT_FALSE(analyzer.IsWellAnalyzed(enTask::Series, absent, 11));
        EXPECT_EQ(analyzer.GetResponseMark(enTask::Series, absent, 11, enResponseType::NaSlope),
                  enAnalysisMark::Undefined);
    }
    EXPECT_FALSE(analyzer.IsWellAnalyzed(enTask::Series, 0, 13));
    EXPECT_FALSE(analyzer.IsWellAnalyzed(enTask::PreQC, 0, 1));
    EXPECT_FALSE(analyzer.IsWellAnalyzed(enTask::Nil, 0, 1));
    EXPECT_EQ(analyzer.GetResponseMark(enTask::Series, 0, 11, enResponseType::NotDefined), enAnalysisMark::Undefined);

    const std::string all = Saved(analyzer);
    EXPECT_LT(all.find("<WellID>11<"), all.find("<WellID>12<"));
    const std::string some = Written([&](CXmlFileArchive& archive) { analyzer.SaveWells(archive, {12, 13, 11, 12}); });
    EXPECT_NE(some.find("<Wells Size=\"3\"><Well><WellID>12</WellID><Analyze>0</Analyze>"), std::string::npos);
    EXPECT_LT(some.find("<WellID>12<"), some.find("<WellID>11<"));
    const std::string none = Written([&](CXmlFileArchive& archive) { analyzer.SaveWells(archive, {}); });
    EXPECT_NE(none.find("<Recording>1</Recording><Wells Size=\"0\"/></Recording></Recordings>"), std::string::npos);

    CPropAnalyzer other;
    other.InitTask(enTask::Series, 5, {1});
    other.InitTask(enTask::Viability, 1, {1});
    other = Loaded(all, other);
    EXPECT_EQ(other.AnalyzeSettings.size(), 4U);
    EXPECT_EQ(other.AnalyzeSettings[enTask::Series].size(), 2U);
    EXPECT_EQ(other.GetResponseMark(enTask::Series, 1, 11, enResponseType::QTInterval), enAnalysisMark::Deselected);

    // What the file doesn't have is the default, not that of the well before.
    analyzer.AnalyzeSettings[enTask::Series][0][11].Analyze = false;
    std::string partial = Saved(analyzer);
    const std::string absent = "<Analyze>0</Analyze>";
    partial.erase(partial.find(absent, partial.find("<WellID>12<")), absent.size());
    other = Loaded(partial, CPropAnalyzer());
    EXPECT_FALSE(other.IsWellAnalyzed(enTask::Series, 0, 11));
    EXPECT_TRUE(other.IsWellAnalyzed(enTask::Series, 0, 12));
}

TEST_F(PropertiesTest, SavingTheAnalyzerSetsItsDate) {
    // The date comes from this clock; `std::time` may lag behind it.
    const auto second = [] { return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()); };
    constexpr std::uint64_t unitsPerSecond = 10'000'000;  // of 100 ns, since 1601
    CPropAnalyzer analyzer;
    const std::time_t before = second();
    const std::string saved = Saved(analyzer);
    const std::time_t after = second();
    const auto saving = static_cast<std::time_t>(analyzer.AnalyzingDate / unitsPerSecond) - 11644473600;
    EXPECT_GE(saving, before);
    EXPECT_LE(saving, after);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::gmtime(&saving));
    EXPECT_NE(saved.find("<AnalyzingDate>" + std::to_string(analyzer.AnalyzingDate) +
                         "</AnalyzingDate><AnalyzingDateString>" + text + "</AnalyzingDateString>"),
              std::string::npos)
        << saved;
    EXPECT_EQ(Loaded<CPropAnalyzer>(saved).AnalyzingDate, analyzer.AnalyzingDate);
}

TEST_F(PropertiesTest, MarksAreFoundByTheirOwnTags) {
    const auto analyzer = Loaded<CPropAnalyzer>(
        "<PropertyAnalyzer><AnalyzeSettings/><FPAverageTime>7</FPAverageTime><AnalyzeSettings><Tasks Size=\"2\"><Task>"
        "<TaskName>Series</TaskName><Recordings Size=\"9\"><Recording><Recording>5</Recording><Wells Size=\"1\"><Well>"
        "<Analyze>1</Analyze><Na-Slope>Manually</Na-Slope><QT-Interval>?</QT-Interval><NotDefined>Manually</NotDefined>"
        "</Well><Well><WellID>3</WellID><Analyze>0</Analyze></Well></Wells></Recording><Recording><Recording>5"
        "</Recording><Wells Size=\"0\"/></Recording></Recordings></Task><Task><TaskName>Hm"
        "</TaskName><Recordings Size=\"1\"><Recording><Recording>0</Recording></Recording></Recordings></Task><Task>"
        "<Recordings "
        "Size=\"0\"/></Task></Tasks></AnalyzeSettings><FPmaxSearchEnd>8</FPmaxSearchEnd><FPAveIntervalType>?"
        "</FPAveIntervalType></PropertyAnalyzer>");
    ASSERT_EQ(analyzer.AnalyzeSettings.size(), 2U) << "a task without a name is left out";
    const TaskAnalysis& series = analyzer.AnalyzeSettings.at(enTask::Series);
    ASSERT_EQ(series.size(), 2U) << "regardless of Size";
    EXPECT_TRUE(series[1].empty());
    EXPECT_EQ(series[0].size(), 2U);
    EXPECT_FALSE(series[0].at(3).Analyze);
    const auto& marks = series[0].at(-1).Responses;
    EXPECT_EQ(marks.at(enResponseType::NaAmplitude), enAnalysisMark::Automatic);
    EXPECT_EQ(marks.at(enResponseType::NaSlope), enAnalysisMark::Manually);
    EXPECT_EQ(marks.at(enResponseType::QTInterval), enAnalysisMark::Undefined);
    EXPECT_EQ(marks.size(), 3U);
    EXPECT_EQ(analyzer.AnalyzeSettings.at(enTask::Nil).size(), 1U);
    for (const std::string empty :
         {"<Tasks Size=\"2\"/>", "<Tasks Size=\"2\"></Tasks>",
          "<Tasks Size=\"1\"><Task><TaskName>Nil</TaskName><Recordings Size=\"2\"/></Task></Tasks>"}) {
        EXPECT_EQ(Loaded<CPropAnalyzer>("<PropertyAnalyzer><AnalyzeSettings>" + empty +
                                        "</AnalyzeSettings><FPmaxSearchEnd>8</FPmaxSearchEnd></PropertyAnalyzer>")
                      .FPmaxSearchEnd,
                  8)
            << empty;
    }
    EXPECT_EQ(analyzer.FPAverageTime, 7);
    EXPECT_EQ(analyzer.FPmaxSearchEnd, 8);
    EXPECT_EQ(analyzer.FPAveIntervalType, enFPAveIntervalType::Undefined);
}

}  // namespace
