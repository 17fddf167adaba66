#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tests/tools/RawBytes.h"
#include "tests/tools/ToolRun.h"
#include "tools/vxfile/plate/PlateLabels.h"
#include "tools/vxfile/plate/PlateView.h"
#include "tools/vxfile/report/Complaint.h"

using namespace vxfile;

namespace {

using CIDs = std::vector<std::int32_t>;
using CWords = std::vector<std::string>;

/// A plate of 2x3 whose labels are coordinates in the first row and texts in the second.
CPlateLabels Labels() {
    CPropRecordPlate plate;
    plate.Data.AddWell(11, 0, 0, 0, "A1");
    plate.Data.AddWell(12, 0, 1, 0, "A2");
    plate.Data.AddWell(13, 0, 2, 0, "A3");
    plate.Data.AddWell(21, 1, 0, 0, "ctrl-1");
    plate.Data.AddWell(22, 1, 1, 0, "A3");
    plate.Data.AddWell(23, 1, 2, 0, "");
    return {plate, "run.vxs"};
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::string SettingsText(const std::string& guid, const std::string& label11) {
    const auto well = [](const std::string& id, const std::string& label, const std::string& column) {
        return "<Well><WellID>" + id + "</WellID><ChID>0</ChID><Label>" + label + "</Label><PlateColumn>" + column +
               "</PlateColumn><PlateRow>0</PlateRow><State>0</State></Well>";
    };
    return "<?xml version=\"1.0\" ?><Vexaprobe><Header><FileType>VXSettings</FileType><FileVersion>3</FileVersion>"
           "<Guid>" +
           guid + "</Guid></Header><Settings><PropertyRecordPlate><Layout>8x12</Layout><Wells Size=\"2\">" +
           well("11", label11, "0") + well("12", "B7", "1") + "</Wells></PropertyRecordPlate></Settings></Vexaprobe>";
}

/// Results of wells 11, which has no label, and 12, labelled B8, at 1 nM, and of well 12 at 2 nM.
std::string ResultsText(const std::string& guid) {
    const auto well = [](const std::string& id, const std::string& label, const std::string& time) {
        return "<Well><WellID>" + id + "</WellID><WellLabel>" + label +
               "</WellLabel><FPfastDetectionTimes Size=\"1\"><Time>" + time + "</Time></FPfastDetectionTimes></Well>";
    };
    return "<?xml version=\"1.0\" "
           "?><Vexaprobe><Header><FileType>VXResults</FileType><FileVersion>1</FileVersion><Guid>" +
           guid +
           "</Guid></Header><Results><Task><TaskName>CompoundTest</TaskName><Recordings Size=\"2\"><Recording>"
           "<Dose>1000</Dose><Wells Size=\"2\">" +
           well("11", "", "1") + well("12", "B8", "2") +
           "</Wells></Recording><Recording><Dose>2000</Dose><Wells Size=\"1\">" + well("12", "B8", "3") +
           "</Wells></Recording></Recordings></Task></Results></Vexaprobe>";
}

/// Two recordings of wells 11 and 12 at doses of 1 nM and 2 nM, with the Guid 0123.
std::string TwoDoses(const std::vector<std::uint16_t>& last = {9}) {
    const std::string bytes = FileOf({{{11, 0, {1, 2}}, {12, 0, {3}}}, {{11, 500, {7}}, {12, 500, last}}});
    return WithCell(WithCell(bytes, "Guid", "0123"), "Dose", "2000", bytes.find("Dose=") + 1);
}

class Plate : public testing::Test {
 protected:
    std::string File(const std::string& name, const std::string& bytes) {
        WriteAll(m_folder.Path(name), bytes);
        return m_folder.Path(name);
    }

    /// Runs a command that writes a text, which becomes `out`.
    CToolRun Written(CWords command, const CWords& options) {
        const std::string path = m_folder.Path("out.csv");
        std::filesystem::remove(path);
        command.insert(command.end(), {"-o", path});
        command.insert(command.end(), options.begin(), options.end());
        CToolRun run = RunTool(command);
        if (std::filesystem::exists(path)) run.out = ReadAll(path);
        return run;
    }

    CToolRun Samples(const CWords& options) { return Written({"samples", m_run}, options); }

    CToolRun Beats(const CWords& options) {
        return Written({"table", File("run.vxr", ResultsText("0123")), "--what", "beats"}, options);
    }

    CTempFolder m_folder;
    std::string m_run = File("run.vxd", TwoDoses());
};

}  // namespace

TEST(PlateLabels, MeanTheWellsOfALabelOfACoordinateAndOfARectangle) {
    for (const auto& [word, wells] : std::vector<std::pair<std::string, CIDs>>{{"A1", {11}},
                                                                               {"a1", {11}},
                                                                               {"A01", {11}},
                                                                               {"A2-A1", {11, 12}},
                                                                               {"A3", {13, 22}},
                                                                               {"a03", {13, 22}},
                                                                               {"ctrl-1", {21}},
                                                                               {"B1", {21}},
                                                                               {"B3", {23}},
                                                                               {"A2-B3", {12, 13, 22, 23}},
                                                                               {"B3-A2", {12, 13, 22, 23}},
                                                                               {"A1-A3", {11, 12, 13, 22}},
                                                                               {"11", {11}},
                                                                               {"0099", {99}},
                                                                               {"-3", {-3}}})
        EXPECT_EQ(Labels().WellsOf(word), wells) << word;
}

TEST(PlateLabels, ListWhatExistsIfAWellDoesNot) {
    for (const std::string word : {"A4", "C1", "A1-A4", "A1-", "CTRL-1", "A0", "B2", "", "2147483648"}) {
        const std::string failure = FailureOf([&] { static_cast<void>(Labels().WellsOf(word)); });
        EXPECT_EQ(failure, "run.vxs has no well \"" + word + "\"; its wells: A1, A2, A3, ctrl-1, A3, 23.");
    }
    const std::string unknown = FailureOf([] { static_cast<void>(CPlateLabels().WellsOf("A1")); });
    EXPECT_TRUE(Has(unknown, "'A1' isn't the ID of a well") && Has(unknown, "--settings")) << unknown;
}

TEST(PlateLabels, FollowTheWellsThatATextNames) {
    for (const auto& [text, labeled] : std::vector<std::pair<std::string, std::string>>{
             {"segment 1 (well 11)", "segment 1 (well 11 (A1))"},
             {"well 11, 12 samples", "well 11 (A1), 12 samples"},
             {"wells 11, 12, each", "wells 11 (A1), 12 (A2), each"},
             {"its wells: 11 - 13, 40.", "its wells: 11 (A1) - 13 (A3), 40."},
             {"well 23 and a well without ID", "well 23 and a well without ID"}}) {
        EXPECT_EQ(Labels().AddedTo(text), labeled);
        EXPECT_EQ(CPlateLabels().AddedTo(text), text);
    }
}

TEST(PlateView, ShowsTicksAndIfAskedSeconds) {
    EXPECT_EQ(CPlateView().TimesText(2500, 30000), "2500 to 30000 ticks");
    const CPlateView view{.ticksPerSecond = 10'000};
    EXPECT_EQ(view.TimesText(2500, 30000), "2500 to 30000 ticks (0.25 to 3 s)");
    EXPECT_EQ(view.TimeText(-2500), "-2500 ticks (-0.25 s)");
}

TEST_F(Plate, LabelsComeFromTheSettingsFileNextToItWithItsGuid) {
    const CWords words = {"--well", "A1", "--dose", "2nM"};
    EXPECT_EQ(Samples(words).status, 2) << "there are no settings";
    File("run.vxs", SettingsText("9999", "A1"));
    EXPECT_EQ(Samples(words).status, 2) << "they are of another run";
    const std::string other = File("other.vxs", SettingsText("{0123}", "A1"));
    const CToolRun found = Samples(words);
    EXPECT_EQ(found.out, "task,recording,well,label,dose,time,sample\nCompoundTest,2,11,A1,2000,500,7\n");
    EXPECT_EQ(found.err, "vxfile: Labels are those of " + other + ".\n");
    EXPECT_EQ(found.status, 0);
    const std::string same = File("run.vxs", SettingsText("{0123}", "C1"));
    EXPECT_TRUE(Has(Samples(words).err, same + " has no well \"A1\"; its wells: C1, B7."));
}

TEST_F(Plate, NoOutputReplacesTheSettings) {
    const std::string settings = File("run.vxs", SettingsText("0123", "A1"));
    for (const CWords& words : {CWords{"samples", m_run, "--well", "A1"}, CWords{"recover", m_run}}) {
        for (const CWords& named : {CWords{}, CWords{"--settings", settings}}) {
            CWords command = words;
            command.insert(command.end(), {"-o", settings, "--force"});
            command.insert(command.end(), named.begin(), named.end());
            EXPECT_EQ(RunTool(command).status, 2) << words[0];
            EXPECT_EQ(ReadAll(settings), SettingsText("0123", "A1")) << words[0];
        }
    }
}

TEST_F(Plate, AnUnknownWellIsAnErrorThatNamesTheDamageOfTheSettings) {
    const std::string whole = SettingsText("0123", "A1");
    const std::string settings = File("run.vxs", whole.substr(0, whole.rfind("<Well>")));
    const CToolRun run = Samples({"--well", "B7"});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Has(run.err, "has no well \"B7\"") && Has(run.err, settings + ": The document ends")) << run.err;
}

TEST_F(Plate, ColumnsDependOnTheCommandLineAlone) {
    File("run.vxs", SettingsText("0123", "A1"));
    const auto heads = [&](const CWords& options) {
        const std::string out = Samples(options).out;
        return out.substr(0, out.find('\n'));
    };
    const std::string bare = "task,recording,well,time,sample";
    const std::string labeled = "task,recording,well,label,dose,time,sample";
    EXPECT_EQ(heads({}), bare);
    EXPECT_EQ(heads({"--well", "11,12", "--task", "CompoundTest"}), bare);
    EXPECT_EQ(heads({"--well", "11,B7"}), labeled);
    EXPECT_EQ(heads({"--dose", "1nM"}), labeled);
    EXPECT_EQ(heads({"--settings", m_folder.Path("run.vxs")}), labeled);
    EXPECT_EQ(heads({"--ticks-per-second", "10000"}), "task,recording,well,time,seconds,sample");
}

TEST_F(Plate, AWellIsChosenOnceHoweverOftenItIsNamed) {
    File("run.vxs", SettingsText("0123", "A1"));
    EXPECT_EQ(Samples({"--well", "A1"}).out, Samples({"--well", "11,a1,A1-A1,11"}).out);
    EXPECT_EQ(Samples({"--well", "11,13"}).err, Samples({"--well", "11,13,13"}).err) << "it isn't there";
}

TEST_F(Plate, WatchListsAtMostSixWellsWithoutSegments) {
    File("run.vxs", SettingsText("0123", "A1"));
    const std::string open = WithCell(FileOf({{{11, 0, {1}}}}, false), "Guid", "0123");
    for (const auto& [wells, ids, shown] :
         {std::tuple("7", "11:12:13:14:15:16:17", ", 1 of 7 wells (not yet 12 (B7) - 17), 1 segment, "),
          std::tuple("8", "11:12:13:14:15:16:17:18", ", 1 of 8 wells, 1 segment, ")}) {
        File("run.vxd", WithCell(WithCell(open, "NumberOfWells", wells), "WellIDs", ids));
        const std::string out = RunTool({"watch", m_run, "--idle", "0.05", "--every", "0.01"}).out;
        EXPECT_TRUE(Has(out, shown)) << out;
    }
}

TEST_F(Plate, SettingsOfAnotherRunAreADoubt) {
    const std::string other = File("other.vxs", SettingsText("9999", "A1"));
    const CToolRun run = Samples({"--settings", other});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Has(run.out, "CompoundTest,1,11,A1,1000,0,1\n")) << run.out;
    EXPECT_TRUE(Has(run.err, "Labels may be those of another plate.")) << run.err;
}

