#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <thread>

#include "tests/support/TempFolder.h"
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
