#include <gtest/gtest.h>

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "recovery/Recover.h"
#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/recovery/StringInput.h"
#include "tests/support/TempFolder.h"
#include "verify/raw/RawVerify.h"
#include "vxfileio/rawdata/Layout.h"

/// @file
/// Files of versions 1 and 2, and of a version 3 that `PrivateVersion.cpp` adds to this program.

namespace {

/// Returns the bytes with others inserted at an offset.
std::string With(std::string bytes, std::size_t at, const std::string& more) { return bytes.insert(at, more); }

/// Builds a file like `SmallFileBytes` in any of the three versions by hand.
std::string FileOf(int version) {
    if (version < 3) {
        const std::int64_t data = 1190 + (version == 1 ? 2410 : 2460);
        return FileHdrBytes(1190, "CompoundTest=1000:2000", version) +
               RecordingHdrBytes({.data = data, .hasStartTime = version != 1}) +
               SegmentHdrBytes(11, data + 308, 0, 300, "4") + SampleBytes(kWell11) +
               SegmentHdrBytes(12, -1, 0, 300, "4") + SampleBytes(kWell12);
    }
    const auto segmentHdr = [](const std::string& hdr, const std::string& samples) {
        return Cell(50, "Kind=Segment") + With(hdr, 150, Cell(30, "Begin=0")) + Cell(40, "Samples=4") + samples;
    };
    return With(FileHdrBytes(1280, "CompoundTest=1000:2000", 3), 340, Cell(50, "Operator=0123")) + Cell(40, "LotID=5") +
           Cell(50, "Run=1") + With(RecordingHdrBytes({.data = 3900}), 630, Cell(50, "Length=300")) +
           Cell(60, "Note=CompoundTest") + segmentHdr(SegmentHdrBytes(11, 4328, 0, 300, "4"), SampleBytes(kWell11)) +
           segmentHdr(SegmentHdrBytes(12, -1, 0, 300, "4"), SampleBytes(kWell12));
}

/// Writes the file through the facade. `version` is the one in the caller's header.
std::string Written(int version) {
    const CTempFolder folder;
    CIRawDataWriter writer;
    CRawDataFileHdr header = ExampleFileHdr();
    header.FileVersion = version;
    writer.Open(folder.Path("written.vxd"));
    writer.WriteFileHdr(header);
    writer.WriteRecordingHdr(ExampleRecordingHdr());
    writer.WriteData(11, 0, 300, 100, kWell11.data());
    writer.WriteData(12, 0, 300, 100, kWell12.data());
    writer.UpdateFileHdr("CompoundTest", {"1000", "2000"});
    writer.Close();
    return ReadAll(folder.Path("written.vxd"));
}

/// Returns the file that recovery makes of these bytes.
std::string Recovered(const std::string& bytes) {
    std::string saved;
    vxfileio::recovery::Recover(CStringInput(bytes), {}, [&](std::span<const std::byte> part) {
        saved.append(reinterpret_cast<const char*>(part.data()), part.size());
    });
    return saved;
}

TEST(LayoutTest, AWriterUsesTheLayoutOfTheVersionThatItsCallerNames) {
    EXPECT_EQ(Written(2), FileOf(2));
    EXPECT_EQ(Written(3), FileOf(3));
}

TEST(LayoutTest, NewerVersionsAreWrittenLikeTheNewestAndReadOnlyOnesLikeVersion2) {
    EXPECT_EQ(Written(7).size(), FileOf(3).size());
    EXPECT_EQ(Written(1).size(), FileOf(2).size());
    EXPECT_EQ(Written(-5).size(), FileOf(2).size());
}

class LayoutOfVersionTest : public testing::TestWithParam<int> {
 protected:
    /// Opens a file of these bytes and returns its content in one line.
    std::string ContentOf(const std::string& bytes, std::int32_t well = -1) {
        WriteAll(m_path, bytes);
        CIRawDataReader reader;
        if (const std::string failure = TextOfFailure([&] { reader.Open(m_path); }); failure != "no failure")
            return failure;
        reader.SelectWellID(well);
        if (!reader.JumpToData("CompoundTest", 1)) return "no recording";
        const CRawDataRecordingHdr& header = *reader.GetRecordingHdr("CompoundTest", 1);
        return reader.GetFileHdr()->CompoundName + " " + std::to_string(header.RecordingStartTime) + " " +
               std::to_string(header.RecordingTime) + " " + std::to_string(header.WellChannels.size()) + " " +
               SegmentsOf(reader);
    }

