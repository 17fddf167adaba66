#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "tests/faults/Plays.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/TempFolder.h"

namespace {

/// Calls the operation. Returns whether it ran out of memory; any other exception fails the test.
bool RunsOutOfMemory(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const std::bad_alloc&) {
        return true;
    }
    return false;
}

/// Fails every allocation for every kind of file.
class AllocationFailuresTest : public testing::TestWithParam<CKind> {
 protected:
    /// Writes the file over an older one. The `failing`-th allocation fails; the call in which it happens is repeated,
    /// or else is the last one. Returns whether there were that many allocations.
    bool Write(std::size_t failing, bool again) {
        if (m_kind.isReplaced) WriteAll(m_path, kOld);
        CVXFileIO io;
        const auto steps = m_kind.steps(io, m_path);
        const std::size_t last = AllocationCount() + failing;
        FailAllocation(failing);
        for (const auto& step : steps) {
            if (!RunsOutOfMemory(step)) continue;
            FailAllocation(0);
            ExpectOldIfReplaced();
            m_unfinished += m_kind.writeError(io) == "Not finished: " + m_path ? 1 : 0;
            if (!again) return true;
            step();
        }
        FailAllocation(0);
        EXPECT_EQ(m_kind.writeError(io), "");
        return AllocationCount() >= last;
    }

    void ExpectOldIfReplaced() {
        if (!m_kind.isReplaced) return;
        EXPECT_EQ(BytesOf(m_path), kOld);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Path("")), {}), 1) << "nothing beside it";
    }

    static constexpr const char* kOld = "what was there before";
    static constexpr std::size_t kNever = std::size_t{1} << 40;

    CKind m_kind = GetParam();
    CTempFolder m_folder;
    std::string m_path = m_folder.Path(m_kind.file);
    std::size_t m_unfinished = 0;  ///< Number of times that a file was left incomplete for lack of memory.
};

TEST_P(AllocationFailuresTest, ACallThatRanOutOfMemoryCanBeMadeAgain) {
    Write(kNever, true);
    const std::string whole = BytesOf(m_path);
    const std::size_t live = LiveAllocations();
    std::size_t failing = 1;
    for (bool goesOn = true; goesOn; ++failing) {
        goesOn = Write(failing, true);
        ASSERT_EQ(BytesOf(m_path), whole) << "after the failure of allocation " << failing;
        ASSERT_EQ(LiveAllocations(), live) << "after the failure of allocation " << failing;
    }
    EXPECT_GT(failing, 5U);
    const bool isWrittenAtOnce = m_kind.isReplaced || m_kind.read == nullptr;
    EXPECT_TRUE(!isWrittenAtOnce || m_unfinished > 5) << m_unfinished;
}

TEST_P(AllocationFailuresTest, AWriterThatRanOutOfMemoryCanBeDestroyed) {
    Write(kNever, true);
    const std::size_t live = LiveAllocations();
    const std::string all = "0 1 2 3 4 5 ";
    for (std::size_t failing = 1; Write(failing, false); ++failing) {
        ASSERT_EQ(LiveAllocations(), live) << "after the failure of allocation " << failing;
        if (m_kind.isReplaced || m_kind.read == nullptr) continue;
        CVXFileIO io;
        try {
            ASSERT_TRUE(all.starts_with(m_kind.read(io, m_path))) << "after the failure of allocation " << failing;
        } catch (const CExcVXReader& failure) {
            ASSERT_TRUE(failure.GetMsg().starts_with("Opened file")) << failure.GetMsg();
        }
    }
}

TEST_P(AllocationFailuresTest, AReaderThatRanOutOfMemoryReadsTheNextTime) {
    if (m_kind.read == nullptr) return;  // there is no reader
    Write(kNever, true);
    std::string content;
    const auto readWith = [&](CVXFileIO& io) { content = m_kind.read(io, m_path); };
    CVXFileIO io;
    readWith(io);
    const std::string whole = content;
    const std::size_t live = LiveAllocations();
    std::size_t last = 0;
    std::size_t failing = 1;
    do {
        CVXFileIO fresh;
        last = AllocationCount() + failing;
        FailAllocation(failing++);
        const bool isOut = RunsOutOfMemory([&] { readWith(fresh); });
        FailAllocation(0);
        if (isOut) readWith(fresh);
        ASSERT_EQ(content, whole) << "after the failure of allocation " << failing - 1;
    } while (AllocationCount() >= last);
    EXPECT_GT(failing, 5U);
    EXPECT_EQ(LiveAllocations(), live);
}

TEST(FacadeAllocationTest, NoFacadeIsHalfMade) {
    const std::size_t live = LiveAllocations();
    std::size_t failing = 0;
    do {
        FailAllocation(++failing);
    } while (RunsOutOfMemory([] { const CVXFileIO io; }));
    FailAllocation(0);
    EXPECT_GT(failing, 7U);
    EXPECT_EQ(LiveAllocations(), live);
}

INSTANTIATE_TEST_SUITE_P(Kinds, AllocationFailuresTest, testing::ValuesIn(AllKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
