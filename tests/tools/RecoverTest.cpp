#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

#include "tests/rawdata/RawFileBytes.h"
#include "tests/support/TempFolder.h"
#include "tests/tools/Stride.h"
#include "tools/vxfile/io/Failure.h"
#include "tools/vxfile/raw/RawVerify.h"
#include "tools/vxfile/recover/RecoverReport.h"

namespace {

using vxfile::CFailure;
using vxfile::CRecoverReport;

/// One segment as the library reads it, with the recording that it came from.
struct CSeen {
    std::string recording;  ///< Task and number.
    std::int32_t well = 0;
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::vector<std::uint16_t> samples;
    std::size_t position = 0;  ///< Of its header in a file whose headers follow one another.

    std::size_t End() const { return position + 300 + 2 * samples.size(); }
    bool operator==(const CSeen& other) const = default;
};

std::ostream& operator<<(std::ostream& out, const CSeen& seen) {
    return out << seen.recording << ": well " << seen.well << " [" << seen.from << ".." << seen.to << "] "
               << seen.samples.size() << " samples";
}

void AppendSegments(CIRawDataReader& reader, const CRawDataRecordingHdr& header, std::vector<CSeen>& seen) {
    CSeen one;
    one.recording = header.TaskName + std::to_string(header.Recording);
    one.position = static_cast<std::size_t>(header.FPosRecordingData);
    std::uint32_t size = 0;
    std::uint16_t* samples = nullptr;
    while (reader.ReadSegment(one.well, one.from, one.to, size, samples)) {
        one.samples.assign(samples, samples + size);
        seen.push_back(one);
        one.position = one.End();
    }
}

/// Reads all that a file holds. A recording without segments has nothing at its position.
std::vector<CSeen> SeenIn(const std::string& path) {
    CVXFileIO io;
    CIRawDataReader& reader = *io.GetRawDataReader();
    reader.Open(path);
    std::vector<CSeen> seen;
    for (int i = 0; i < reader.GetIndex()->GetCount(); ++i) {
        const CIndexEntry& entry = *reader.GetIndex()->GetEntry(i);
        const CRawDataRecordingHdr* header = reader.GetRecordingHdr(entry.TaskName, entry.Recording);
        EXPECT_TRUE(reader.JumpToData(entry.TaskName, entry.Recording)) << "not finished";
        try {
            AppendSegments(reader, *header, seen);
        } catch (const CExcVXReader& failure) {
            EXPECT_TRUE(seen.empty() || seen.back().position < static_cast<std::size_t>(header->FPosRecordingData))
                << failure.GetMsg();
        }
    }
    return seen;
}

class RecoverTest : public testing::Test {
 protected:
    /// Recovers these bytes; an empty list also if there was nothing to save.
    std::vector<CSeen> Recovered(const std::string& bytes, bool keepCut = false) {
        WriteAll(m_in, bytes);
        m_report = {};
        try {
            m_report = vxfile::Recover(m_in, m_out, keepCut);
        } catch (const CFailure&) {
            return {};
        }
        EXPECT_EQ(ReadAll(m_in), bytes);
        EXPECT_EQ(static_cast<std::size_t>(m_report.bytes), std::filesystem::file_size(m_out));
        return SeenIn(m_out);
    }

    /// Holds the new file against the format. What a caller may give any writer of the library is let pass.
    void ExpectSound() const {
        const std::set<std::string> choices = {"a well that the recording lists",
                                               "a text without '=', ':' and line ends"};
        const vxfile::CFindings findings = vxfile::VerifyRawData(m_out);
        for (const auto& finding : findings.Kept()) {
            EXPECT_TRUE(choices.contains(finding.expected))
                << finding.where << ": " << finding.found << ", not " << finding.expected;
        }
    }

    /// The same without the positions, which differ as soon as something is left out.
    static std::vector<CSeen> Placeless(std::vector<CSeen> seen) {
        for (CSeen& one : seen)
            one.position = 0;
        return seen;
    }

    /// In memory, where there is such a folder: the tests make thousands of files.
    static std::filesystem::path Parent() {
        return std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path();
    }