TEST_F(Plate, WhatDoesNotExistIsAnErrorThatListsWhatDoes) {
    File("run.vxs", SettingsText("0123", "A1"));
    const std::string copy = m_folder.Path("copy.vxd");
    for (const CWords& command : {CWords{"samples", m_run}, CWords{"info", m_run}, CWords{"verify", m_run},
                                  CWords{"diff", m_run, m_run}, CWords{"recover", m_run, "-o", copy}}) {
        for (const auto& [option, word, list] :
             {std::tuple("--task", "Series", "CompoundTest."), std::tuple("--dose", "5nM", "its doses: 1 nM, 2 nM."),
              std::tuple("--well", "D4", "its wells: A1, B7."), std::tuple("--dose", "5", "100nM")}) {
            CWords words = command;
            words.insert(words.end(), {option, word});
            const CToolRun run = RunTool(words);
            EXPECT_EQ(run.status, 2) << command[0] << ' ' << word;
            EXPECT_TRUE(Has(run.err, list)) << command[0] << ' ' << run.err;
        }
    }
    EXPECT_TRUE(Has(RunTool({"info", m_run, "--well", "13"}).err, "their wells: 11 (A1), 12 (B7)."));
    EXPECT_FALSE(std::filesystem::exists(copy));
}

TEST_F(Plate, CommandsShowOnlyWhatIsChosenWithItsLabels) {
    File("run.vxs", SettingsText("0123", "A1"));
    const std::string changed = File("changed.vxd", TwoDoses({8}));
    const auto diff = [&](const std::string& option, const std::string& word) {
        return RunTool({"diff", m_run, changed, option, word});
    };
    EXPECT_TRUE(
        Has(diff("--well", "B7").out, "well 12 (B7), from 500 to 500 ticks, 1 sample > sample 0\n  < 9\n  > 8"));
    EXPECT_EQ(diff("--well", "A1").status, 0);
    EXPECT_EQ(diff("--dose", "1nM").status, 0);
    EXPECT_EQ(diff("--dose", "2nM").status, 1);

    const std::string flawed = File("flawed.vxd", WithCell(TwoDoses(), "TimeTo", "499", TwoDoses().rfind("TimeTo")));
    const CToolRun other = RunTool({"verify", flawed, "--well", "A1"});
    EXPECT_EQ(other.out, flawed + ": raw data file, sound; 1 finding elsewhere\n");
    const CToolRun found = RunTool({"verify", flawed, "--well", "B07"});
    EXPECT_EQ(found.status, 1);
    EXPECT_TRUE(Has(found.out, "(well 12 (B7)) >")) << found.out;

    const CToolRun info = RunTool({"info", m_run, "--well", "A1", "--dose", "1nM", "--ticks-per-second", "1000"});
    EXPECT_TRUE(Has(info.out, "  1: 11 (A1)\n")) << info.out;
    EXPECT_TRUE(Has(info.out,
                    "1  CompoundTest  1       1 nM  1      100               300             0.3         1         2"))
        << info.out;
    EXPECT_FALSE(Has(info.out, "2  CompoundTest")) << info.out;

    const CToolRun recover = RunTool({"recover", m_run, "-o", m_folder.Path("new.vxd"), "--well", "B7"});
    EXPECT_TRUE(Has(recover.out, "    well 12 (B7): 1 segment, 1 sample, times 0 to 0 ticks\n")) << recover.out;
    EXPECT_FALSE(Has(recover.out, "well 11")) << recover.out;
    EXPECT_EQ(ReadAll(m_folder.Path("new.vxd")), TwoDoses()) << "the file has everything";

    const CToolRun watch = RunTool({"watch", m_run, "--well", "B7", "--dose", "2nM"});
    EXPECT_TRUE(Has(watch.out, "1 of 1 well, 1 segment, 1 sample\n")) << watch.out;
}

