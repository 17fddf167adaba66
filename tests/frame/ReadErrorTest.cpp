#include <array>
#include <string>
#include <vector>

#include "tests/reference/Twin.h"
#include "tests/xmlarchive/ArchiveTest.h"

namespace {

/// The errors that readers report about documents.
class ReadErrorTest : public testing::Test {
 protected:
    std::string Settings(const std::string& document) { return ErrorOf(*m_io.GetSettingsReader(), document); }
    std::string Results(const std::string& document) { return ErrorOf(*m_io.GetResultsReader(), document); }

    /// Reads a document with the first `old` replaced.
    std::string SettingsWith(const std::string& old, const std::string& text) {
        return Settings(Replaced(m_settings, old, text));
    }
    std::string ResultsWith(const std::string& old, const std::string& text) {
        return Results(Replaced(m_results, old, text));
    }

    template <class Reader>
    std::string ErrorOf(Reader& reader, const std::string& document) {
        WriteAll(m_path, document);
        reader.ReadFile(m_path);
        return reader.GetReadError();
    }

    static std::string Replaced(std::string document, const std::string& old, const std::string& text) {
        const std::size_t at = document.find(old);
        EXPECT_NE(at, std::string::npos) << old;
        return at == std::string::npos ? document : document.replace(at, old.size(), text);
    }