    CTempFolder m_folder{Parent()};
    std::string m_in = m_folder.Path("in.vxd");
    std::string m_out = m_folder.Path("out.vxd");
    CRecoverReport m_report;
};

std::string Reference(const std::string& name) { return std::string(VXFILEIO_REFERENCE_DIR) + "/" + name; }

TEST_F(RecoverTest, WholeFilesComeOutByteForByte) {
    for (const char* name : {"several_recordings.vxd", "small_example.vxd"}) {
        const std::string bytes = ReadAll(Reference(name));
        EXPECT_FALSE(Recovered(bytes).empty());
        EXPECT_EQ(ReadAll(m_out), bytes) << name;
        EXPECT_TRUE(m_report.IsComplete()) << name;
    }
}

// Positions of the four recording headers and of the segments tell what each cut leaves.
TEST_F(RecoverTest, EveryTruncationGivesEveryWholeSegmentAndNothingElse) {
    const std::string whole = ReadAll(Reference("several_recordings.vxd"));
    const std::vector<CSeen> all = SeenIn(Reference("several_recordings.vxd"));
    ASSERT_EQ(all.size(), 7U);
    for (std::size_t size = 0; size <= whole.size(); size += kStride) {
        SCOPED_TRACE(size);
        std::vector<CSeen> expected;
        for (const CSeen& one : all) {
            if (one.End() <= size) expected.push_back(one);
        }
        ASSERT_EQ(Recovered(whole.substr(0, size)), expected);
        const std::size_t headers = (size >= 3650) + (size >= 7324) + (size >= 9784) + (size >= 13160);
        ASSERT_EQ(m_report.recordings.size(), headers);

        // What the cut leaves of a segment of a well whose interval is known. Of one sample no half can be kept.
        const auto cut =
            std::ranges::find_if(all, [&](const CSeen& one) { return one.End() > size && one.position + 302 <= size; });
        if (cut != all.end() && cut->well >= 0) {
            CSeen part = *cut;
            part.samples.resize((size - cut->position - 300) / 2);
            const std::int64_t tick = part.well == 1 ? 100 : part.well == 2 ? 50 : 1;
            part.to = part.from + tick * static_cast<std::int64_t>(part.samples.size() - 1);
            expected.push_back(part);
        }
        ASSERT_EQ(Recovered(whole.substr(0, size), true), expected);
    }
}

// The oracle: what the damage didn't touch is all there, and what it touched is there as the file has it, or not.
TEST_F(RecoverTest, NoDamagedByteCostsAWholeSegmentOrBringsAWrongSample) {
    const std::string whole = ReadAll(Reference("several_recordings.vxd"));
    const std::vector<CSeen> all = SeenIn(Reference("several_recordings.vxd"));
    for (std::size_t at = 0; at < whole.size(); at += kStride) {
        for (const int flip : {0x01, 0x10, 0xFF}) {
            SCOPED_TRACE(testing::Message() << "byte " << at << ", flip " << flip);
            std::string bytes = whole;
            bytes[at] = static_cast<char>(bytes[at] ^ flip);
            const std::vector<CSeen> kept = Recovered(bytes);
            ExpectSound();
            auto next = kept.begin();
            for (const CSeen& one : all) {
                const bool touched = at >= one.position && at < one.End();
                const bool inSamples = touched && at >= one.position + 300;
                const bool named = at < 1190 + 100 || at >= 13160 - 2460 || next == kept.end() ||
                                   next->recording == one.recording || !touched;
                if (next == kept.end() || (touched && !inSamples && next->samples != one.samples)) {
                    ASSERT_TRUE(touched && !inSamples) << "lost: " << one;
                    continue;
                }
                CSeen expected = one;
                if (inSamples) {
                    const std::size_t sample = (at - one.position - 300) / 2;
                    expected.samples[sample] ^=
                        static_cast<std::uint16_t>((at - one.position) % 2 == 0 ? flip : flip << 8);
                }
                EXPECT_TRUE(named);
                ASSERT_EQ(next->samples, expected.samples) << one;
                if (!touched || inSamples) {
                    ASSERT_EQ(next->well, one.well) << one;
                    ASSERT_EQ(next->from, one.from) << one;
                    ASSERT_EQ(next->to, one.to) << one;
                }
                ++next;
            }
            ASSERT_EQ(next, kept.end()) << "out of nothing: " << *next;
        }
    }
}

/// One recording of a whole small file, its segments told apart by their samples.
std::string WithSegment(const std::string& samples) {
    const std::string size = std::to_string(samples.size() / 2);
    const auto last = static_cast<std::int64_t>(samples.size() / 2 - 1) * 100;
    const auto second = 3650 + 300 + static_cast<std::int64_t>(samples.size());
    return FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650}) + SegmentHdrBytes(11, second, 0, last, size) +
           samples + SegmentHdrBytes(12, -1, 0, 300, "4") + SampleBytes(kWell12);
}

// A raw data file is the samples of a segment whose own header is damaged, worse and worse: of the file within nothing
// may come out, and the segment behind it must.
TEST_F(RecoverTest, FilesWithinSamplesArePassedOver) {
    const std::string inner = ReadAll(Reference("several_recordings.vxd"));
    const std::string unfinished = inner.substr(0, 1190) + RecordingHdrBytes({}) + inner.substr(3650, 1214);
    for (const std::string& samples : {inner + std::string(2, '\0'), unfinished, inner.substr(0, 9784 + 300)}) {
        const std::string whole = WithSegment(samples);
        for (const std::size_t damaged : {0U, 1U, 2U, 3U, 6U}) {
            std::string bytes = whole;
            for (std::size_t cell = 0; cell < damaged; ++cell)
                bytes.replace(3650 + 50 * ((cell + 5) % 6), 50, std::string(50, 'x'));
            const std::vector<CSeen> kept = Recovered(bytes);
            ASSERT_FALSE(kept.empty());
            EXPECT_EQ(kept.back().samples, kWell12);
            EXPECT_LE(kept.size(), 2U) << damaged;
            EXPECT_EQ(kept.front().samples.size(), kept.size() == 2 ? samples.size() / 2 : 4);
            EXPECT_EQ(kept.size() == 2, damaged <= 1) << damaged;  // the size alone is told by the times, too
        }
    }
}

