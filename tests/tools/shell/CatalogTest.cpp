#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <thread>

#include "tests/support/TempFolder.h"
#include "tests/tools/RawBytes.h"
#include "tools/vxfile/shell/catalog/CatalogEntry.h"

using namespace vxfile;

TEST(Catalog, AFileThatSeemsDamagedButChangesIsUnfinished) {
    const CTempFolder folder;
    const std::string path = folder.Path("run.vxd");
    WriteAll(path, "not a file of this system");
    EXPECT_EQ(ScanFile(path).state, kDamaged);
    std::atomic<bool> isEnded = false;
    std::jthread writer([&] {
        std::ofstream file(path, std::ios::app);
        while (!isEnded)
            file << 'x' << std::flush;
    });
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    CCatalogEntry entry;
    while (entry.state != kUnfinished && std::chrono::steady_clock::now() < end)
        entry = ScanFile(path);
    isEnded = true;
    EXPECT_EQ(entry.state, kUnfinished);
    EXPECT_EQ(entry.reason, "It changed while it was read.");
}

TEST(Catalog, ARecordingWhoseUnitIsNoNumberIsDamagedAndSoIsItsFile) {
    const CTempFolder folder;
    const std::string path = folder.Path("run.vxd");
    for (const bool isFinished : {true, false}) {
        WriteAll(path, WithCell(FileOf({{{11, 0, {1, 2}}}}, isFinished), "UnitsPerADs", "1x:2"));
        const CCatalogEntry entry = ScanFile(path);
        EXPECT_EQ(entry.state, kDamaged);
        ASSERT_EQ(entry.recordings.size(), 1U);
        EXPECT_EQ(entry.recordings[0].state, kDamaged);
    }
}

TEST(Catalog, AFileWithoutARecordingIsUnfinished) {
    const CTempFolder folder;
    WriteAll(folder.Path("run.vxd"), FileOf({}));
    const CCatalogEntry entry = ScanFile(folder.Path("run.vxd"));
    EXPECT_EQ(entry.state, kUnfinished);
    EXPECT_EQ(entry.reason, "It has no recording yet.");
}
