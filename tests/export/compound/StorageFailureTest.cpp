#include "tests/export/compound/StorageTest.h"

namespace {

using StorageFailureTest = StorageTest;

TEST_F(StorageFailureTest, ClosedStorageTakesNothing) {
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

TEST_F(StorageFailureTest, FileThatCannotBeMadeIsSeenByIsOpenAlone) {
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
TEST_F(StorageFailureTest, FullDiskIsToldBesideTheResults) {
    m_storage.Create("/dev/full");
    EXPECT_TRUE(m_storage.IsOpen());
    EXPECT_EQ(m_storage.MakeFile("Workbook"), 1);
    EXPECT_EQ(Write("Workbook", Pattern(5000)), 1);
    EXPECT_FALSE(m_storage.IsComplete());
}
#endif

TEST_F(StorageFailureTest, MoreThanAStreamHoldsIsRefusedUnseen) {
    Add("Workbook", "kept");
    const std::string before = Bytes();
    const auto* nothing = reinterpret_cast<const std::byte*>(before.data());  // its size is never touched
    EXPECT_EQ(m_storage.WriteFile("Workbook", {nothing, (std::size_t{1} << 31) + 1}), -3);
    EXPECT_EQ(m_storage.WriteFile("missing", {nothing, (std::size_t{1} << 31) + 1}), -4);
    EXPECT_EQ(Bytes(), before);
}

}  // namespace