TEST_F(RecoverTest, LostRecordingHeadersAreMadeUp) {
    const std::string whole = ReadAll(Reference("several_recordings.vxd"));
    const std::vector<CSeen> all = SeenIn(Reference("several_recordings.vxd"));
    std::string bytes = whole;
    bytes.replace(7324, 2460, std::string(2460, '\xAA'));
    std::vector<CSeen> kept = Recovered(bytes);
    ASSERT_EQ(kept.size(), all.size());
    EXPECT_EQ(kept[3], all[3]);
    EXPECT_EQ(kept[4].recording, "Recovered3");
    EXPECT_EQ(kept[4].samples, all[4].samples);
    EXPECT_FALSE(m_report.IsComplete());

    // All but the name is lost; the name stays, and the interval is what the segments say.
    bytes = whole;
    bytes.replace(1190 + 50, 2410, std::string(2410, '\xAA'));
    kept = Recovered(bytes);
    ASSERT_EQ(kept.size(), all.size());
    EXPECT_EQ(kept[0].recording, "PreQC1");
    CVXFileIO io;
    io.GetRawDataReader()->Open(m_out);
    const auto& wells = io.GetRawDataReader()->GetRecordingHdr("PreQC", 1)->WellChannels;
    ASSERT_EQ(wells.size(), 2U);
    EXPECT_EQ(wells[0].Ticks, 100);
    EXPECT_EQ(wells[1].Ticks, 50);
}

TEST_F(RecoverTest, ChainsThatRunBackwardsKeepTheirOrder) {
    const auto original = Placeless(SeenIn(Reference("backwards.vxd")));
    EXPECT_EQ(Placeless(Recovered(ReadAll(Reference("backwards.vxd")))), original);
    EXPECT_EQ(original.size(), 3U);
}

TEST_F(RecoverTest, WhatComesOutIsSoundWhateverWentIn) {
    for (const auto& entry : std::filesystem::directory_iterator(VXFILEIO_REFERENCE_DIR)) {
        if (entry.path().extension() != ".vxd") continue;
        SCOPED_TRACE(entry.path().filename().string());
        std::filesystem::remove(m_out);
        Recovered(ReadAll(entry.path().string()));
        if (!std::filesystem::exists(m_out)) continue;
        ExpectSound();
    }
}

#ifndef _WIN32

/// Writes segments for ever and tells each through the pipe once the library has taken it.
[[noreturn]] void WriteUntilKilled(const std::string& path, int acknowledge) {
    CVXFileIO io;
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    writer.Open(path);
    writer.WriteFileHdr({.HeaderID = "OVL Vexaprobe", .FileVersion = 2});
    std::vector<std::uint16_t> samples(500);
    for (std::int32_t segment = 0;; ++segment) {
        if (segment % 40 == 0) {
            CRawDataRecordingHdr header{.TaskName = "Series", .Recording = segment / 40};
            header.WellChannels = {{11, 32768, 0.0002, 10}};
            writer.WriteRecordingHdr(header);
        }
        samples.assign(samples.size(), static_cast<std::uint16_t>(segment));
        writer.WriteData(11, segment * 5000, segment * 5000 + 4990, 10, samples.data());
        if (write(acknowledge, &segment, sizeof segment) != sizeof segment) _exit(1);
    }
}

TEST_F(RecoverTest, KilledWritersLoseNothingThatTheyAcknowledged) {
    for (int round = 0; round < 100; ++round) {
        int pipeEnds[2];
        ASSERT_EQ(pipe(pipeEnds), 0);
        const pid_t writer = fork();
        if (writer == 0) WriteUntilKilled(m_in, pipeEnds[1]);
        close(pipeEnds[1]);
        std::int32_t last = -1;
        const bool begun = read(pipeEnds[0], &last, sizeof last) == sizeof last;
        usleep(static_cast<useconds_t>(round * 37 % 2000));
        kill(writer, SIGKILL);
        ASSERT_EQ(waitpid(writer, nullptr, 0), writer);
        while (read(pipeEnds[0], &last, sizeof last) == sizeof last) {
        }
        close(pipeEnds[0]);
        ASSERT_TRUE(begun);
        const auto kept = Recovered(ReadAll(m_in));
        ASSERT_GT(kept.size(), static_cast<std::size_t>(last)) << round;
        ASSERT_LE(kept.size(), static_cast<std::size_t>(last) + 2) << round;
        for (std::size_t i = 0; i < kept.size(); ++i) {
            ASSERT_EQ(kept[i].recording, "Series" + std::to_string(i / 40));
            ASSERT_EQ(kept[i].samples, std::vector<std::uint16_t>(500, static_cast<std::uint16_t>(i)));
        }
        EXPECT_EQ(vxfile::VerifyRawData(m_out).Count(), 0U) << round;
    }
}

#endif

}  // namespace