TEST_F(Plate, TablesHaveTheChosenRowsWithTheLabelsOfResultsAndSettings) {
    const std::string settings = File("run.vxs", SettingsText("{0123}", "A1"));
    const std::string head = "task,recording,dose,dose_text,well,label,beat,time,interval\n";
    const std::string rows[] = {"CompoundTest,0,1000,1 nM,11,A1,0,1,\n", "CompoundTest,0,1000,1 nM,12,B8,0,2,\n",
                                "CompoundTest,1,2000,2 nM,12,B8,0,3,\n"};
    for (const auto& [words, text] :
         std::vector<std::pair<CWords, std::string>>{{{}, rows[0] + rows[1] + rows[2]},
                                                     {{"--well", "a01"}, rows[0]},
                                                     {{"--well", "B8,A1", "--dose", "1nM"}, rows[0] + rows[1]},
                                                     {{"--dose", "2nM", "--task", "CompoundTest"}, rows[2]},
                                                     {{"--well", "12"}, rows[1] + rows[2]}}) {
        const CToolRun run = Beats(words);
        EXPECT_EQ(run.out, head + text);
        EXPECT_EQ(run.err, "vxfile: Labels that the results lack are those of " + settings + ".\n");
        EXPECT_EQ(run.status, 0);
    }
    EXPECT_TRUE(Has(Beats({"--well", "Z9"}).err, "run.vxr has no well \"Z9\"; its wells: A1, B8."));
    EXPECT_TRUE(Has(Beats({"--settings", settings}).out, "interval,analysed\n")) << "only named settings add columns";
    EXPECT_EQ(RunTool({"table", m_folder.Path("run.vxr"), "-o", settings, "--force"}).status, 2);
    EXPECT_EQ(ReadAll(settings), SettingsText("{0123}", "A1"));
    std::string more = SettingsText("{0123}", "A1");
    const std::string third = "<Well><WellID>13</WellID><Label>A2</Label></Well></Wells>";
    File("run.vxs", more.replace(more.find("</Wells>"), 8, third).replace(more.find("Size=\"2\"") + 6, 1, "3"));
    EXPECT_EQ(Beats({"--well", "A1-B8"}).out, head + rows[0] + rows[1] + rows[2]) << "the results don't have well A2";
    std::filesystem::remove(settings);
    EXPECT_EQ(Beats({"--well", "B8"}).out, head + rows[1] + rows[2]) << "the results have labels themselves";
    EXPECT_TRUE(Has(Beats({"--well", "A1"}).err, "run.vxr has no well \"A1\"; its wells: 11, B8."));
}

