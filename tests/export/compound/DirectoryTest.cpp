#include "tests/export/compound/StorageTest.h"

namespace {

using DirectoryTest = StorageTest;

constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// Returns every entry as "index name left right child".
std::vector<std::string> Links(const CompoundReader& reader) {
    const auto text = [](std::uint32_t index) { return index == kNone ? "-" : std::to_string(index); };
    std::vector<std::string> links;
    for (const auto& entry : reader.entries)
        links.push_back(entry.name + " " + text(entry.left) + " " + text(entry.right) + " " + text(entry.child));
    return links;
}

using Lines = std::vector<std::string>;

TEST_F(DirectoryTest, InvalidNamesAreRefusedWithTheirReason) {
    EXPECT_EQ(m_storage.MakeFile(""), -1);
    EXPECT_EQ(m_storage.MakeFile("\\"), -1);
    EXPECT_EQ(m_storage.MakeFile("a\\"), -1);
    EXPECT_EQ(m_storage.MakeDirectory(".."), -1);
    EXPECT_EQ(m_storage.MakeFile("a\\."), -1);
    EXPECT_EQ(m_storage.MakeFile(std::string(31, 'n')), 1);
    EXPECT_EQ(m_storage.MakeFile(std::string(31, 'n')), -6);
    EXPECT_EQ(m_storage.MakeDirectory(std::string(31, 'n')), -6);
    EXPECT_EQ(m_storage.MakeFile(std::string(32, 'n')), -5);
    EXPECT_EQ(m_storage.MakeDirectory(std::string(100000, 'n')), -5);
    EXPECT_EQ(m_storage.MakeFile(std::string(31, 'n') + "\\below"), -6);  // a stream, not a storage
    EXPECT_EQ(Links(Read()), (Lines{"Root Entry - - 1", std::string(31, 'n') + " - - -"}));

    EXPECT_EQ(m_storage.MakeFile("s\\" + std::string(32, 'n')), -5);
    EXPECT_EQ(Read().storages, Lines{"s"});  // made on the way
    EXPECT_EQ(m_storage.MakeDirectory("s"), -6);
    EXPECT_EQ(m_storage.MakeFile("s\\s"), 1);  // the same name elsewhere
    EXPECT_EQ(m_storage.MakeFile("S"), 1);
    const std::string high = "\xC4\xFF\x80";
    EXPECT_EQ(m_storage.MakeFile(high), 1);
    const std::string bytes = Bytes();
    EXPECT_NE(bytes.find(std::string("\xC4\0\xFF\0\x80\0\0", 7)), std::string::npos);
    EXPECT_EQ(Read().streams.count(high), 1U);
}

TEST_F(DirectoryTest, SiblingsHangFromTheMiddleInTheOrderOfTheirNames) {
    for (const std::string name : {"e", "bb", "a", "ccc", "Z"})
        EXPECT_EQ(m_storage.MakeFile(name), 1);
    EXPECT_EQ(Links(Read()), (Lines{"Root Entry - - 3", "Z - - -", "a 1 - -", "e 2 4 -", "bb - 5 -", "ccc - - -"}));
    EXPECT_EQ(m_storage.MakeFile("\x80"), 1);  // as a number, not as a character
    EXPECT_EQ(Links(Read()),
              (Lines{"Root Entry - - 4", "Z - - -", "a 1 - -", "e 2 - -", "\x80 3 5 -", "bb - 6 -", "ccc - - -"}));
}

TEST_F(DirectoryTest, PathsStartAtTheRootOrTheCurrentStorage) {
    EXPECT_EQ(m_storage.MakeFile("\\a\\b\\c"), 1);
    EXPECT_EQ(m_storage.ChangeDirectory(""), -1);
    EXPECT_EQ(m_storage.ChangeDirectory("b"), -2);
    EXPECT_EQ(m_storage.ChangeDirectory("a\\b\\c"), -2);  // a stream
    EXPECT_EQ(m_storage.ChangeDirectory("a"), 1);
    EXPECT_EQ(m_storage.MakeFile("in a"), 1);
    EXPECT_EQ(m_storage.ChangeDirectory(".\\b\\."), 1);
    EXPECT_EQ(m_storage.MakeFile("in b"), 1);
    EXPECT_EQ(m_storage.ChangeDirectory("x"), -2);
    EXPECT_EQ(m_storage.MakeFile("..\\..\\in root"), 1);
    EXPECT_EQ(m_storage.MakeFile("\\\\also in root"), 1);
    EXPECT_EQ(Write("c", "content of c"), 1);  // still in b
    EXPECT_EQ(m_storage.ChangeDirectory("..\\..\\..\\.."), 1);
    EXPECT_EQ(Write("in a", "?"), -4);
    EXPECT_EQ(Write("a\\in a", "content in a"), 1);
    EXPECT_EQ(m_storage.ChangeDirectory("a\\b"), 1);
    EXPECT_EQ(m_storage.ChangeDirectory("\\"), 1);
    EXPECT_EQ(Write("in root", "content in root"), 1);
    const CompoundReader reader = Read();
    EXPECT_EQ(reader.storages, (Lines{"a", "a/b"}));
    EXPECT_EQ(reader.streams, (std::map<std::string, std::string>{{"a/b/c", "content of c"},
                                                                  {"a/b/in b", ""},
                                                                  {"a/in a", "content in a"},
                                                                  {"also in root", ""},
                                                                  {"in root", "content in root"}}));
}

TEST_F(DirectoryTest, DirectoryGrowsOverManySectors) {
    Add("first", Pattern(5000));
    std::map<std::string, std::string> expected = {{"first", Pattern(5000)}};
    for (unsigned i = 0; i < 600; ++i) {
        const std::string name = "s" + std::to_string(i % 7) + "\\" + std::to_string(i * 7919 % 600);
        ASSERT_EQ(m_storage.MakeFile(name), 1);
        std::string path = name;
        path.replace(2, 1, "/");
        expected[path] = "";
    }
    Write("s3\\" + std::to_string(3 * 7919 % 600), "third");
    expected["s3/" + std::to_string(3 * 7919 % 600)] = "third";
    const CompoundReader reader = Read();
    EXPECT_EQ(reader.streams, expected);
    EXPECT_EQ(reader.entries.size(), 609U);  // in 153 sectors
    EXPECT_EQ(reader.SectorsInUse(), 2U + 10 + 153 + 2);
}

}  // namespace
