#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>

#include "tests/faults/SystemCalls.h"
#include "tests/support/TempFolder.h"
#include "tests/tools/ToolRun.h"
#include "vxfileio/frame/IResultsReader.h"

namespace {

namespace fs = std::filesystem;

}  // namespace

/// Whichever read of the inputs fails, and all later ones with it, no workbook has half of a file: there is either the
/// whole one, as the system may refuse to read on after the end of a document, or none.
TEST(ReadError, MakesExportWriteNothingAndNameTheFile) {
    const CTempFolder folder;
    const std::string reference = VXFILEIO_REFERENCE_DIR "/xml/";
    for (const std::string name : {"results.vxr", "settings.vxs"})
        fs::copy_file(reference + name, folder.Path(name));
    const auto run = [&](const std::string& target) {
        return RunTool({"export", folder.Path("results.vxr"), folder.Path("settings.vxs"), "-o", target, "--force"});
    };
    fs::create_directory(folder.Path("whole"));
    ASSERT_EQ(run(folder.Path("whole/run.xls")).status, 0);
    const std::string target = folder.Path("run.xls");
    int refused = 0;
    for (int at = 1;; ++at) {
        fs::remove(target);
        BeginCalls(at, {.error = EIO, .goesOn = true, .calls = "pread"});
        const CToolRun tried = run(target);
        if (EndCalls() < at) break;
        if (tried.status == 0) {
            EXPECT_EQ(ReadAll(target), ReadAll(folder.Path("whole/run.xls")));
            continue;
        }
        ++refused;
        EXPECT_EQ(tried.status, 2);
        EXPECT_NE(tried.err.find(folder.Path("")), std::string::npos) << tried.err;
        EXPECT_FALSE(fs::exists(target)) << "read " << at;
    }
    EXPECT_GT(refused, 4) << "each input is read to find its kind, and again";
}

/// `table` doesn't build the results, but reports what the reader that does reports.
TEST(ReadError, IsTheSameInATable) {
    struct CDamage {
        std::string_view old;
        std::string_view text;
    };
    constexpr CDamage kDamages[] = {
        {"<Recordings Size=\"3", "<Recordings Size=\"4"},
        {"<Wells Size=\"3", "<Wells Size=\"-1"},
        {"<Task>", "<Task/><Task>"},
        {"</TaskName>", "</TaskNam>"},
    };
    const CTempFolder folder;
    const std::string path = folder.Path("results.vxr");
    const std::string whole = ReadAll(VXFILEIO_REFERENCE_DIR "/xml/results.vxr");
    for (const CDamage& damage : kDamages) {
        std::string document = whole;
        const std::size_t at = document.find(damage.old);
        if (at == std::string::npos) ADD_FAILURE() << damage.old;
        WriteAll(path, document.replace(at, damage.old.size(), damage.text));
        CIResultsReader reader;
        reader.ReadFile(path);
        const CToolRun table =
            RunTool({"table", path, "--what", "responses", "-o", folder.Path("table.csv"), "--force"});
        EXPECT_EQ(table.status, 1) << damage.text;
        EXPECT_EQ(table.err, "vxfile: " + path + ": " + reader.GetReadError() + '\n');
    }
}