TEST_F(Plate, TablesRefuseWhatTheResultsDoNotHave) {
    File("run.vxs", SettingsText("9999", "A1"));
    for (const auto& [option, word, failure] :
         {std::tuple("--task", "Series", " has no task Series; its tasks: CompoundTest."),
          std::tuple("--dose", "5nM", " has no recording with a dose of 5 nM; its doses: 1 nM, 2 nM."),
          std::tuple("--well", "A2", " has no well \"A2\"; its wells: 11, B8."),
          std::tuple("--well", "13", " has no well 13 in the chosen recordings; their wells: 11, 12 (B8).")}) {
        const CToolRun run = Beats({option, word});
        EXPECT_EQ(run.status, 2) << word;
        EXPECT_TRUE(Has(run.err, failure) && run.out.empty()) << run.err;
    }
    const std::string whole = ResultsText("0123");
    const std::string cut = File("cut.vxr", whole.substr(0, whole.rfind("<Recording>")));
    const CToolRun lost = RunTool({"table", cut, "--dose", "2nM"});
    EXPECT_TRUE(lost.status == 2 && Has(lost.err, "its doses: 1 nM. " + cut + ": ")) << lost.err;
    const CToolRun means = RunTool({"table", m_folder.Path("run.vxr"), "--what", "means", "--well", "12"});
    EXPECT_TRUE(means.status == 2 && Has(means.err, "Means are those of all wells")) << means.err;
}

TEST(PlateLabels, ListTheFirstOfManyWells) {
    CPropRecordPlate plate;
    for (std::int32_t well = 0; well < 384; ++well)
        plate.Data.AddWell(2 * well, well / 24, well % 24, 0, "");
    const std::string failure = FailureOf([&] { static_cast<void>(CPlateLabels(plate, "run.vxs").WellsOf("Z9")); });
    EXPECT_EQ(failure,
              "run.vxs has no well \"Z9\"; its wells: 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30, 32, "
              "34, 36, 38 and 364 more.");
}