    const CTempFolder m_folder;
    const std::string m_path = m_folder.Path("file.vxd");
};

TEST_P(LayoutOfVersionTest, AReaderFindsAllCells) {
    const std::string start = GetParam() == 1 ? "0" : "1000000";
    EXPECT_EQ(ContentOf(FileOf(GetParam())),
              "Test " + start + " 300 2 11[0..300]1,256,65535,32768 12[0..300]7,8,9,10 end");
    std::string newer = FileOf(GetParam());
    newer[newer.find("FileVersion=") + std::string("FileVersion=").size()] = '7';
    EXPECT_EQ(ContentOf(newer) == ContentOf(FileOf(GetParam())), GetParam() == 3) << "read by the newest layout";
    EXPECT_EQ(ContentOf(FileOf(GetParam()), 12), "Test " + start + " 300 2 12[0..300]7,8,9,10 end");
}

TEST_P(LayoutOfVersionTest, VerifyFindsNothingInAWholeFile) {
    WriteAll(m_path, FileOf(GetParam()));
    const vxfile::CFindings findings = vxfile::VerifyRawData(m_path);
    for (const auto& finding : findings.Kept())
        ADD_FAILURE() << finding.where << ": " << finding.found << ", not " << finding.expected;
}

TEST_P(LayoutOfVersionTest, VerifyNamesEachCellWithADamagedKey) {
    const std::string file = FileOf(GetParam());
    const auto& layout = vxfileio::rawdata::LayoutOf(GetParam());
    const auto expectFinding = [&](const auto& hdr, std::size_t position) {
        for (const auto& cell : hdr.cells.subspan(1)) {
            std::string damaged = file;
            damaged[position + cell.offset] = '~';
            WriteAll(m_path, damaged);
            const vxfile::CFindings findings = vxfile::VerifyRawData(m_path);
            ASSERT_GE(findings.Count(), 1U) << cell.key;
            EXPECT_EQ(findings.Kept()[0].offset, static_cast<std::int64_t>(position + cell.offset)) << cell.key;
        }
    };
    expectFinding(layout.file, 0);
    expectFinding(layout.recording, layout.file.size);
    expectFinding(layout.segment, layout.file.size + layout.recording.size);
}

INSTANTIATE_TEST_SUITE_P(EveryVersion, LayoutOfVersionTest, testing::Values(1, 2, 3));

TEST(LayoutTest, DamagedFilesOfEachVersionAreRecoveredByTheirLayout) {
    for (const int version : {1, 2, 3}) {
        const std::string whole = FileOf(version);
        EXPECT_EQ(Recovered(whole) == whole, version > 1);
        // Only the headers themselves show the version.
        const std::string headless = whole.substr(version == 3 ? 1280 : 1190);
        const std::string saved = Recovered(headless);
        for (const auto& samples : {kWell11, kWell12})
            EXPECT_NE(saved.find(SampleBytes(samples)), std::string::npos) << version;
        // One cell of a segment header is lost.
        const std::size_t size = whole.rfind("TimeTo=");
        const std::string timeless = std::string(whole).replace(size, 10, 10, 'x');
        EXPECT_EQ(Recovered(timeless), Recovered(whole)) << version;
    }
    // A file with parts of several versions is recovered in the newest one, which has the cells of all.
    EXPECT_NE(Recovered(FileOf(3) + FileOf(2)).find(Cell(60, "Note=CompoundTest")), std::string::npos);
}

}  // namespace
