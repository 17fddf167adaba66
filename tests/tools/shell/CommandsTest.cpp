#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tests/tools/RawBytes.h"
#include "tests/tools/ToolRun.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/FolderWalk.h"
#include "tools/vxfile/shell/Idle.h"

using namespace vxfile;

namespace {

using CWords = std::vector<std::string>;

class Commands : public testing::Test {
 protected:
    std::string File(const std::string& name, const std::string& bytes) {
        WriteAll(m_folder.Path(name), bytes);
        return m_folder.Path(name);
    }

    CTempFolder m_folder;
    std::string m_sound = File("sound.vxd", SmallFileBytes());
    std::string m_flawed = File("flawed.vxd", FileOf({{{13, 0, {1}}}}));
    std::string m_cut = File("cut.vxd", SmallFileBytes().substr(0, 4000));
    std::string m_other = File("other.txt", "text");
};

/// Returns a recording with this many segments of an unlisted well, one finding each.
std::string WithFindings(int count) {
    CSegmentTexts segments;
    for (int i = 0; i < count; ++i)
        segments.push_back({13, i * 100, {1}});
    return FileOf({segments});
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST_F(Commands, EndWithTheWorstStatusOfAllFilesInAnyOrder) {
    struct CCase {
        CWords files;
        int verify;
        int info;
    };
    const std::string missing = m_folder.Path("missing.vxd");
    for (auto c : std::vector<CCase>{{{m_sound, m_sound}, 0, 0},
                                     {{m_sound, m_flawed}, 1, 0},
                                     {{m_sound, m_cut, m_flawed}, 1, 1},
                                     {{m_other, m_sound}, 2, 2},
                                     {{missing, m_sound}, 2, 2},
                                     {{m_sound, m_other, m_cut}, 2, 2}}) {
        std::ranges::sort(c.files);
        do {
            for (const bool isJson : {false, true}) {
                CWords verify = {"verify"};
                CWords info = {"info"};
                for (auto* words : {&verify, &info}) {
                    words->insert(words->end(), c.files.begin(), c.files.end());
                    if (isJson) words->push_back("--json");
                }
                EXPECT_EQ(RunTool(verify).status, c.verify);
                EXPECT_EQ(RunTool(info).status, c.info);
            }
        } while (std::ranges::next_permutation(c.files).found);
    }
}

TEST_F(Commands, VerifyCountsTheOtherFilesOfAllFolders) {
    for (const char* const folder : {"a", "b"})
        std::filesystem::create_directory(m_folder.Path(folder));
    File("a/sound.vxd", SmallFileBytes());
    for (const char* const name : {"a/1.txt", "b/2.txt", "b/3.txt"})
        File(name, "text");
    const std::string one = "1 file: 1 sound, 0 with findings, 0 not usable; ";
    EXPECT_TRUE(RunTool({"verify", m_folder.Path("a")}).out.ends_with(one + "1 other file skipped\n"));
    EXPECT_TRUE(
        RunTool({"verify", m_folder.Path("a"), m_folder.Path("b")}).out.ends_with(one + "3 other files skipped\n"));
}

TEST_F(Commands, InfoShowsTheSmallestAndTheLargestInterval) {
    const std::string bytes = WithCell(WithCell(SmallFileBytes(), "NumberOfWells", "3"), "WellIDs", "11:12:13");
    EXPECT_TRUE(Has(RunTool({"info", File("a.vxd", WithCell(bytes, "Ticks", "100:50:100"))}).out, " 50 - 100 "));
}

TEST_F(Commands, VerifyPrintsFiftyFindingsAndCountsTheRest) {
    for (const auto& [count, more] :
         std::vector<std::pair<int, std::string>>{{50, ""}, {51, "and 1 more"}, {60, "and 10 more"}}) {
        const std::string path = File("many.vxd", WithFindings(count));
        const std::string out = RunTool({"verify", path}).out;
        EXPECT_TRUE(Has(out, std::to_string(count) + " findings\n")) << out;
        EXPECT_EQ(Has(out, " more"), !more.empty()) << out;
        EXPECT_TRUE(Has(out, more)) << out;
        EXPECT_EQ(Has(out, "segment 50 "), true);
        EXPECT_FALSE(Has(out, "segment 51 "));
        const auto json = nlohmann::json::parse(RunTool({"verify", "--json", path}).out);
        EXPECT_EQ(json["files"][0]["findingCount"], count);
        EXPECT_EQ(json["files"][0]["findings"].size(), static_cast<std::size_t>(count));
    }
}

TEST_F(Commands, DiffPrintsFiftyDifferencesAndCountsTheRest) {
    const auto file = [](std::size_t recordings, std::uint16_t sample) {
        CSegmentTexts segments;
        for (int i = 0; i < 5; ++i)
            segments.push_back({11, i * 100, {sample}});
        return FileOf(std::vector<CSegmentTexts>(recordings, segments));
    };
    for (const auto& [recordings, more] : std::vector<std::pair<std::size_t, std::string>>{{11, "5"}, {210, "1000"}}) {
        const CWords diff = {"diff", File("left.vxd", file(recordings, 1)), File("right.vxd", file(recordings, 2))};
        const CToolRun run = RunTool(diff);
        EXPECT_EQ(run.status, 1);
        EXPECT_TRUE(run.out.ends_with("\nand " + more + " more differences\n")) << run.out;
        EXPECT_EQ(std::ranges::count(run.out, '<'), 50);
    }
}

TEST_F(Commands, DiffDecodesReferencesOfDocuments) {
    const std::string references = File("a.vxs", "<Vexaprobe><Settings><A>&#128;&#65;&lt;</A></Settings></Vexaprobe>");
    const std::string bytes = File("b.vxs", "<Vexaprobe><Settings><A>\x80&#065;&#60;</A></Settings></Vexaprobe>");
    EXPECT_EQ(RunTool({"diff", references, bytes}).out, RunTool({"diff", bytes, bytes}).out);
}

TEST_F(Commands, WatchWaitsForAFileThatDoesNotExistYet) {
    const CToolRun run = RunTool({"watch", m_folder.Path("new.vxd"), "--idle", "0.05", "--every", "0.01"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "vxfile: " + m_folder.Path("new.vxd") + " doesn't exist yet; waiting for it.\n");
}

TEST(Idle, RestartsWhenAnythingNewArrives) {
    const CIdle::CTime start{};
    const auto at = [&](int milliseconds) { return start + std::chrono::milliseconds(milliseconds); };
    CIdle idle(1, start);
    EXPECT_FALSE(idle.IsOver(false, at(999)));
    EXPECT_FALSE(idle.IsOver(true, at(1500)));
    EXPECT_FALSE(idle.IsOver(false, at(2499)));
    EXPECT_TRUE(idle.IsOver(false, at(2500)));
    CIdle never(0, start);
    EXPECT_FALSE(never.IsOver(false, at(1000000000)));
}

TEST_F(Commands, ReadNumbersAsDecimal) {
    const CToolRun run = RunTool({"samples", m_sound, "--well", "011", "--to", "-0", "-o", m_folder.Path("a")});
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(ReadAll(m_folder.Path("a")), "task,recording,well,time,sample\nCompoundTest,1,11,0,1\n");
}

TEST(CommandLine, DescribesEveryCommandInHelpManualAndCompletion) {
    const CToolRun help = RunTool({"--help"});
    const CToolRun manual = RunTool({"--manual"});
    const CToolRun completion = RunTool({"--bash-completion"});
    for (const auto& command : MakeCommands()) {
        const CCommandText& text = command->Text();
        const std::string name(text.name);
        EXPECT_TRUE(Has(help.out, "  " + name + " ")) << name;
        EXPECT_TRUE(Has(help.out, std::string(text.example))) << name;
        EXPECT_TRUE(Has(manual.out, ".SS " + name + "\n")) << name;
        EXPECT_TRUE(Has(completion.out, "        " + name + ") words='")) << name;
        const CToolRun own = RunTool({name, "--help"});
        EXPECT_EQ(own.status, 0);
        EXPECT_TRUE(Has(own.out, std::string(text.statuses))) << own.out;
        std::istringstream statuses{std::string(text.statuses)};
        int next = 0;
        for (std::string line; std::getline(statuses, line);)
            next += line.starts_with("  " + std::to_string(next) + "  ") ? 1 : 0;
        EXPECT_EQ(next, 3) << name << " must describe 0, 1 and 2";
        EXPECT_FALSE(text.purpose.ends_with("."));
        EXPECT_TRUE(text.details.ends_with(".")) << name;
        EXPECT_TRUE(text.example.starts_with("vxfile " + name)) << name;
    }
}

TEST(FileKind, FollowsFromTheFirstBytes) {
    const CTempFolder folder;
    const std::string path = folder.Path("file");
    struct CCase {
        std::string bytes;
        const char* word;
    };
    for (const auto& [bytes, word] : std::vector<CCase>{
             {"", "empty"},
             {"OVL Vexaprobe", "raw"},
             {"OVL Vexaprob", "unknown"},
             {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", "workbook"},
             {"\xD0\xCF\x11\xE0", "unknown"},
             {"<Vexaprobe><Settings>", "settings"},
             {"\xEF\xBB\xBF \r\n<Vexaprobe>\n<Results ", "results"},
             {"<Vexaprobe><SettingsX>", "unknown"},
             {"<Vexaprobe>Settings<Results/>", "results"},
             {"<Other><FileType>VXResults</FileType>", "results"},
             {"<Other><FileType>VXSettings</FileType>", "settings"},
             {"text <Settings>", "unknown"},
             {"<a>" + std::string((64 << 10) - 13, ' ') + "<Settings>", "settings"},
             {"<a>" + std::string(64 << 10, ' ') + "<Settings>", "unknown"},
         }) {
        WriteAll(path, bytes);
        EXPECT_EQ(WordOf(FileKindOf(path)), word) << bytes.substr(0, 60);
    }
    EXPECT_NE(FailureOf([&] { static_cast<void>(FileKindOf(folder.Path("missing"))); }), "");
}

TEST(FolderWalk, FindsFilesByExtensionOrContentSortedByName) {
    const CTempFolder folder;
    std::filesystem::create_directories(folder.Path("b/c"));
    for (const std::string name : {"z.vxd", "b/c/A.XLS", "a.VXR", "notes.txt"})
        WriteAll(folder.Path(name), "text");
    WriteAll(folder.Path("b/run"), SmallFileBytes());
    std::error_code hasNoLinks;
    std::filesystem::create_directory_symlink(folder.Path("b"), folder.Path("b/c/back"), hasNoLinks);
    const CFolderContent content = WalkFolder(folder.Path(""));
    std::vector<std::string> names;
    for (const auto& entry : content.entries) {
        names.push_back(std::filesystem::relative(entry.path, folder.Path("")).generic_string());
        EXPECT_EQ(entry.failure, "");
    }
    EXPECT_EQ(names, (std::vector<std::string>{"a.VXR", "b/c/A.XLS", "b/run", "z.vxd"}));
    EXPECT_EQ(content.passedOver, hasNoLinks ? 1U : 2U) << "the text, and the link";
}

TEST_F(Commands, PlanNamesTheNearestUnitsThatFitAndTheirError) {
    for (const auto& [units, advice] : std::vector<std::pair<std::string, std::string>>{
             {"0.000305176",
              "units of 0.0003 instead of 0.000305176 (a warning: they make all values in physical units "
              "1.7 % smaller)"},
             {"1.23456789",
              "units of 1.2346 instead of 1.23457 (a warning: they make all values in physical units "
              "0.0026 % larger)"}}) {
        const CToolRun run = RunTool({"plan", "--wells", "54", "--ad-zero", "0", "--units", units, "--tick", "10"});
        EXPECT_EQ(run.status, 1);
        EXPECT_TRUE(Has(run.out, advice)) << run.out;
    }
}

TEST_F(Commands, EveryNumericOptionDescribesItsRange) {
    for (const auto& command : MakeCommands()) {
        for (const auto& option : command->Options()) {
            const bool isNumber = std::holds_alternative<std::int64_t*>(option.target) ||
                                  std::holds_alternative<double*>(option.target) ||
                                  std::holds_alternative<std::vector<std::int32_t>*>(option.target);
            EXPECT_TRUE(!isNumber || !option.wanted.empty()) << command->Text().name << ' ' << option.names;
        }
    }
    for (const char* units : {"nan", "1e999"}) {
        const CToolRun run = RunTool({"plan", "--wells", "5", "--ad-zero", "0", "--units", units, "--tick", "1"});
        EXPECT_EQ(run.status, 2);
        EXPECT_TRUE(Has(run.err, "isn't a finite number")) << run.err;
    }
}
