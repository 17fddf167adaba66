#include <new>

#include "tests/export/compound/StorageTest.h"
#include "tests/support/AllocationCount.h"

using vxfileio::compound::CompoundStorage;

namespace {

using StorageFailureTest = StorageTest;

TEST_F(StorageFailureTest, ClosedStorageAcceptsNothing) {
    m_storage.Close();
    const std::string before = Bytes();
    CompoundStorage fresh;
    for (CompoundStorage* storage : {&m_storage, &fresh}) {
        EXPECT_FALSE(storage->IsOpen());
        EXPECT_FALSE(storage->IsComplete());
        EXPECT_EQ(storage->MakeFile("a"), -2);
        EXPECT_EQ(storage->MakeFile("\\a"), -2);
        EXPECT_EQ(storage->MakeDirectory("a\\b"), -2);
        EXPECT_EQ(storage->MakeFile(""), -1);
        EXPECT_EQ(storage->ChangeDirectory("\\"), -2);
        EXPECT_EQ(storage->WriteFile("a", {}), -4);
        storage->Close();
    }
    EXPECT_EQ(Bytes(), before);
}

TEST_F(StorageFailureTest, OnlyIsOpenAndIsCompleteShowThatTheFileCannotBeCreated) {
    for (const std::string& path : {m_folder.Path("missing/file.xls"), m_folder.Path(""), std::string(),
                                    m_folder.Path(std::string("nul\0.xls", 8))}) {
        EXPECT_TRUE(m_storage.Create(path));
        EXPECT_FALSE(m_storage.IsOpen());
        EXPECT_FALSE(m_storage.IsComplete());
        EXPECT_EQ(m_storage.MakeFile("s\\Workbook"), 1);
        EXPECT_EQ(m_storage.MakeFile("s\\Workbook"), -6);
        EXPECT_EQ(Write("s\\Workbook", Pattern(100)), 1);
        EXPECT_EQ(Write("s\\Workbook", Pattern(100000)), 1);
        EXPECT_EQ(Write("other", ""), -4);
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Path("")), {}), 1);
    EXPECT_TRUE(m_storage.Create(m_path));
    EXPECT_TRUE(m_storage.IsOpen());
    Add("Workbook", "whole");
    EXPECT_TRUE(m_storage.IsComplete());
    EXPECT_EQ(Read().streams.at("Workbook"), "whole");
}

#if defined(__linux__)
TEST_F(StorageFailureTest, OnlyIsCompleteShowsAFullDisk) {
    m_storage.Create("/dev/full");
    EXPECT_TRUE(m_storage.IsOpen());
    EXPECT_EQ(m_storage.MakeFile("Workbook"), 1);
    EXPECT_EQ(Write("Workbook", Pattern(5000)), 1);
    EXPECT_FALSE(m_storage.IsComplete());
}
#endif

TEST_F(StorageFailureTest, TooLargeAStreamIsRefusedWithoutReadingIt) {
    Add("Workbook", "kept");
    const std::string before = Bytes();
    const auto* nothing = reinterpret_cast<const std::byte*>(before.data());  // far smaller than the size passed below
    EXPECT_EQ(m_storage.WriteFile("Workbook", {nothing, (std::size_t{1} << 31) + 1}), -3);
    EXPECT_EQ(m_storage.WriteFile("missing", {nothing, (std::size_t{1} << 31) + 1}), -4);
    EXPECT_EQ(Bytes(), before);
}

TEST_F(StorageFailureTest, FewerBytesThanDeclaredAreIncomplete) {
    Add("Workbook", "whole");
    EXPECT_EQ(WriteInPieces("Workbook", Pattern(8 * kSector), 2 * kSector, 9 * kSector), 1);
    EXPECT_FALSE(m_storage.IsComplete());
}

// The stream can be written after any allocation fails, with the same size or one on the other side of 4096 bytes.
TEST_F(StorageFailureTest, StreamCanBeWrittenAgainAfterAnAllocationFails) {
    const std::string big = Pattern(200000);
    const std::string small = Pattern(3000, 2);
    for (const auto& [refused, next] : {std::pair(big, big), {big, small}, {small, big}, {small, small}}) {
        bool failed = true;
        for (std::size_t count = 1; failed; ++count) {
            m_storage.Create(m_path);
            Add("other", Pattern(100, 3));
            m_storage.MakeFile("Workbook");
            FailAllocation(count);
            try {
                Write("Workbook", refused);
                failed = false;
            } catch (const std::bad_alloc&) {
            }
            FailAllocation(0);
            Write("Workbook", next);
            const CompoundReader reader = Read();
            ASSERT_EQ(reader.streams.at("Workbook"), next) << refused.size() << ", " << count;
            ASSERT_EQ(reader.streams.at("other"), Pattern(100, 3)) << refused.size() << ", " << count;
        }
    }
}

}  // namespace