    /// Returns some of the values that were read, each after a list or an object.
    static std::string SummaryOf(const CISettingsReader& reader) {
        const auto& robot = reader.GetRobotProperty()->RobotConfig;
        const auto& plate = reader.GetRecordPlateProperty()->Data;
        const auto& marks = reader.GetAnalyzerProperty()->AnalyzeSettings;
        std::string text = "version " + std::to_string(reader.GetXmlFileHeader()->FileVersion) + ", trough " +
                           robot.TroughMediumNames.front() + ", waste " + std::to_string(robot.WasteID) + ", wells " +
                           std::to_string(plate.Wells.size()) + ", doses " + std::to_string(plate.Series.size()) +
                           ", plate " + plate.PlateID + ", checks " +
                           std::to_string(reader.GetQualityCheckProperty()->QualityChecks.size()) + ", tasks " +
                           std::to_string(marks.size() - marks.count(enTask::Series)) + ", marks";
        if (const auto task = marks.find(enTask::PreQC); task != marks.end()) {
            for (const auto& recording : task->second)
                text += ' ' + std::to_string(recording.size());
        }
        return text + ", slope " + std::to_string(reader.GetAnalyzerProperty()->FPSlopeInterval);
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("document.xml");
    std::string m_settings = ReadAll(ReferencePath("xml/settings.vxs"));
    std::string m_results = ReadAll(ReferencePath("xml/results.vxr"));
    CVXFileIO m_io;
};

TEST_F(ReadErrorTest, OtherKindsOfFilesAreNamed) {
    EXPECT_EQ(Settings(""), "This is an empty file, not a settings file.");
    EXPECT_EQ(Results(std::string(4096, '\0')), "This is a file that begins with a NUL, not a results file.");
    EXPECT_EQ(Settings(ReadAll(ReferencePath("small_example.vxd"))), "This is a raw data file, not a settings file.");
    EXPECT_EQ(Results(ReadAll(ReferencePath("workbooks/small.xls"))), "This is a workbook, not a results file.");
    EXPECT_EQ(Settings(m_results), "This is a results file, not a settings file.");
    EXPECT_EQ(Results(m_settings), "This is a settings file, not a results file.");
    EXPECT_EQ(Results("some text"), "The document has no elements that a results file has.");
    EXPECT_EQ(Settings(Replaced(Replaced(m_settings, "<Vexaprobe>", "<Other>"), "</Vexaprobe>", "</Other>")),
              "The root element is <Other>, expected <Vexaprobe>.");
    EXPECT_EQ(Settings("<Vexaprobe><Settings><A><B/></A></Settings></Vexaprobe>"),
              "The document has no <Header> ahead of <Settings>, so nothing was read.");
}

TEST_F(ReadErrorTest, EveryTruncationIsReported) {
    for (std::size_t size = 0; size < m_settings.size(); size += 7)
        ASSERT_NE(Settings(m_settings.substr(0, size)), "") << size;
    for (std::size_t size = 0; size < m_results.size(); ++size)
        ASSERT_NE(Results(m_results.substr(0, size)), "") << size;
    const std::size_t dose = m_results.find("</Dose>");
    const std::string path = "Vexaprobe/Results[0]/Task/Recordings[0]/Recording";
    for (const auto& [cut, place] : std::vector<std::pair<std::size_t, std::string>>{
             {dose - 1, path + "/Dose."},
             {dose + 6, path + "/Dose."},
             {dose + 7, path + "; <Dose> wasn't read, since no tag follows it."},
             {dose + 8, path + '.'},
             {m_results.find("</Header>") + 9, "Vexaprobe."}}) {
        const std::string end = "at offset " + std::to_string(cut) + ", inside " + place;
        const auto named = [&](const std::string& error) { return error.ends_with(end); };
        EXPECT_PRED1(named, Results(m_results.substr(0, cut)));
        EXPECT_PRED1(named, Results(m_results.substr(0, cut) + '\0' + m_results.substr(cut))) << "a NUL";
    }
    EXPECT_EQ(Results(m_results.substr(0, dose) + '\0' + m_results.substr(dose)),
              "The document ends with a NUL at offset " + std::to_string(dose) + ", inside " + path + "/Dose.");
    EXPECT_EQ(Results("<Vexa"),
              "The document has no elements that a results file has. "
              "The document ends at offset 5, inside its first tag.");
    EXPECT_EQ(Results("<Vexaprobe></Vexaprobe>"), "The document has no elements that a results file has.");
}

TEST_F(ReadErrorTest, InvalidValuesAreReportedWithPathOffsetAndCount) {
    const std::size_t interval = m_settings.find("<Tick>") + 6;
    EXPECT_EQ(SettingsWith("<Tick>", "<Tick>3x"), "Vexaprobe/Settings/PropertyRecording/Tick (offset " +
                                                      std::to_string(interval) +
                                                      "): \"3x100\" isn't a "
                                                      "whole number from -9223372036854775808 to 9223372036854775807.");
    const std::size_t most = m_settings.find("<ADMax>") + 7;
    EXPECT_EQ(SettingsWith("<ADMax>65535", "<ADMax>65536"), "Vexaprobe/Settings/PropertyRecording/ADMax (offset " +
                                                                std::to_string(most) +
                                                                "): \"65536\" isn't a whole number from 0 to 65535.");
    const std::size_t mode = m_settings.find("<RobotMode>") + 11;
    EXPECT_EQ(SettingsWith("<RobotMode>Online", "<RobotMode>Offlime"),
              "Vexaprobe/Settings/PropertyControl/RobotMode (offset " + std::to_string(mode) +
                  "): \"Offlime\" isn't one of the words NotDefined, Online, Offline, Simulation.");
    std::string twice = Replaced(m_settings, "<ADMax>65535", "<ADMax>");
    twice = Replaced(twice, "<ADMin>", "<ADMin>-");
    twice = Replaced(twice, "<Gain>1100", "<Gain>-");
    twice = Replaced(twice, "<DataFormat>", "<DataFormat>x");
    EXPECT_NE(Settings(twice).find("There are 2 more of this kind."), std::string::npos) << Settings(twice);
}

TEST_F(ReadErrorTest, ListsOfAnotherLengthThanTheirSizeAreReported) {
    const std::string document =
        "<Vexaprobe><Header><FileName/></Header><Results><Task><Recordings Size=\"1\">"
        "<Recording><Wells Size=\"1\"><Well><WellID>7</WellID>"
        "<FPfastDetectionTimes Size=\"2\"><Time>1</Time><Time>2</Time></FPfastDetectionTimes>"
        "<Average Size=\"3\"><Ave>1;2.5;nan;</Ave></Average></Well></Wells></Recording>"
        "</Recordings></Task></Results></Vexaprobe>";
    const std::string well = "Vexaprobe/Results[0]/Task/Recordings[0]/Recording/Wells[0]/Well/";
    const auto at = [&](const std::string& text) { return " (offset " + std::to_string(document.find(text)) + "): "; };
    EXPECT_EQ(Results(document), "");
    EXPECT_EQ(Results(Replaced(document, "Times Size=\"2\"", "Times Size=\"1\"")),
              well + "FPfastDetectionTimes" + at("<FPfastDet") + "the list has 2 entries, but its Size is 1.");
    EXPECT_EQ(Results(Replaced(document, "nan;", "")),
              well + "Average" + at("<Average") + "the list has 2 entries, but its Size is 3.");
    EXPECT_EQ(Results(Replaced(document, "2.5", "2,5")),
              well + "Average[0]/Ave" + at("2.5;") + "\"2,5\" isn't a number.");
    EXPECT_NE(Results(Replaced(document, "<Recordings Size=\"1\"", "<Recordings Size='1'")).find("its Size is 0"),
              std::string::npos);
}

TEST_F(ReadErrorTest, AWrongEndTagIsReported) {
    const std::size_t at = m_results.find("</CompoundName>");
    EXPECT_EQ(ResultsWith("</CompoundName>", "</CompoundNane>"),
              "Vexaprobe/Header/CompoundName (offset " + std::to_string(at) +
                  "): found </CompoundNane> instead of </CompoundName>.");
    EXPECT_EQ(ResultsWith("</CompoundName>", "</CompoundName >"), "");
    EXPECT_NE(ResultsWith("</Header>", "</Heder>").find("found </Heder> instead of </Header>"), std::string::npos);
}

TEST_F(ReadErrorTest, SectionsAfterOneWithoutContentAreRead) {
    for (const std::string tag : {"PropertyControl", "PropertyNotebook", "PropertyRobot", "PropertyRecordPlate",
                                  "PropertyQualityCheck", "PropertyWashIn", "PropertyRecording"}) {
        const std::size_t begin = m_settings.find('<' + tag + '>');
        const std::string section = m_settings.substr(begin, m_settings.find("</" + tag + '>') - begin);
        for (const std::string& empty : {'<' + tag + "/>", '<' + tag + "></" + tag + '>'}) {
            CVXFileIO io;
            const std::string error =
                ErrorOf(*io.GetSettingsReader(), Replaced(m_settings, section + "</" + tag + '>', empty));
            EXPECT_EQ(error.find("Vexaprobe/Settings/" + tag + " (offset "), 0U) << error;
            EXPECT_NE(error.find("): the element has no content."), std::string::npos) << error;
            EXPECT_FALSE(io.GetSettingsReader()->GetAnalyzerProperty()->AnalyzeSettings.empty()) << empty;
        }
    }
}

TEST_F(ReadErrorTest, ElementsWithoutChildrenTakeNothingFromThoseAfterThem) {
    const std::string header = "<Header><FileVersion>3</FileVersion></Header>";
    const std::string troughs = "<TroughMediumNames Size=\"1\"><MediumName>m</MediumName></TroughMediumNames>";
    const std::string plateWells = "<Wells Size=\"1\"><Well><WellID>1</WellID></Well></Wells>";
    const std::string series = "<Series Size=\"2\"><Dose>5</Dose><Dose>6</Dose></Series>";
    const std::string check = "<QC><TaskName>PreQC</TaskName></QC>";
    const std::string well = "<Well><WellID>3</WellID><Analyze>0</Analyze></Well>";
    const std::string first = "<Recording><Recording>0</Recording><Wells Size=\"0\"/></Recording>";
    const std::string task = "<Task><TaskName>PreQC</TaskName><Recordings Size=\"2\">" + first +
                             "<Recording><Recording>1</Recording><Wells Size=\"2\">" + well +
                             "<Well><WellID>4</WellID></Well></Wells></Recording></Recordings></Task>";
    const std::string tasks = "<Tasks Size=\"2\">" + task + "<Task><TaskName>PostQC</TaskName></Task></Tasks>";
    const std::string document =
        "<Vexaprobe>" + header + "<Settings><PropertyRobot>" + troughs + "<WasteID>8</WasteID></PropertyRobot>" +
        "<PropertyRecordPlate>" + plateWells + series + "<PlateID>p</PlateID></PropertyRecordPlate>" +
        "<PropertyQualityCheck><QualityChecks Size=\"2\">" + check + "<QC><TaskName>PostQC</TaskName></QC>" +
        "</QualityChecks></PropertyQualityCheck><PropertyAnalyzer><AnalyzeSettings>" + tasks +
        "</AnalyzeSettings><FPSlopeInterval>9</FPSlopeInterval></PropertyAnalyzer></Settings></Vexaprobe>";
    const std::string whole =
        "version 3, trough m, waste 8, wells 1, doses 2, plate p, checks 2, tasks 2, marks 0 2, slope 9";
    for (const auto& [old, empty, part, change] :
         std::vector<std::array<std::string, 4>>{{"", "", "", ""},
                                                 {header, "<Header/>", "version 3", "version 0"},
                                                 {troughs, "<TroughMediumNames Size=\"1\"/>", "trough m", "trough "},
                                                 {plateWells, "<Wells Size=\"3\"/>", "wells 1", "wells 0"},
                                                 {series, "<Series Size=\"9\"></Series>", "doses 2", "doses 0"},
                                                 {check, "<QC/>", "", ""},
                                                 {check, "<QC>text</QC>", "", ""},
                                                 {tasks, "<Tasks Size=\"2\"/>", "tasks 2, marks 0 2", "tasks 0, marks"},
                                                 {task, "<Task/>", "tasks 2, marks 0 2", "tasks 1, marks"},
                                                 {first, "<Recording></Recording>", "", ""},
                                                 {well, "<Well/>", "marks 0 2", "marks 0 1"},
                                                 {header, "<Header><!----></Header>", "version 3", "version 0"},
                                                 {check, "<QC><!-- a --></QC>", "", ""},
                                                 {task, "<Task><!----></Task>", "tasks 2, marks 0 2", "tasks 1, marks"},
                                                 {first, "<Recording><!----></Recording>", "", ""},
                                                 {well, "<Well><!----></Well>", "marks 0 2", "marks 0 1"}}) {
        CVXFileIO io;
        const std::string error = ErrorOf(*io.GetSettingsReader(), Replaced(document, old, empty));
        EXPECT_EQ(SummaryOf(*io.GetSettingsReader()), Replaced(whole, part, change)) << empty;
        EXPECT_EQ(error.empty(), old.empty()) << empty;
        EXPECT_EQ(error.find("found <"), std::string::npos) << error;
    }
}

TEST_F(ReadErrorTest, AHeaderAfterTheSectionIsReported) {
    const std::size_t begin = m_settings.find("<Header>");
    const std::string header = m_settings.substr(begin, m_settings.find("<Settings>") - begin);
    EXPECT_EQ(Settings(Replaced(Replaced(m_settings, header, ""), "</Settings>", "</Settings>" + header)),
              "The document has no <Header> ahead of <Settings>, so nothing was read.");
}

TEST_F(ReadErrorTest, ContentAfterTheRootIsReported) {
    EXPECT_EQ(Settings(m_settings + "\n<!-- > --> <?end?>\n"), "");
    for (const std::string& more : {std::string("x"), std::string(1, '\0'), m_settings})
        EXPECT_EQ(Settings(m_settings + more).find("What follows the root, from offset "), 0U) << more.substr(0, 1);
}

TEST_F(ReadErrorTest, SilentChangesOfValuesAreReported) {
    const auto named = [](const std::string& error, const std::string& part) {
        EXPECT_NE(error.find(part), std::string::npos) << error;
    };
    named(ResultsWith("<CompoundName>", "<CompoundNam%>"), "found </CompoundName> instead of </CompoundNam%>.");
    named(ResultsWith("<CompoundName>", "<Co/poundName>"), "found </CompoundName> instead of </Co/poundName>.");
    named(ResultsWith("<CompoundName>C1</CompoundName>", "<CompoundName >C1</CompoundNameplate>"),
          "found </CompoundNameplate> instead of </CompoundName>.");
    named(ResultsWith("<Label>NotDefined<", "<Label>Na-Slop<"), "\"Na-Slop\" isn't one of the words NotDefined, Na-");
    named(ResultsWith("<TaskName>", "<TaskName>x"), "isn't one of the words Notebook, ");
    named(SettingsWith("<TaskName>", "<TaskName>x"), "isn't one of the words Notebook, ");
    named(ResultsWith("<CompoundName>C1</CompoundName>", "<CompoundNam%/>"),
          "Vexaprobe/Header (offset " + std::to_string(m_results.find("<CompoundName>")) +
              "): the tag \"<CompoundNam%/>\" was read as <CompoundNam>.");
    named(SettingsWith("<ADMax>", "<ADMax unit=\"1\">"), "the value was read from an attribute, \"1\".");
    named(SettingsWith("<VoltPerADStep>", "<VoltPerADStep>1e999</VoltPerADStep><VoltPerADStep>"),
          "\"1e999\" isn't a number that a double can hold.");
    named(SettingsWith("<Series Size=\"", "<Series Size=\"-"), "its Size is -");
    named(SettingsWith("<Series Size=\"", "<Series Size=\"400000000"), "its Size is 400000000");
}

TEST_F(ReadErrorTest, ACommentOrElementThatEndsAValueIsReported) {
    const auto cut = [&](const std::string& path, const std::string& tag, const std::string& value) {
        return "Vexaprobe/" + path + tag + " (offset " +
               std::to_string(m_results.find('<' + tag + '>') + tag.size() + 2) +
               "): a comment or an element ends the value \"" + value + "\".";
    };
    const std::string name = "<CompoundName>C1</CompoundName>";
    const std::string inName = cut("Header/", "CompoundName", "C");
    EXPECT_EQ(ResultsWith(name, "<CompoundName>C<!-- note -->1</CompoundName>"), inName);
    EXPECT_EQ(ResultsWith(name, "<CompoundName>C<X/>1</CompoundName>"), inName);
    EXPECT_EQ(ResultsWith(name, "<CompoundName><!-- note -->C1</CompoundName>"), cut("Header/", "CompoundName", ""));
    EXPECT_EQ(ResultsWith("<FileVersion>", "<FileVersion>7<!---->"), cut("Header/", "FileVersion", "7"));
    EXPECT_NE(SettingsWith("<Recording>0<", "<Recording>0<!----><").find("ends the value \"0\""), std::string::npos);
    for (const std::string between : {"<!-- a -->", " <!-- < > -->\n<!---->", "\r\n\t", "text"})
        EXPECT_EQ(ResultsWith(name, name + between), "") << between;
}

TEST_F(ReadErrorTest, AnElementWithoutContentOrKeyIsReported) {
    EXPECT_EQ(Results("<Vexaprobe><Header/><Results><Task/><Task><TaskName>Series</TaskName><Recordings Size=\"2\">"
                      "<Recording/><Recording><Wells "
                      "Size=\"3\"><Well/><Well><!----></Well><Well><WellID>5</WellID><Average Size=\"0\"/>"
                      "<FPfastDetected>1</FPfastDetected></Well></Wells></Recording></Recordings></Task></Results>"
                      "</Vexaprobe>"),
              "Vexaprobe/Header (offset 20): the element has no content. There are 5 more of this kind.");
    const auto* const read = m_io.GetResultsReader()->GetResults()->GetWellResults(enTask::Series, 1, 5);
    EXPECT_TRUE(read != nullptr && read->FPfastDetected);
    EXPECT_NE(ResultsWith("<Task>", "<Task/><Task>").find("Results[0]/Task (offset "), std::string::npos);
    EXPECT_NE(SettingsWith("<QC>", "<QC/><QC>").find("QualityChecks[0]/QC (offset "), std::string::npos);
    const std::size_t task = m_settings.rfind("<Task><TaskName>");
    std::string moved = m_settings;
    moved.insert(task + 6, "<Recordings Size=\"0\"/>");
    EXPECT_NE(Settings(moved).find("/Task/Recordings (offset "), std::string::npos);
    EXPECT_NE(Settings(moved).find("found <Recordings> instead of <TaskName> as the first child."), std::string::npos);
    EXPECT_NE(ResultsWith("<WellID>", "<ID>3</ID><WellID>").find("found <ID> instead of <WellID>"), std::string::npos);
    EXPECT_NE(ResultsWith("<Ave>", "<X/><Ave>").find("found <X> instead of <Ave>"), std::string::npos);
    EXPECT_NE(SettingsWith("<Recording>0</Recording>", "").find("found <Wells> instead of <Recording> as the first"),
              std::string::npos);
    const std::size_t average = m_results.find("<Average Size=\"7");
    const std::string samples = m_results.substr(average, m_results.find("</Average>") + 10 - average);
    EXPECT_NE(ResultsWith(samples, "<Average Size=\"0\"/>").find("/Well/Average (offset "), std::string::npos);
}

TEST_F(ReadErrorTest, EachFileHasItsOwnError) {
    EXPECT_NE(Settings(""), "");
    EXPECT_EQ(Settings(m_settings), "");
    EXPECT_THROW(m_io.GetSettingsReader()->ReadFile(m_folder.Path("absent")), CExcVXReader);
    EXPECT_EQ(m_io.GetSettingsReader()->GetReadError(), "Could not open settings file: " + m_folder.Path("absent"));
}

TEST_F(ReadErrorTest, ADoseWithoutTextIsReportedWithItsPath) {
    const std::string document =
        "<Vexaprobe><Header><FileVersion>2</FileVersion></Header><Settings><PropertyRecordPlate><Series Size=\"2\">"
        "<Dose>1</Dose><Dose>1000000000000</Dose></Series></PropertyRecordPlate></Settings></Vexaprobe>";
    EXPECT_ANY_THROW(Settings(document));
    EXPECT_EQ(m_io.GetSettingsReader()->GetReadError(),
              "Vexaprobe/Settings/PropertyRecordPlate/Series[1]/Dose: 1000000000000 pM is too large to be shown with a "
              "unit. The marks that this older file doesn't have weren't made.");
}

}  // namespace
