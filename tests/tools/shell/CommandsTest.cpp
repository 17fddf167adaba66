#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/Idle.h"

using namespace vxfile;

namespace {

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

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
             {"<Vexaprobe>Settings Results<Results/>", "results"},
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

TEST(CommandLine, EveryNumericOptionDescribesItsRange) {
    for (const auto& command : MakeCommands()) {
        for (const auto& option : command->Options()) {
            const bool isNumber = std::holds_alternative<std::int64_t*>(option.target) ||
                                  std::holds_alternative<double*>(option.target) ||
                                  std::holds_alternative<std::vector<std::int32_t>*>(option.target);
            EXPECT_TRUE(!isNumber || !option.wanted.empty()) << command->Text().name << ' ' << option.names;
        }
    }
}
