#include "vxfileio/helpers/ReplacingFile.h"

#include <gtest/gtest.h>

#if defined(__unix__)
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <span>

#include "tests/support/TempFolder.h"

namespace {

using namespace vxfileio::helpers;
namespace fs = std::filesystem;

class ReplacingFileTest : public testing::Test {
 protected:
    bool Put(const std::string& content) { return m_file.File().Append({std::as_bytes(std::span(content))}); }

    /// Replaces a file, which must succeed.
    void Replace(const std::string& path, const std::string& content) {
        ASSERT_TRUE(m_file.Create(path));
        EXPECT_TRUE(Put(content));
        EXPECT_TRUE(m_file.Commit()) << m_file.WriteError();
        EXPECT_EQ(m_file.WriteError(), "");
    }

    std::ptrdiff_t CountFiles() { return std::distance(fs::directory_iterator(m_folder.Path("")), {}); }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("file");
    CReplacingFile m_file;
};

TEST_F(ReplacingFileTest, TheOldFileStaysUntilTheNewOneIsComplete) {
    Replace(m_path, "first");
    EXPECT_EQ(ReadAll(m_path), "first");
    CFile reader;
    ASSERT_TRUE(reader.OpenForReading(m_path));
    ASSERT_TRUE(m_file.Create(m_path));
    EXPECT_TRUE(Put("second"));
    EXPECT_EQ(ReadAll(m_path), "first");
    reader.Close();
    EXPECT_TRUE(m_file.Commit());
    EXPECT_EQ(ReadAll(m_path), "second");

    ASSERT_TRUE(m_file.Create(m_path));
    EXPECT_TRUE(Put("third"));
    ASSERT_TRUE(m_file.Create(m_path)) << "starting again discards the first attempt";
    EXPECT_EQ(CountFiles(), 2);
    {
        CReplacingFile other;
        ASSERT_TRUE(other.Create(m_path));
        EXPECT_EQ(CountFiles(), 3) << "two at once have different names";
    }
    EXPECT_TRUE(m_file.Commit());
    EXPECT_EQ(ReadAll(m_path), "");
    EXPECT_EQ(CountFiles(), 1);
}

TEST_F(ReplacingFileTest, AFileThatAReaderHasOpenCanBeReplaced) {
    WriteAll(m_path, "old");
    CFile reader;
    ASSERT_TRUE(reader.OpenForReading(m_path));
    Replace(m_path, "new content");
    EXPECT_EQ(ReadAll(m_path), "new content");
    EXPECT_EQ(CountFiles(), 1);
}

// Killed programs may have left files of all names.
TEST_F(ReplacingFileTest, TheFileIsWrittenInPlaceIfNoNameIsFree) {
    constexpr int kNames = 100;
    for (int i = 0; i < kNames; ++i)
        WriteAll(m_path + ".part" + std::to_string(i + 1), "");
    WriteAll(m_path, "old");
    Replace(m_path, "new");
    EXPECT_EQ(ReadAll(m_path), "new");
    EXPECT_EQ(CountFiles(), kNames + 1);
}

TEST_F(ReplacingFileTest, ANewFileIsRefusedIfOneExistsOrAppears) {
    using enum CReplacingFile::ERule;
    WriteAll(m_path, "old");
    EXPECT_FALSE(m_file.Create(m_path, New));
    EXPECT_EQ(m_file.Failure().error, std::errc::file_exists);
    fs::remove(m_path);
    ASSERT_TRUE(m_file.Create(m_path, New));
    EXPECT_TRUE(Put("mine"));
    WriteAll(m_path, "another program's");
    EXPECT_FALSE(m_file.Commit());
    EXPECT_EQ(m_file.Failure().error, std::errc::file_exists);
    EXPECT_EQ(ReadAll(m_path), "another program's");
    EXPECT_EQ(CountFiles(), 1);
}

#if !defined(_WIN32)  // limits whole paths instead of names
// The temporary file has a longer name. It is in the same folder, whose name is long, too.
TEST_F(ReplacingFileTest, AFileWithTheLongestNameIsReplaced) {
    const std::string folder = m_folder.Path(std::string(255, 'f')) + '/';
    fs::create_directory(folder);
    const std::string path = folder + std::string(255, 'n');
    Replace(path, "first");
    Replace(path, "second");
    EXPECT_EQ(ReadAll(path), "second");
    ASSERT_TRUE(m_file.Create(path));
    EXPECT_EQ(m_file.WorkPath(), folder + std::string(240, 'n') + ".part1");
    EXPECT_TRUE(m_file.Commit());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
}
#endif

/// Starts three files: one that replaces another, and two new ones.
class ReplacingFilesTest : public ReplacingFileTest {
 protected:
    void SetUp() override {
        WriteAll(m_path, "old");
        const std::string paths[] = {m_path, m_folder.Path("new"), m_folder.Path("last")};
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_TRUE(m_files[i].Create(paths[i], CReplacingFile::ERule::Replace));
            ASSERT_TRUE(m_files[i].File().Append({std::as_bytes(std::span(paths[i]))}));
        }
    }
    bool CommitAll() {
        CReplacingFile* const files[] = {&m_files[0], &m_files[1], &m_files[2]};
        return CReplacingFile::CommitAll(files);
    }

    CReplacingFile m_files[3];
};

TEST_F(ReplacingFilesTest, FilesAreReplacedTogether) {
    EXPECT_EQ(CountFiles(), 4);
    EXPECT_TRUE(CommitAll());
    for (const char* const name : {"file", "new", "last"})
        EXPECT_EQ(ReadAll(m_folder.Path(name)), m_folder.Path(name));
    EXPECT_EQ(CountFiles(), 3);
}

