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

/// Whichever read of the inputs fails, and all later ones with it, no workbook tells of half a file.
TEST(ReadError, MakesExportWriteNothingAndNameTheFile) {
    const CTempFolder folder;
    const std::string reference = VXFILEIO_REFERENCE_DIR "/xml/";
    for (const std::string name : {"results.vxr", "settings.vxs"})
        fs::copy_file(reference + name, folder.Path(name));
    int at = 1;
    for (;; ++at) {
        BeginCalls(at, {.error = EIO, .goesOn = true, .calls = "pread"});
        const CToolRun run =
            RunTool({"export", folder.Path("results.vxr"), folder.Path("settings.vxs"), "-o", folder.Path("run.xls")});
        if (EndCalls() < at) break;
        EXPECT_EQ(run.status, 2) << "read " << at;
        EXPECT_NE(run.err.find(folder.Path("")), std::string::npos) << run.err;
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path("")), fs::directory_iterator()), 2) << run.out;
    }
    EXPECT_GT(at, 4) << "each input is read to find its kind, and again";
}
