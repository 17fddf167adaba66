#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>
#include <utility>
#include <vector>

#include "tests/faults/Plays.h"
#include "tests/faults/SystemCalls.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/support/TempFolder.h"
#include "vxfileio/helpers/ReplacingFile.h"

namespace {

/// Returns the names and bytes of the files in a folder.
std::map<std::string, std::string> FilesIn(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        files[entry.path().filename().string()] = BytesOf(entry.path().string());
    return files;
}

std::size_t OpenHandles() {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

/// Returns the number of missing segments in the text of a write error.
std::int64_t MissingSegments(const std::string& error) {
    const std::string tag = "; segments missing: ";
    const std::size_t at = error.find(tag);
    return at == std::string::npos ? 0 : std::stoll(error.substr(at + tag.size()));
}

/// Returns whether a file was replaced. The last step, flushing its name to the disk, can fail after that.
bool IsReplaced(const std::string& error) {
    return error.empty() || error.find(", flushing the folder of ") != std::string::npos;
}

constexpr CFault kNone;
constexpr CFault kHalf{CFault::enKind::Half};
constexpr CFault kInterrupted{CFault::enKind::Interrupted};
constexpr CFault Once(int error) { return {.error = error}; }
constexpr CFault FromThere(int error) { return {.error = error, .goesOn = true}; }

/// Applies every fault at every call for every kind of file.
class SystemCallFaultsTest : public testing::TestWithParam<CKind> {
 protected:
    SystemCallFaultsTest() {
        Play(0, kNone);
        m_whole = FilesIn(m_folder.Path(""));
        m_calls = m_lastCalls;
    }

    /// Writes over an older file, with a fault at one call. Returns the result of `GetWriteError`.
    std::string Play(int at, const CFault& fault) {
        std::filesystem::remove_all(m_folder.Path(""));
        std::filesystem::create_directory(m_folder.Path(""));
        if (at > 0) MakeOld();
        CVXFileIO io;
        const auto steps = m_kind.steps(io, m_path);
        m_wasThrown = false;
        const std::size_t handles = OpenHandles();
        BeginCalls(at, fault);
        try {
            for (const auto& step : steps)
                step();
        } catch (const CExcVXReader& failure) {
            m_wasThrown = true;
        }
        m_lastCalls = EndCalls();
        EXPECT_EQ(OpenHandles(), handles) << "a file is still open";
        return m_kind.writeError(io);
    }

    /// Gives the old file to another group, if the process may.
    void MakeOld() {
        WriteAll(m_path, kOld);
        std::filesystem::permissions(m_path, std::filesystem::perms(0664));
        m_isForeign = ::chown(m_path.c_str(), static_cast<uid_t>(-1), ::getegid() + 1) == 0;
    }

    /// Returns what can be read, or the text of the failure.
    std::string Read() {
        CVXFileIO io;
        try {
            return m_kind.read(io, m_path);
        } catch (const CExcVXReader& failure) {
            return failure.GetMsg();
        }
    }

    /// Returns whether `content` lists complete segments, each once, in ascending order.
    static bool IsInOrder(const std::string& content) {
        std::int64_t before = -1;
        std::istringstream words(content);
        for (std::string word; words >> word; before = std::stoll(word)) {
            if (word.find_first_not_of("0123456789") != std::string::npos || std::stoll(word) <= before) return false;
        }
        return true;
    }

    void ExpectReplacedOrOld(bool isNew) {
        const auto files = FilesIn(m_folder.Path(""));
        EXPECT_EQ(files.size(), 1U) << "a temporary file is left";
        EXPECT_EQ(files.at(m_kind.file) == m_whole.at(m_kind.file), isNew);
        EXPECT_EQ(files.at(m_kind.file) == kOld, !isNew);
    }

    /// Checks that an incomplete workbook is named, and only exists if its folder refused a second file.
    void ExpectNamed(const std::string& error) {
        const auto files = FilesIn(m_folder.Path(""));
        for (const auto& [name, bytes] : m_whole) {
            const bool isWhole = files.contains(name) && files.at(name) == bytes;
            EXPECT_TRUE(isWhole || error.find(name) != std::string::npos) << name << " isn't named: " << error;
            const bool isOld = !files.contains(name) || files.at(name) == kOld;
            EXPECT_TRUE(isWhole || isOld || error.find("Permission") != std::string::npos) << name << " is incomplete";
        }
        EXPECT_LE(files.size(), m_whole.size()) << "a temporary file is left";
    }

    /// Checks a replaced file, or workbooks. Returns false for raw data.
    bool ExpectWholeOrNamed(const std::string& error) {
        if (m_kind.isReplaced) {
            const std::string bytes = BytesOf(m_path);
            EXPECT_EQ(bytes == m_whole.at(m_kind.file), IsReplaced(error));
            EXPECT_EQ(bytes == kOld, !IsReplaced(error));
        } else if (m_kind.read == nullptr) {
            ExpectNamed(error);
        }
        return m_kind.isReplaced || m_kind.read == nullptr;
    }

    static constexpr const char* kOld = "what was there before";

    CKind m_kind = GetParam();
    CTempFolder m_parent;
    CTempFolder m_folder{m_parent.Path("files")};
    std::string m_path = m_folder.Path(m_kind.file);
    std::map<std::string, std::string> m_whole;
    int m_calls = 0;
    int m_lastCalls = 0;
    bool m_wasThrown = false;
    bool m_isForeign = false;
};

TEST_P(SystemCallFaultsTest, OneFailedCallIsReportedAndLosesOnlyWhatIsReported) {
    ASSERT_GE(m_calls, 5);
    for (const int error : {ENOSPC, EIO, EACCES, EINTR}) {
        for (int at = 1; at <= m_calls + 2; ++at) {  // replacing an older file takes more calls than a new file
            SCOPED_TRACE("error " + std::to_string(error) + " at call " + std::to_string(at));
            const std::string told = Play(at, Once(error));
            EXPECT_TRUE(!m_wasThrown || !told.empty());
            EXPECT_LE(FilesIn(m_folder.Path("")).size(), m_whole.size()) << "a temporary file is left";
            if (ExpectWholeOrNamed(told) || m_wasThrown) continue;
            const std::string content = Read();
            EXPECT_TRUE(IsInOrder(content)) << content;
            EXPECT_EQ(std::count(content.begin(), content.end(), ' '), kSegments - MissingSegments(told)) << told;
            EXPECT_TRUE(!told.empty() || FilesIn(m_folder.Path("")) == m_whole);
        }
    }
}

TEST_P(SystemCallFaultsTest, ADiskThatBreaksForGoodLeavesWhatWasWhole) {
    for (const int error : {ENOSPC, EIO}) {
        for (int at = 1; at <= m_calls; ++at) {
            SCOPED_TRACE("error " + std::to_string(error) + " from call " + std::to_string(at));
            const std::string told = Play(at, FromThere(error));
            if (ExpectWholeOrNamed(told)) continue;
            EXPECT_NE(told, "");
            const std::string content = Read();
            EXPECT_TRUE(IsInOrder(content) || content.starts_with("Error") || content.starts_with("Opened file"))
                << content;
        }
    }
}

TEST_P(SystemCallFaultsTest, PartialAndInterruptedTransfersContinue) {
    for (int at = 1; at <= m_calls; ++at) {
        SCOPED_TRACE(at);
        for (const CFault& fault : {kHalf, kInterrupted}) {
            EXPECT_EQ(Play(at, fault), "");
            EXPECT_EQ(FilesIn(m_folder.Path("")), m_whole);
        }
    }
}

// It isn't an error if a folder refuses a second file and the old file can be overwritten.
TEST_P(SystemCallFaultsTest, FilesAreWrittenInPlaceIfTheFolderRefusesASecondOne) {
    if (!m_kind.isReplaced) return;
    for (const int error : {EACCES, EPERM, EROFS, EBUSY, EXDEV}) {
        EXPECT_EQ(Play(1, {.error = error, .calls = "rename"}), "");
        ExpectReplacedOrOld(true);
        EXPECT_EQ(Play(2, {.error = error, .calls = "open"}), "") << "the first call opens the old file";
        ExpectReplacedOrOld(true);
    }
    EXPECT_EQ(Play(2, {.error = ENOSPC, .calls = "open"}), "No space left on device, opening " + m_path);
    ExpectReplacedOrOld(false);
    EXPECT_EQ(Play(1, {.error = ENOSPC, .calls = "rename"}), "No space left on device, replacing " + m_path);
    ExpectReplacedOrOld(false);
    EXPECT_EQ(Play(1, {.error = EXDEV, .goesOn = true, .calls = "rename pread"}),
              "Input/output error, replacing " + m_path)
        << "the new file can't be read for copying it over the old one";
    EXPECT_NE(Play(3, {.error = EACCES, .goesOn = true, .calls = "rename open"}), "") << "nor opened for that";
    ExpectReplacedOrOld(false);
}

TEST_P(SystemCallFaultsTest, AGroupThatCannotBeKeptGetsNoRights) {
    if (!m_kind.isReplaced) return;
    EXPECT_EQ(Play(1, {.error = EPERM, .goesOn = true, .calls = "fchown"}), "");
    const auto rights = static_cast<unsigned>(std::filesystem::status(m_path).permissions());
    EXPECT_EQ(rights, m_isForeign ? 0644U : 0664U);
}

TEST_P(SystemCallFaultsTest, FaultsWhileReadingAreHandled) {
    if (m_kind.read == nullptr) return;  // there is no reader
    Play(0, kNone);
    BeginCalls(0, kNone);
    const std::string whole = Read();
    const int calls = EndCalls();
    ASSERT_GE(calls, 3);
    const std::size_t handles = OpenHandles();
    for (int at = 1; at <= calls; ++at) {
        SCOPED_TRACE(at);
        for (const int error : {EIO, ENOMEM}) {
            for (const CFault& fault : {Once(error), FromThere(error)}) {
                BeginCalls(at, fault);
                Read();
                EndCalls();
                EXPECT_EQ(OpenHandles(), handles);
            }
        }
        for (const CFault& fault : {kHalf, kInterrupted}) {
            BeginCalls(at, fault);
            EXPECT_EQ(Read(), whole);
            EndCalls();
        }
        EXPECT_EQ(Read(), whole) << "a later reader is unaffected";
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, SystemCallFaultsTest, testing::ValuesIn(AllKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

INSTANTIATE_TEST_SUITE_P(Flushed, SystemCallFaultsTest, testing::Values(FlushedRaw()),
                         [](const auto& kind) { return std::string(kind.param.name); });

// The disk refuses one write but accepts another. An older text of a list must not be written after a newer one.
TEST(RefusedRewritesTest, ARefusedOlderTextDoesNotOverwriteANewerOne) {
    const CTempFolder folder;
    const std::string path = folder.Path("lists.vxd");
    CVXFileIO io;
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    writer.Open(path);
    writer.WriteFileHdr({.HeaderID = "OVL Vexaprobe", .FileVersion = 2});
    writer.WriteRecordingHdr({.TaskName = "Series"});
    BeginCalls(1, {.error = EIO, .goesOn = true, .calls = "pwritev"});
    writer.UpdateFileHdr("PreQC", {"1"});
    writer.UpdateFileHdr("PostQC", {"2"});
    BeginCalls(1, {.error = EIO, .calls = "pwritev"});
    writer.UpdateFileHdr("PostQC", {"3"});  // the other list is tried first, and refused again
    EndCalls();
    writer.UpdateFileHdr("CompoundTest", {"4"});
    writer.Close();
    io.GetRawDataReader()->Open(path);
    const CRawDataFileHdr& header = *io.GetRawDataReader()->GetFileHdr();
    EXPECT_EQ(header.PreQC, std::vector<std::int64_t>{1});
    EXPECT_EQ(header.CompoundTest, std::vector<std::int64_t>{4});
    EXPECT_EQ(header.PostQC, std::vector<std::int64_t>{3});
}

TEST(RefusedReadsTest, AnUnreadableDocumentIsNotReportedAsEmpty) {
    const CTempFolder folder;
    const std::string path = folder.Path("results.vxr");
    CVXFileIO io;
    io.GetResultsWriter()->WriteFile(path, CResults());
    BeginCalls(1, {.error = EIO, .goesOn = true, .calls = "pread preadv"});
    io.GetResultsReader()->ReadFile(path);
    EXPECT_GT(EndCalls(), 0);
    EXPECT_EQ(io.GetResultsReader()->GetReadError(), "The system refused to read beyond offset 0.");
}

// As on a file system without hard links, where the file moves over an empty one that reserves the name.
TEST(NewFileTest, LeavesNothingIfItCannotGetItsName) {
    using vxfileio::helpers::CReplacingFile;
    const CTempFolder folder;
    {
        CReplacingFile file;
        ASSERT_TRUE(file.Create(folder.Path("new.vxd"), CReplacingFile::ERule::New));
        ASSERT_TRUE(file.Finish());
        BeginCalls(1, {.error = EPERM, .goesOn = true, .calls = "link rename"});
        EXPECT_FALSE(file.Commit());
        EndCalls();
    }
    EXPECT_TRUE(FilesIn(folder.Path("")).empty());
}

class FlushToDiskTest : public testing::Test {
 protected:
    /// Writes a header, which must be accepted, and flushes with a fault at the first of the named calls.
    bool Flush(const CFault& fault) {
        m_writer.Open(m_path);
        m_writer.WriteFileHdr({.HeaderID = "OVL Vexaprobe", .FileVersion = 2});
        BeginCalls(1, fault);
        const bool isFlushed = m_writer.FlushToDisk();
        EndCalls();
        return isFlushed;
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
    CIRawDataWriter m_writer;
};

TEST_F(FlushToDiskTest, NeedsAnOpenFile) {
    EXPECT_FALSE(m_writer.FlushToDisk());
    EXPECT_TRUE(Flush(kNone));
    m_writer.Close();
    EXPECT_FALSE(m_writer.FlushToDisk());
    EXPECT_EQ(m_writer.GetWriteError(), "") << "the error of the closed file";
}

TEST_F(FlushToDiskTest, ARefusalIsReportedAndFinalIfDataMayBeLost) {
    EXPECT_FALSE(Flush({.error = EIO, .calls = "fdatasync"}));
    EXPECT_EQ(m_writer.GetWriteError(), "Input/output error, flushing " + m_path);
    EXPECT_FALSE(m_writer.FlushToDisk());
    EXPECT_FALSE(Flush({.error = EIO, .calls = "fsync"}));
    EXPECT_EQ(m_writer.GetWriteError(), "Input/output error, flushing the folder of " + m_path);
    EXPECT_TRUE(m_writer.FlushToDisk());
    for (const int noDisk : {EINVAL, ENOTSUP, ENOSYS})
        EXPECT_TRUE(Flush({.error = noDisk, .goesOn = true, .calls = "fdatasync fsync"}));
    EXPECT_EQ(m_writer.GetWriteError(), "");
    EXPECT_FALSE(Flush({.error = EROFS, .goesOn = true, .calls = "fdatasync fsync"})) << "the disk failed";
}

// The folder is the one at `Open`, even if the current folder or the file's name changes.
TEST_F(FlushToDiskTest, FlushesTheFolderWhereTheFileWasCreated) {
    const auto current = std::filesystem::current_path();
    std::filesystem::create_directory(m_folder.Path("elsewhere"));
    std::filesystem::create_symlink("elsewhere/target.vxd", m_folder.Path("link.vxd"));
    for (const auto& [path, folder] : {std::pair{"run.vxd", ""}, std::pair{"link.vxd", "elsewhere/"}}) {
        std::filesystem::current_path(m_folder.Path(""));
        m_writer.Open(path);
        std::filesystem::rename(std::filesystem::canonical(path), m_folder.Path("renamed.vxd"));
        std::filesystem::current_path("/");
        std::vector<CRecordedCall> calls;
        RecordCalls(&calls);
        EXPECT_TRUE(m_writer.FlushToDisk()) << m_writer.GetWriteError();
        RecordCalls(nullptr);
        const std::string wanted = m_folder.Path(folder);
        const auto isOpened = [&](const CRecordedCall& call) { return call.name == "open" && call.path == wanted; };
        EXPECT_TRUE(std::ranges::any_of(calls, isOpened)) << path;
    }
    std::filesystem::current_path(current);
}

TEST_F(FlushToDiskTest, WritesWhatWasRefusedAndFailsIfASegmentIsMissing) {
    EXPECT_TRUE(Flush(kNone));
    const std::uint16_t sample = 1;
    BeginCalls(1, {.error = ENOSPC, .goesOn = true, .calls = "pwritev"});
    m_writer.WriteRecordingHdr({.TaskName = "Series"});
    EXPECT_FALSE(m_writer.FlushToDisk());
    EndCalls();
    EXPECT_TRUE(m_writer.FlushToDisk());
    EXPECT_EQ(ReadAll(m_path).size(), 3650U);
    BeginCalls(1, {.error = ENOSPC, .goesOn = true, .calls = "pwritev"});
    m_writer.UpdateFileHdr("PostQC", {"8"});
    EndCalls();
    EXPECT_EQ(ReadAll(m_path).substr(790, 9), std::string("PostQC\0\0\0", 9));
    EXPECT_TRUE(m_writer.FlushToDisk());
    EXPECT_EQ(ReadAll(m_path).substr(790, 9), std::string("PostQC=8\0", 9));
    BeginCalls(1, {.error = ENOSPC, .calls = "pwritev"});
    m_writer.WriteData(7, 0, 0, 1, &sample);
    EndCalls();
    EXPECT_FALSE(m_writer.FlushToDisk());
    EXPECT_NE(m_writer.GetWriteError().find("; segments missing: 1"), std::string::npos);
}

TEST_F(FlushToDiskTest, FailsIfARecordingWasDropped) {
    EXPECT_TRUE(Flush(kNone));
    BeginCalls(1, {.error = EFBIG, .calls = "pwritev"});
    m_writer.WriteRecordingHdr({.TaskName = "First"});
    EndCalls();
    m_writer.WriteRecordingHdr({.TaskName = "Second"});
    EXPECT_FALSE(m_writer.FlushToDisk());
    EXPECT_NE(m_writer.GetWriteError().find("File too large"), std::string::npos);
    EXPECT_TRUE(Flush(kNone)) << "another file";
}

// Flushing takes time only on request, and the file's name is flushed only once.
TEST_F(FlushToDiskTest, OnlyACallerThatFlushesWaitsForTheDisk) {
    const auto flushes = [&](int calls) {
        BeginCalls(0, {.calls = "fdatasync fsync"});
        m_writer.Open(m_path);
        m_writer.WriteFileHdr({.HeaderID = "OVL Vexaprobe", .FileVersion = 2});
        for (int i = 0; i < calls; ++i)
            EXPECT_TRUE(m_writer.FlushToDisk());
        m_writer.Close();
        return EndCalls();
    };
    EXPECT_EQ(flushes(0), 0);
    EXPECT_EQ(flushes(1), 3);
    EXPECT_EQ(flushes(2), 4);
}

// A file written in place contains the beginning of the document, without gaps.
TEST(RefusedPieceTest, NothingIsWrittenAfterIt) {
    const CTempFolder folder;
    const std::string path = folder.Path("pieces.xml");
    gd_xml_stream::CFileBuffer file;
    ASSERT_EQ(file.Open(path, "wb"), 0);
    BeginCalls(2, {.error = ENOSPC, .calls = "pwritev"});
    for (const char letter : {'a', 'b', 'c'}) {
        const std::string piece(100'000, letter);
        file.Write(piece.data(), piece.size());
    }
    file.Close();
    EndCalls();
    EXPECT_EQ(BytesOf(path), std::string(100'000, 'a'));
}

// While a writer overwrites cells, a reader may see the first part of the new ones, but only for a moment.
TEST(RewrittenHdrTest, PositionsBeingRewrittenAreReadAgain) {
    constexpr std::size_t kCells = 1190 + 150;
    constexpr std::size_t kCellsSize = 150;
    const CTempFolder folder;
    const std::string path = folder.Path("live.vxd");
    const CKind& raw = AllKinds().front();
    {
        CVXFileIO io;
        for (const auto& step : raw.steps(io, path))
            step();
    }
    const std::string whole = BytesOf(path);
    std::string before = whole;
    for (std::size_t cell = 0; cell < kCellsSize; cell += 50) {
        const std::size_t value = before.find('=', kCells + cell) + 1;
        before.replace(value, 48 - (value - kCells - cell), "-1" + std::string(46 - (value - kCells - cell), '\0'));
    }
    ASSERT_EQ(before.size(), whole.size());
    for (std::size_t done = 0; done <= kCellsSize; ++done) {
        WriteAll(path, before.substr(0, kCells) + whole.substr(kCells, done) + before.substr(kCells + done));
        CVXFileIO io;
        // The first call reads the file header, the second the recording header.
        BeginCalls(3, "pread", [&] { WriteAll(path, whole); });
        const std::string content = raw.read(io, path);
        EndCalls();
        EXPECT_TRUE(content.empty() || content == "0 1 2 " || content == "0 1 2 3 4 5 ") << done << ": " << content;
    }
}

/// Returns the numbers of all readable segments, each followed by a blank. Fails for a recording without segments.
std::string SegmentsIn(const std::string& path) {
    CIRawDataReader reader;
    reader.Open(path);
    std::string content;
    for (std::int32_t i = 0; i < reader.GetIndex()->GetCount(); ++i) {
        const CIndexEntry& entry = *reader.GetIndex()->GetEntry(i);
        EXPECT_TRUE(reader.JumpToData(entry.TaskName, entry.Recording));
        auto [well, from, to, size, samples] = CNextSegment();
        const std::size_t before = content.size();
        try {
            while (reader.ReadSegment(well, from, to, size, samples)) {
                EXPECT_EQ(std::vector<std::uint16_t>(samples, samples + size), SamplesOf(from));
                content += std::to_string(from) + " ";
            }
        } catch (const CExcVXReader&) {
            EXPECT_EQ(content.size(), before);
        }
    }
    return content;
}

// Whenever the disk is full and later has room again, exactly the accepted segments are readable in the end.
TEST(MoodyDiskTest, AcceptedSegmentsAreReadableAndMissingOnesCounted) {
    const CTempFolder folder;
    const std::string path = folder.Path("moody.vxd");
    std::mt19937 random(1);
    for (int run = 0; run < 200; ++run) {
        CIRawDataWriter writer;
        writer.Open(path);
        std::string taken;
        bool isFull = false;
        for (std::int64_t segment = 0; segment < 60; ++segment) {
            if (random() % 5 == 0) isFull = !isFull;
            if (isFull) BeginCalls(1, {.error = ENOSPC, .goesOn = random() % 4 != 0, .calls = "pwritev"});
            if (segment == 0) writer.WriteFileHdr({.HeaderID = "OVL Vexaprobe", .FileVersion = 2});
            const auto recording = static_cast<std::int32_t>(segment / 6);
            if (segment % 6 == 0) writer.WriteRecordingHdr({.TaskName = "Series", .Recording = recording});
            if (random() % 4 == 0) writer.UpdateFileHdr("PreQC", {std::to_string(segment)});
            const std::vector<std::uint16_t> samples = SamplesOf(segment);
            const std::int64_t missing = MissingSegments(writer.GetWriteError());
            writer.WriteData(7, segment, segment + static_cast<std::int64_t>(samples.size()) - 1, 1, samples.data());
            EndCalls();
            if (MissingSegments(writer.GetWriteError()) == missing) taken += std::to_string(segment) + " ";
        }
        writer.Close();
        ASSERT_EQ(SegmentsIn(path), taken) << "run " << run;
    }
}

}  // namespace
