#include <string>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/xmlarchive/ArchiveTest.h"

namespace {

/// Whole settings files, written and read through the facades.
class SettingsFileTest : public testing::Test {
 protected:
    void ReadDocument(const std::string& document) {
        WriteAll(m_path, document);
        m_reader.ReadFile(m_path);
    }
    std::string Write(std::int32_t compound = -1) {
        m_writer.WriteFile(m_path, compound);
        return ReadAll(m_path);
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("a.vxs");
    CVXFileIO m_io;
    CISettingsWriter& m_writer = *m_io.GetSettingsWriter();
    CISettingsReader& m_reader = *m_io.GetSettingsReader();
};

TEST_F(SettingsFileTest, CompoundSelectsAnEntryOfTheListAndMarksByID) {
    CPropRecordPlate plate;
    for (const std::int32_t well : {3, 4, 5, 6})
        plate.Data.AddWell(well, 0, 0, well, "");
    plate.SetWellState(6, PlateWell::kInactive);
    plate.Data.Compounds.push_back(std::make_unique<PlateCompound>(PlateCompound{"first", {3}, 1}));
    plate.Data.Compounds.push_back(std::make_unique<PlateCompound>(PlateCompound{"second", {4, 6}, 0}));
    m_writer.SetRecordPlateProperty(plate);
    CPropAnalyzer analyzer;
    analyzer.InitTask(enTask::Series, 1, {3, 4, 5, 6});
    m_writer.SetAnalyzerProperty(analyzer);

    const auto written = [&](std::int32_t compound) {
        Write(compound);
        CVXFileIO io;
        io.GetSettingsReader()->ReadFile(m_path);
        std::string content = io.GetSettingsReader()->GetRecordPlateProperty()->Data.Compounds[0]->Label + ":";
        for (const auto& [well, marks] :
             io.GetSettingsReader()->GetAnalyzerProperty()->AnalyzeSettings.at(enTask::Series)[0])
            content += " " + std::to_string(well);
        return content;
    };
    CXmlFileHeader header;
    header.FileVersion = 3;
    m_writer.SetXmlFileHeader(header);
    EXPECT_EQ(written(-1), "first: 3 4 5");
    EXPECT_EQ(written(0), "first: 4") << "the second compound has ID 0";
    EXPECT_EQ(written(1), "second: 3");
    const std::string before = ReadAll(m_path);
    for (const std::int32_t absent : {2, -2}) {
        EXPECT_THROW(Write(absent), CExcVXReader);
        EXPECT_EQ(ReadAll(m_path), before) << "the file is unchanged";
        EXPECT_EQ(m_writer.GetWriteError(), "") << "nothing was written";
    }
    m_writer.WriteFile(m_path);
    EXPECT_NE(ReadAll(m_path).find("<Label>first</Label>"), std::string::npos);
}

TEST_F(SettingsFileTest, FilesWithoutMarksGetDefaultOnes) {
    const std::string plate =
        "<PropertyRecordPlate><Wells Size=\"2\"><Well><WellID>7</WellID></Well><Well><WellID>8</WellID><State>1</State>"
        "</Well></Wells><Series Size=\"2\"><Dose>1</Dose><Dose>999000000000</Dose></Series></PropertyRecordPlate>";
    for (const char* const version : {"<FileVersion>2</FileVersion>", "<FileVersion>-1</FileVersion>", ""}) {
        CVXFileIO io;
        WriteAll(m_path,
                 "<V><Header><Guid/>" + std::string(version) + "</Header><Settings>" + plate + "</Settings></V>");
        io.GetSettingsReader()->ReadFile(m_path);
        const CPropAnalyzer& analyzer = *io.GetSettingsReader()->GetAnalyzerProperty();
        EXPECT_TRUE(analyzer.IsWellAnalyzed(enTask::Series, 1, 7));
        EXPECT_FALSE(analyzer.IsWellAnalyzed(enTask::Series, 1, 8));
        EXPECT_FALSE(analyzer.IsWellAnalyzed(enTask::Series, 2, 7));
    }
    ReadDocument("<V><Header><FileVersion>3</FileVersion></Header><Settings>" + plate + "</Settings></V>");
    EXPECT_TRUE(m_reader.GetAnalyzerProperty()->AnalyzeSettings.empty());
}

TEST_F(SettingsFileTest, ADoseWithoutTextIsReportedIfMarksAreGenerated) {
    const std::string settings =
        "</FileVersion></Header><Settings><PropertyRecordPlate><Series Size=\"1\"><Dose>1000000000000</Dose></Series>"
        "</PropertyRecordPlate><PropertyWashIn><WashIn>9</WashIn></PropertyWashIn></Settings></V>";
    EXPECT_ANY_THROW(ReadDocument("<V><Header><FileVersion>2" + settings));
    EXPECT_EQ(m_reader.GetWashInProperty()->WashIn, 9) << "the rest was read";
    EXPECT_NO_THROW(ReadDocument("<V><Header><FileVersion>3" + settings));
}

TEST_F(SettingsFileTest, PropertiesMissingInAFileAreUnchanged) {
    ReadDocument(
        "<V><Header><FileVersion>3</FileVersion><Guid>g</Guid></Header><Settings><PropertyWashIn><WashIn>1"
        "</WashIn></PropertyWashIn><Unknown><PropertyViability><FMin>9.</FMin></PropertyViability></Unknown>"
        "<PropertyWashIn><WashIn>2</WashIn></PropertyWashIn></Settings><PropertyWashIn><WashIn>3</WashIn>"
        "</PropertyWashIn></V>");
    EXPECT_EQ(m_reader.GetWashInProperty()->WashIn, 2)
        << "the last one in the settings wins, and nothing after them is read";
    EXPECT_EQ(m_reader.GetViabilityProperty()->FMin, 0.5) << "unknown elements are ignored";
    for (const std::string nothing : {"", "x", "<V><Settings><PropertyWashIn><WashIn>5</WashIn></PropertyWashIn></V>",
                                      "<V><Header><FileName/></Header><Settings><PropertyWashIn><WashIn>"}) {
        ReadDocument(nothing);
        EXPECT_EQ(m_reader.GetWashInProperty()->WashIn, 2) << nothing;
        EXPECT_EQ(m_reader.GetXmlFileHeader()->Guid, "g");
        EXPECT_EQ(m_reader.GetXmlFileHeader()->FileVersion, 3);
    }
}

TEST_F(SettingsFileTest, OnlyFailureToOpenThrows) {
    const std::string path = m_folder.Path("no such folder/a.vxs");
    EXPECT_EQ(TextOfFailure([&] { m_writer.WriteFile(path); }), "Could not open settings file: " + path);
    EXPECT_EQ(m_writer.GetWriteError(), "No such file or directory, opening " + path);
    EXPECT_EQ(TextOfFailure([&] { m_reader.ReadFile(path); }), "Could not open settings file: " + path);
    EXPECT_EQ(TextOfFailure([&] { m_reader.ReadFile(m_folder.Path("")); }),
              "Could not open settings file: " + m_folder.Path(""));

    CXmlFileHeader header;
    header.FileType = "X";
    EXPECT_NE(Write().find("<FileType></FileType>"), std::string::npos) << "the default header";
    EXPECT_EQ(m_writer.GetWriteError(), "");
    m_writer.SetXmlFileHeader(header);
    EXPECT_NE(Write().find("<FileType>VXSettings</FileType>"), std::string::npos);
    EXPECT_EQ(header.FileType, "X");
}

TEST_F(SettingsFileTest, TextsThatANulCutsAreReported) {
    using std::string_literals::operator""s;
    const std::string cut = ": the text has a NUL, and only what precedes it was written";
    const std::string path = m_folder.Path("cut.vxs");
    CPropNotebook notebook;
    notebook.Comment = "ab\0cd"s;
    m_writer.SetNotebookProperty(notebook);
    m_writer.WriteFile(path);
    EXPECT_EQ(m_writer.GetWriteError(), "Vexaprobe/Settings/PropertyNotebook/Comment" + cut);
    EXPECT_NE(ReadAll(path).find("<Comment>ab</Comment>"), std::string::npos);
    CPropRobot robot;
    robot.RobotConfig.TroughMediumNames = {"\0"s, "\0"s};
    m_writer.SetRobotProperty(robot);
    m_writer.WriteFile(path);
    EXPECT_EQ(m_writer.GetWriteError(), "Vexaprobe/Settings/PropertyNotebook/Comment" + cut + "; 2 more of this kind");
    m_writer.SetNotebookProperty({});
    m_writer.SetRobotProperty({});
    m_writer.WriteFile(path);
    EXPECT_EQ(m_writer.GetWriteError(), "");
}

}  // namespace