TEST_F(ReplacingFilesTest, ARefusedMoveKeepsTheOldFilesAndLeavesNoNewOne) {
    fs::create_directories(m_folder.Path("last/in the way"));
    EXPECT_FALSE(CommitAll());
    EXPECT_EQ(m_files[2].Failure().step, CFileFailure::enStep::Replacing);
    EXPECT_FALSE(m_files[0].Failure());
    EXPECT_EQ(ReadAll(m_path), "old");
    EXPECT_EQ(CountFiles(), 2) << "the old file and the folder";
}

TEST_F(ReplacingFilesTest, AnIncompleteFileKeepsTheOldFilesAndLeavesNoNewOne) {
    EXPECT_FALSE(m_files[2].File().WriteAt(-1, {std::as_bytes(std::span("no such place"))}));
    EXPECT_FALSE(CommitAll());
    EXPECT_EQ(ReadAll(m_path), "old");
    EXPECT_EQ(CountFiles(), 1);

    SetUp();
    EXPECT_TRUE(CommitAll());
    SetUp();  // uses the same objects again
    EXPECT_FALSE(m_files[2].File().WriteAt(-1, {std::as_bytes(std::span("no such place"))}));
    EXPECT_FALSE(CommitAll());
    EXPECT_EQ(CountFiles(), 3) << "the committed files stay";
}

TEST_F(ReplacingFileTest, FailureToOpenIsReportedAndLeavesNothing) {
    for (const std::string& path :
         {m_folder.Path("missing/file"), m_folder.Path(""), std::string(), m_folder.Path(std::string("nul\0", 4))}) {
        EXPECT_FALSE(m_file.Create(path));
        EXPECT_NE(m_file.WriteError().find(", opening " + path), std::string::npos) << m_file.WriteError();
    }
    EXPECT_EQ(CountFiles(), 0);
}

#if defined(__unix__)
TEST_F(ReplacingFileTest, APlantedLinkIsNotFollowed) {
    WriteAll(m_folder.Path("victim"), "valuable");
    fs::create_symlink("victim", m_path + ".part1");
    Replace(m_path, "new");
    EXPECT_EQ(ReadAll(m_folder.Path("victim")), "valuable");
    EXPECT_EQ(ReadAll(m_path), "new");
    EXPECT_FALSE(fs::is_symlink(m_path));
}

TEST_F(ReplacingFileTest, PrivateContentIsPrivateWhileItIsWritten) {
    WriteAll(m_path, "old");
    fs::permissions(m_path, fs::perms(0600));
    ASSERT_TRUE(m_file.Create(m_path));
    EXPECT_EQ(fs::status(m_file.WorkPath()).permissions(), fs::perms(0600));
    EXPECT_TRUE(m_file.Commit());
    EXPECT_EQ(fs::status(m_path).permissions(), fs::perms(0600));
}

TEST_F(ReplacingFileTest, LinksStayAndRightsAreKept) {
    fs::create_directory(m_folder.Path("sub"));
    const std::string target = m_folder.Path("sub/target");
    WriteAll(target, "old");
    fs::permissions(target, fs::perms(0640));
    fs::create_hard_link(target, m_folder.Path("copy"));
    fs::create_symlink("sub/target", m_folder.Path("link"));
    fs::create_symlink(m_folder.Path("link"), m_path);
    Replace(m_path, "new");
    EXPECT_TRUE(fs::is_symlink(m_path) && fs::is_symlink(m_folder.Path("link")));
    EXPECT_EQ(ReadAll(target), "new");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
    EXPECT_EQ(ReadAll(m_folder.Path("copy")), "old") << "the other hard link keeps the old file";

    fs::remove(target);  // the link is dangling now
    Replace(m_folder.Path("sub\\..\\file"), "made");
    EXPECT_TRUE(fs::is_symlink(m_path));
    EXPECT_EQ(ReadAll(target), "made");
    WriteAll(m_folder.Path("plain"), "");
    EXPECT_EQ(fs::status(target).permissions(), fs::status(m_folder.Path("plain")).permissions())
        << "like any new file";
}

TEST_F(ReplacingFileTest, DevicesAndRemovedFilesAreWrittenInPlace) {
    Replace("/dev/null", "nothing");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    fs::create_symlink("/dev/full", m_path);
    ASSERT_TRUE(m_file.Create(m_path));
    EXPECT_FALSE(Put("much"));
    EXPECT_FALSE(m_file.Commit());
    EXPECT_EQ(m_file.WriteError(), "No space left on device, writing 4 bytes at 0 of " + m_path);
    EXPECT_TRUE(fs::is_symlink(m_path));
    EXPECT_EQ(CountFiles(), 1);

    const std::string pipe = m_folder.Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    EXPECT_FALSE(m_file.Create(pipe)) << "a pipe without a reader is refused immediately";
    EXPECT_EQ(m_file.WriteError(), "No such device or address, opening " + pipe);

    // A removed file still exists for processes that have it open. The system's name for it may be another file's.
    const std::string removed = m_folder.Path("removed");
    WriteAll(removed, "old");
    const int handle = ::open(removed.c_str(), O_RDONLY | O_CLOEXEC);
    fs::remove(removed);
    WriteAll(removed + " (deleted)", "another");
    Replace("/proc/self/fd/" + std::to_string(handle), "new");
    EXPECT_EQ(ReadAll("/proc/self/fd/" + std::to_string(handle)), "new");
    EXPECT_EQ(ReadAll(removed + " (deleted)"), "another");
    ::close(handle);
}
#endif

}  // namespace
