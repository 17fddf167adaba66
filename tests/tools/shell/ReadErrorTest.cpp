#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <string>

#include "tests/faults/SystemCalls.h"
#include "tests/support/TempFolder.h"
#include "tests/tools/ToolRun.h"

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

TEST(ReadError, MakesVerifyNameAFileInAFolderEvenIfItsExtensionIsUnknown) {
    const CTempFolder folder;
    fs::copy_file(VXFILEIO_REFERENCE_DIR "/small_example.vxd", folder.Path("saved.dat"));
    BeginCalls(1, {.error = EIO, .goesOn = true, .calls = "pread"});
    const CToolRun run = RunTool({"verify", folder.Path("")});
    EndCalls();
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("saved.dat"), std::string::npos) << run.err;
}

TEST(RefusedRename, MakesExportNameTheWorkbookAndLeaveNone) {
    const CTempFolder folder;
    for (const std::string name : {"results.vxr", "settings.vxs"})
        fs::copy_file(VXFILEIO_REFERENCE_DIR "/xml/" + name, folder.Path(name));
    BeginCalls(1, {.error = ENOSPC, .goesOn = true, .calls = "rename link"});
    const CToolRun run =
        RunTool({"export", folder.Path("results.vxr"), folder.Path("settings.vxs"), "-o", folder.Path("run.xls")});
    EXPECT_GT(EndCalls(), 0);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find(folder.Path("run")), std::string::npos) << run.err;
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path("")), fs::directory_iterator()), 2);
}
