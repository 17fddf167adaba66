#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/reference/Twin.h"
#include "tests/support/TempFolder.h"

// The reference files and their text twins are made by make_reference.py, and also read by read_vxd.py. The library is
// the third implementation: it must read the same content from each file, and write the same bytes if it can.

namespace {

constexpr std::array kNames = {
    "small_example",
    "no_recordings",
    "not_ours",
    "several_recordings",
    "two_tasks",
    "unfinished",
    "version_1",
    "awkward_text",
    "foreign_numbers",
    "backwards",
    "cut_samples",
    "circle_of_segments",
    "circle_of_recordings",
    "too_many_wells",
    "cut_header",
    "damaged_segments",
};

std::string FailureLine(const CExcVXReader& failure) {
    EXPECT_EQ(failure.GetCode(), -1);
    return "failure: " + failure.GetMsg() + "\n";
}

/// The names here are all members of the class. One that is missing doesn't compile.
std::string FileLines(const CRawDataFileHdr& header) {
    const auto& [id, first, type, program, version, guid, plate, compoundID, compound, pre, test, post, sum, reserved] =
        header;
    return "file\n" + FieldLine("HeaderID", id) + FieldLine("FPosFirstRecordingHdr", first) +
           FieldLine("FileType", type) + FieldLine("ProgramVersion", program) +
           FieldLine("FileVersion", std::int64_t{version}) + FieldLine("Guid", guid) + FieldLine("PlateID", plate) +
           FieldLine("CompoundID", std::int64_t{compoundID}) + FieldLine("CompoundName", compound) +
           FieldLine("PreQC", pre) + FieldLine("CompoundTest", test) + FieldLine("PostQC", post) +
           FieldLine("CheckSum", sum) + FieldLine("Reserved", reserved);
}

std::string ChannelLines(const char* kind, const std::vector<CRawDataChannelInfo>& channels) {
    std::string lines;
    for (const auto& channel : channels) {
        lines += std::string("  ") + kind + " " + std::to_string(channel.ID) + ": Ticks " +
                 std::to_string(channel.Ticks) + ", UnitsPerAD " + Show(channel.UnitsPerAD) + ", ADZero " +
                 std::to_string(channel.ADZero) + "\n";
    }
    return lines;
}

std::string RecordingLines(const CRawDataRecordingHdr& header) {
    const auto& [task, number, dose, data, trailer, next, start, length, wells, aux] = header;
    return "recording\n" + FieldLine("TaskName", task) + FieldLine("Recording", std::int64_t{number}) +
           FieldLine("Dose", dose) + FieldLine("FPosRecordingData", data) + FieldLine("FPosRecordingTrailer", trailer) +
           FieldLine("FPosNextRecordingHdr", next) + FieldLine("RecordingStartTime", start) +
           FieldLine("RecordingTime", length) + FieldLine("NumberOfWells", std::uint64_t{wells.size()}) +
           FieldLine("NumberOfAuxCh", std::uint64_t{aux.size()}) + ChannelLines("well", wells) +
           ChannelLines("aux", aux);
}

/// Returns the segments up to the end of the chain or a failure. No reference file has a hundred.
std::string SegmentLines(CIRawDataReader& reader) {
    std::string lines;
    try {
        for (int i = 0; i < 100; ++i) {
            auto [wellID, timeFrom, timeTo, size, samples] = CNextSegment();
            if (!reader.ReadSegment(wellID, timeFrom, timeTo, size, samples)) return lines + "  end\n";
            lines += "  segment of well " + std::to_string(wellID) + ", " + std::to_string(timeFrom) + " to " +
                     std::to_string(timeTo) + ", " + std::to_string(size) + " samples:";
            for (std::uint32_t s = 0; s < size; ++s)
                lines += " " + std::to_string(samples[s]);
            lines += "\n";
        }
    } catch (const CExcVXReader& failure) {
        return lines + "  " + FailureLine(failure);
    }
    return lines + "  more\n";
}

/// Returns the content of a file, in the order of its chains. (No reference file has two recordings with the same task
/// and number.)
std::string TwinOf(const std::string& path) {
    CIRawDataReader reader;
    try {
        reader.Open(path);
    } catch (const CExcVXReader& failure) {
        return FailureLine(failure);
    }
    std::string twin = FileLines(*reader.GetFileHdr());
    for (int i = 0; i < reader.GetIndex()->GetCount(); ++i) {
        const CIndexEntry& entry = *reader.GetIndex()->GetEntry(i);
        const CRawDataRecordingHdr* header = reader.GetRecordingHdr(entry.TaskName, entry.Recording);
        EXPECT_TRUE(header != nullptr && header->Dose == entry.Dose);
        if (header != nullptr) twin += RecordingLines(*header);
        const bool finished = reader.JumpToData(entry.TaskName, entry.Recording);
        twin += finished ? SegmentLines(reader) : "  not finished\n";
    }
    return twin;
}

class ReferenceFile : public testing::TestWithParam<const char*> {};

TEST_P(ReferenceFile, ReadsAsItsTextTwinSays) {
    const std::string name = GetParam();
    EXPECT_EQ(TwinOf(ReferencePath(name + ".vxd")), ReadAll(ReferencePath(name + ".txt")));
}

INSTANTIATE_TEST_SUITE_P(Reading, ReferenceFile, testing::ValuesIn(kNames),
                         [](const auto& file) { return std::string(file.param); });

TEST(ReferenceFiles, AreAllTested) {
    std::set<std::string> present;
    for (const auto& entry : std::filesystem::directory_iterator(VXFILEIO_REFERENCE_DIR)) {
        if (entry.path().extension() == ".vxd") present.insert(entry.path().stem().string());
    }
    EXPECT_EQ(present, std::set<std::string>(kNames.begin(), kNames.end()));
}

// ---- Writing --------------------------------------------------------------------------------------------------------

/// Writes a file with the content defined in make_reference.py, and compares every byte.
class WrittenReferenceFile : public testing::Test {
 protected:
    WrittenReferenceFile() { m_writer.Open(m_path); }

