#include "tests/support/FullDisk.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "tests/faults/SystemCalls.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/support/TempFolder.h"
#include "tests/tools/ToolRun.h"

namespace {

namespace fs = std::filesystem;

/// Recovers a file with one damaged key, which comes out as it was before, on a disk that refuses to write.
class RecoverOnAFullDisk : public testing::TestWithParam<const char*> {
 protected:
    void SetUp() override {
        m_bytes.replace(3650 + 250, 4, "????");
        WriteAll(m_source, m_bytes);
        ASSERT_EQ(Run(m_whole).status, 1);
        ASSERT_EQ(ReadAll(m_whole), SmallFileBytes());
        Restore();
    }

    CToolRun Run(const std::string& target) const { return RunTool({"recover", m_source, "-o", target, "--force"}); }

    /// Puts back what was there before a run: an older file, or none.
    void Restore() const {
        fs::remove(m_target);
        if (*GetParam() != '\0') WriteAll(m_target, GetParam());
    }

    std::string Target() const { return fs::exists(m_target) ? ReadAll(m_target) : std::string(); }

    /// Expects an error that names the target, and every file as it was.
    void ExpectRefused(const CToolRun& run) const {
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find(m_target), std::string::npos) << run.err;
        EXPECT_EQ(Target(), GetParam());
        ExpectNothingElse();
    }

    /// Expects that the input is unchanged and that no other file was left.
    void ExpectNothingElse() const {
        EXPECT_EQ(ReadAll(m_source), m_bytes);
        const fs::directory_iterator files(m_folder.Path(""));
        EXPECT_EQ(std::distance(begin(files), end(files)), fs::exists(m_target) ? 3 : 2);
    }

    CTempFolder m_folder;
    std::string m_bytes = SmallFileBytes();
    std::string m_source = m_folder.Path("damaged.vxd");
    std::string m_target = m_folder.Path("saved.vxd");
    std::string m_whole = m_folder.Path("whole.vxd");
};

TEST_P(RecoverOnAFullDisk, LeavesNoPartOfTheNewFile) {
    const std::size_t size = SmallFileBytes().size();
    for (std::size_t missing = 1; missing <= size; missing += 97) {
        const CToolRun run = [&] {
            const CFullDisk disk(size - missing);
            return Run(m_target);
        }();
        ExpectRefused(run);
    }
    const CFullDisk disk(size);
    EXPECT_EQ(Run(m_target).status, 1);
    EXPECT_EQ(Target(), SmallFileBytes());
}

TEST_P(RecoverOnAFullDisk, ReportsEachCallThatFails) {
    int refused = 0;
    for (int at = 1;; ++at) {
        Restore();
        BeginCalls(at, {.error = ENOSPC, .goesOn = true, .calls = "pwritev fdatasync fsync rename link"});
        const CToolRun run = Run(m_target);
        if (EndCalls() < at) break;
        // Once the new file is in place, only its name may fail to be flushed.
        if (Target() != GetParam()) {
            EXPECT_EQ(Target(), SmallFileBytes());
            EXPECT_EQ(run.status, 2);
            ExpectNothingElse();
            continue;
        }
        ++refused;
        ExpectRefused(run);
        EXPECT_NE(run.err.find("No space left on device"), std::string::npos) << run.err;
    }
    EXPECT_GE(refused, 5) << "three headers, samples, and putting the file in place";
}

INSTANTIATE_TEST_SUITE_P(, RecoverOnAFullDisk, testing::Values("", "an older file"));

}  // namespace