    void BeginRecording(std::int32_t number) {
        m_writer.WriteRecordingHdr(ExampleRecordingHdr("CompoundTest", number));
    }

    void Write(std::int32_t wellID, std::int64_t timeFrom, std::int64_t timeTo, std::int64_t tick,
               const std::vector<std::uint16_t>& samples) {
        m_writer.WriteData(wellID, timeFrom, timeTo, tick, samples.data());
    }

    void WriteWell11() { Write(11, 0, 300, 100, kWell11); }
    void WriteWell12() { Write(12, 0, 300, 100, kWell12); }

    void ExpectBytesOf(const std::string& name) {
        EXPECT_TRUE(ReadAll(m_path) == ReadAll(ReferencePath(name + ".vxd"))) << TwinOf(m_path);
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("written.vxd");
    CIRawDataWriter m_writer;
};

TEST_F(WrittenReferenceFile, UnfinishedAsOnDiskBeforeClose) {
    m_writer.WriteFileHdr(ExampleFileHdr());
    BeginRecording(1);
    WriteWell11();
    BeginRecording(2);
    WriteWell11();
    WriteWell12();
    ExpectBytesOf("unfinished");
}

TEST_F(WrittenReferenceFile, SeveralRecordings) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    const std::vector<CRawDataChannelInfo> wells = {
        {1, 32768, 0.0002, 100}, {2, -32768, 0.00001, 50}, {96, 0, -2500000.0, 1}};
    const auto begin = [&](const char* task, std::int32_t number, std::int64_t dose, auto change) {
        CRawDataRecordingHdr header = ExampleRecordingHdr(task, number);
        header.Dose = dose;
        change(header);
        m_writer.WriteRecordingHdr(header);
    };
    CRawDataFileHdr fileHdr = ExampleFileHdr();
    fileHdr.HeaderID = "OVL Vexaprobe 2";
    fileHdr.CompoundID = -7;
    m_writer.WriteFileHdr(fileHdr);
    m_writer.UpdateFileHdr("PreQC", {"-1", "2"});

    begin("PreQC", 1, 0, [&](auto& header) { header.WellChannels = wells; });
    Write(1, 0, 200, 100, {1, 2, 3});
    Write(2, 0, 50, 50, {4, 5});
    Write(1, 300, 300, 100, {6});
    Write(2, 100, 149, 50, {65535});
    m_writer.UpdateFileHdr("CompoundTest", {"0", "1000000", "9223372036854775807"});
    begin("CompoundTest", -3, -1, [](const auto&) {});
    begin("Series", 2147483647, least, [&](auto& header) {
        header.WellChannels = {wells[2]};
        header.RecordingStartTime = std::numeric_limits<std::uint64_t>::max();
        header.RecordingTime = -5;
    });
    Write(96, -4, -3, 1, {0, 1});
    Write(96, least, least + 1, 1, {2, 3});
    Write(std::numeric_limits<std::int32_t>::min(), most - 3, most, 1, {4, 5, 6, 7});
    begin("PostQC", 1, most, [](auto& header) {
        header.WellChannels.clear();
        header.RecordingStartTime = 0;
    });
    m_writer.UpdateFileHdr("PostQC", {"-9223372036854775808"});
    m_writer.Close();
    ExpectBytesOf("several_recordings");
}

TEST_F(WrittenReferenceFile, AwkwardText) {
    CRawDataFileHdr fileHdr = ExampleFileHdr();
    fileHdr.HeaderID = "OVL Vexaprobe=2:x";
    fileHdr.FileType = "=Raw";
    fileHdr.ProgramVersion = "";
    fileHdr.Guid = ":";
    fileHdr.PlateID = "nineteen bytes long";
    fileHdr.CompoundName = "A:B";
    m_writer.WriteFileHdr(fileHdr);
    m_writer.UpdateFileHdr("CompoundTest", {"1"});
    for (const char* task :
         {"Task=One", "", "thirty-eight bytes, the most that fit.", "two\r\nlines", "\xb5M \\ \"q\""})
        m_writer.WriteRecordingHdr(ExampleRecordingHdr(task));
    m_writer.Close();
    ExpectBytesOf("awkward_text");
}

}  // namespace
