#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <map>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

#include "recovery/Recover.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/recovery/StringInput.h"
#include "tests/support/TempFolder.h"
#include "tests/tools/Stride.h"
#include "verify/raw/RawVerify.h"

namespace {

using vxfileio::recovery::CRemark;
using vxfileio::recovery::CReport;
using vxfileio::recovery::EReason;

/// One segment as the library reads it, with its recording.
struct CSeen {
    std::string recording;  ///< Task and number.
    std::int32_t well = 0;
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::vector<std::uint16_t> samples;
    std::size_t position = 0;  ///< The offset of its header in a file without gaps between headers.

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

/// Reads all segments of a file. The position of a recording without segments may point at anything.
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

struct CWritten;

class RecoverTest : public testing::Test {
 protected:
    /// Recovers the bytes. Returns an empty list if there is nothing to recover.
    std::vector<CSeen> Recovered(const std::string& bytes, bool keepCut = false) {
        std::string saved;
        const auto save = [&](std::span<const std::byte> part) {
            saved.append(reinterpret_cast<const char*>(part.data()), part.size());
        };
        m_report = vxfileio::recovery::Recover(CStringInput(bytes), {.keepCut = keepCut}, save);
        EXPECT_EQ(static_cast<std::size_t>(m_report.bytes), saved.size());
        if (saved.empty()) return {};
        WriteAll(m_out, saved);
        return SeenIn(m_out);
    }

    /// Recovers the bytes for the report alone. Returns how many segments are kept.
    std::uint64_t KeptOf(const std::string& bytes) {
        m_report = vxfileio::recovery::Recover(CStringInput(bytes), {}, [](std::span<const std::byte>) {});
        std::uint64_t segments = 0;
        for (const auto& recording : m_report.recordings) {
            for (const auto& [well, kept] : recording.wells)
                segments += kept.segments;
        }
        return segments;
    }

    /// Verifies the new file. Recovery doesn't repair texts and times, so some findings are allowed.
    void ExpectSound() const {
        const std::set<std::string> allowed = {"no-separator", "no-controls", "no-overlap"};
        const vxfile::CFindings findings = vxfile::VerifyRawData(m_out);
        for (const auto& finding : findings.Kept()) {
            EXPECT_TRUE(allowed.contains(finding.rule))
                << finding.where << ": " << finding.found << ", not " << finding.expected;
        }
    }

    void ExpectPromiseKept(const CWritten& file, const std::string& bytes);

    /// Clears the positions, which change as soon as a segment is left out.
    static std::vector<CSeen> Placeless(std::vector<CSeen> seen) {
        for (CSeen& one : seen)
            one.position = 0;
        return seen;
    }

    CTempFolder m_folder;
    std::string m_in = m_folder.Path("in.vxd");
    std::string m_out = m_folder.Path("out.vxd");
    CReport m_report;
};

std::vector<std::uint16_t> SamplesIn(const std::string& bytes) {
    std::vector<std::uint16_t> samples;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        samples.push_back(static_cast<std::uint16_t>(static_cast<unsigned char>(bytes[i]) |
                                                     static_cast<unsigned char>(bytes[i + 1]) << 8));
    return samples;
}

std::string Reference(const std::string& name) { return std::string(VXFILEIO_REFERENCE_DIR) + "/" + name; }

TEST_F(RecoverTest, WholeFilesComeOutByteForByte) {
    const std::string small = ReadAll(Reference("small_example.vxd"));
    EXPECT_EQ(Recovered(small).size(), 2U);
    EXPECT_EQ(ReadAll(m_out), small);
    EXPECT_TRUE(m_report.IsComplete());

    // Recovery reports a well that isn't listed and lists it; otherwise the file would be unsound. All else stays.
    std::string several = ReadAll(Reference("several_recordings.vxd"));
    EXPECT_EQ(Recovered(several), SeenIn(Reference("several_recordings.vxd")));
    several.replace(7324 + 400, 1030,
                    Cell(30, "NumberOfWells=2") + Cell(200, "WellIDs=96:-2147483648") + Cell(200, "Ticks=1:1") +
                        Cell(400, "UnitsPerADs=-2.5e+06:-2.5e+06") + Cell(200, "ADZeros=0:0"));
    EXPECT_EQ(ReadAll(m_out), several);
    ASSERT_EQ(m_report.doubts.first.size(), 2U);
    EXPECT_EQ(m_report.doubts.first[0].from, 10392);
    EXPECT_EQ(m_report.doubts.first[1].from, 13160) << "the last recording is empty or lost its segments";
}

TEST_F(RecoverTest, SegmentsOfAnyLengthAndOrderComeOutByteForByte) {
    std::vector<std::uint16_t> samples(600'000);  // more than one block
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::uint16_t>(i * 7);
    const std::string file = FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650}) +
                             SegmentHdrBytes(11, 3950 + 1'200'000, 400, 60'000'300, "600000") + SampleBytes(samples) +
                             SegmentHdrBytes(11, -1, 0, 300, "4") + SampleBytes(kWell11);
    EXPECT_EQ(Recovered(file).size(), 2U);
    EXPECT_TRUE(ReadAll(m_out) == file);
    ASSERT_EQ(m_report.recordings.size(), 1U);
    EXPECT_EQ(m_report.recordings[0].wells.at(11),
              (vxfileio::recovery::CKeptWell{.segments = 2, .samples = 600'004, .from = 0, .to = 60'000'300}));
}

// The offsets of the four recording headers and of the segments determine what each cut leaves.
TEST_F(RecoverTest, EveryTruncationKeepsAllWholeSegmentsAndNothingElse) {
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
        EXPECT_TRUE(headers == 0 || size == whole.size() || !m_report.losses.None()) << "loss not reported";

        // What the cut leaves of a segment. Half a sample can't be kept.
        const auto cut =
            std::ranges::find_if(all, [&](const CSeen& one) { return one.End() > size && one.position + 302 <= size; });
        EXPECT_EQ(
            std::ranges::any_of(m_report.losses.first,
                                [](const CRemark& loss) { return loss.reason == EReason::Cut && loss.should != 0; }),
            cut != all.end())
            << "whether another option keeps samples";
        if (cut != all.end()) {
            CSeen part = *cut;
            part.samples.resize((size - cut->position - 300) / 2);
            const std::int64_t tick = part.well == 1 ? 100 : part.well == 2 ? 50 : 1;
            part.to = part.from + tick * static_cast<std::int64_t>(part.samples.size() - 1);
            expected.push_back(part);
        }
        ASSERT_EQ(Recovered(whole.substr(0, size), true), expected);
    }
}

/// Values that a damaged byte may have: zero, all ones, one flipped bit, another digit.
std::vector<char> DamagesOf(char byte) {
    std::vector<char> damages = {'\0', '\xFF', static_cast<char>(byte ^ 1), static_cast<char>(byte ^ 0x10)};
    if (byte >= '0' && byte <= '9') {
        damages.push_back(static_cast<char>('0' + (byte - '0' + 1) % 10));
        damages.push_back(static_cast<char>('0' + (byte - '0' + 3) % 10));
    }
    std::erase(damages, byte);
    return damages;
}

/// A file and its contents.
struct CWritten {
    std::string bytes;
    std::vector<CSeen> segments;
    std::map<std::int32_t, std::int64_t> ticks;  ///< The intervals of the wells.

    /// Returns the offset of the last recording header at or before a position.
    std::size_t HeaderAhead(std::size_t position) const { return bytes.rfind("TaskName=", position); }
};

CWritten Written(const std::string& name, std::map<std::int32_t, std::int64_t> ticks) {
    return {ReadAll(Reference(name)), SeenIn(Reference(name)), std::move(ticks)};
}

/// Checks what became of one segment. `kept` is the next one in the new file, or null.
bool IsRightlyKept(const CWritten& file, const CSeen& one, const CSeen* kept, const std::string& bytes,
                   const CReport& report) {
    const auto differs = [&](std::size_t from, std::size_t to) {
        return bytes.compare(from, to - from, file.bytes, from, to - from) != 0;
    };
    const std::vector<std::uint16_t> samples = SamplesIn(bytes.substr(one.position + 300, 2 * one.samples.size()));
    const bool damaged = differs(one.position, one.position + 300);
    if (kept == nullptr || kept->samples != samples) {
        EXPECT_TRUE(damaged) << "lost: " << one;
        EXPECT_FALSE(report.losses.None()) << "loss not reported: " << one;
        return false;
    }
    const std::size_t header = file.HeaderAhead(one.position);
    EXPECT_TRUE(kept->recording == one.recording || differs(header, header + 100)) << *kept;
    const bool isSame = kept->well == one.well && kept->from == one.from && kept->to == one.to;
    const std::int64_t tick = file.ticks.at(one.well);
    const bool fitsAsWell = kept->well == one.well && (kept->to - kept->from) / tick == (one.to - one.from) / tick;
    EXPECT_TRUE(isSame || (damaged && (fitsAsWell || !report.IsComplete()))) << one << " became " << *kept;
    return true;
}

/// Recovers a damaged file. Expects that undamaged segments are complete, that damaged ones are right or reported, and
/// that there are no others.
void RecoverTest::ExpectPromiseKept(const CWritten& file, const std::string& bytes) {
    const std::vector<CSeen> kept = Recovered(bytes);
    ExpectSound();
    std::size_t next = 0;
    for (const CSeen& one : file.segments)
        next += IsRightlyKept(file, one, next < kept.size() ? &kept[next] : nullptr, bytes, m_report) ? 1 : 0;
    EXPECT_EQ(next, kept.size()) << "made up";
}

TEST_F(RecoverTest, NoDamagedByteCostsAWholeSegmentOrBringsAWrongSample) {
    const CWritten small = Written("small_example.vxd", {{11, 100}, {12, 100}});
    const CWritten several =
        Written("several_recordings.vxd", {{1, 100}, {2, 50}, {96, 1}, {std::numeric_limits<std::int32_t>::min(), 1}});
    for (const CWritten& file : {small, several}) {
        for (std::size_t at = 0; at < file.bytes.size() && !HasFailure(); at += kStride) {
            const auto damages = DamagesOf(file.bytes[at]);
            for (std::size_t i = 0; i < damages.size(); ++i) {
                if (file.segments.size() > 2 && i != at % damages.size()) continue;  // one is enough in the larger file
                SCOPED_TRACE(testing::Message() << "byte " << at << " is " << static_cast<int>(damages[i]));
                std::string bytes = file.bytes;
                bytes[at] = damages[i];
                ExpectPromiseKept(file, bytes);
                const std::string saved = ReadAll(m_out);
                EXPECT_TRUE(!m_report.IsComplete() || saved == bytes) << "repair not reported";
            }
        }
    }
}

/// Segments of wells 11 and 12 in turn, each with different samples.
CWritten TakingTurns(int rounds) {
    CWritten file{FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650}), {}, {{11, 100}, {12, 100}}};
    for (int i = 0; i < 2 * rounds; ++i) {
        const std::vector<std::uint16_t> samples(4, static_cast<std::uint16_t>(i));
        const int from = i / 2 * 400;
        const auto position = static_cast<std::int64_t>(file.bytes.size());
        file.segments.push_back({"CompoundTest1", 11 + i % 2, from, from + 300, samples, file.bytes.size()});
        file.bytes += SegmentHdrBytes(11 + i % 2, i + 1 < 2 * rounds ? position + 308 : -1, from, from + 300, "4") +
                      SampleBytes(samples);
    }
    return file;
}

std::vector<CSeen> Without(std::vector<CSeen> segments, std::size_t one) {
    segments.erase(segments.begin() + static_cast<std::ptrdiff_t>(one));
    return segments;
}

TEST_F(RecoverTest, WellIDsCountMoreThanAnotherListOfAnotherLength) {
    std::string bytes = SmallFileBytes();
    bytes.replace(1190 + 400, 30, 30, '\xAA');  // the number of wells
    bytes.replace(1190 + 430, 200, Cell(200, "WellIDs=11:12:13"));
    bytes.replace(1190 + 830, 600, 600, '\xAA');  // two of the other three lists
    EXPECT_EQ(Recovered(bytes).size(), 2U);
    EXPECT_EQ(ReadAll(m_out).substr(1190 + 400, 230), Cell(30, "NumberOfWells=3") + Cell(200, "WellIDs=11:12:13"));
}

TEST_F(RecoverTest, DamagedWellIDsFollowFromTimesAndTurns) {
    const CWritten file = TakingTurns(4);
    ASSERT_EQ(Recovered(file.bytes), file.segments);
    for (const CSeen& one : file.segments) {
        for (const char digit : {'1', '2', '7'}) {
            std::string bytes = file.bytes;
            if (std::exchange(bytes[one.position + 54], digit) == digit) continue;
            EXPECT_EQ(Recovered(bytes), file.segments) << one << " with " << digit;
            EXPECT_EQ(ReadAll(m_out), file.bytes);
            ASSERT_EQ(m_report.doubts.first.size(), 1U);
            EXPECT_EQ(m_report.doubts.first[0].from, static_cast<std::int64_t>(one.position));
        }
    }

    // If the file ends after the first segment of a turn, nothing shows which well an unlisted ID means: it stays.
    std::string bytes = file.bytes.substr(0, file.segments[7].position);
    bytes[file.segments[6].position + 54] = '7';
    EXPECT_EQ(Recovered(bytes).back().well, 17);
    EXPECT_FALSE(m_report.IsComplete());
    ExpectSound();
}

TEST_F(RecoverTest, TheIntervalIsTheOneThatMostSegmentsFit) {
    const CWritten file = TakingTurns(3);
    const auto damage = [&](std::string bytes, std::size_t at, const std::string& key, const std::string& value) {
        const std::size_t cell = bytes.find(key, at) + key.size();
        return bytes.replace(cell, value.size(), value);
    };
    // The header lists an interval for well 11 that none of its segments fits. One of them has a damaged time, which
    // follows from the segments before and after it.
    const std::string wrong = damage(file.bytes, 1190, "Ticks=", "500:100");
    for (const auto& [key, value] :
         {std::pair("TimeTo=", "900"), std::pair("TimeTo=", "100"), std::pair("TimeFrom=", "900")}) {
        EXPECT_EQ(Recovered(damage(wrong, file.segments[2].position, key, value)), file.segments);
        EXPECT_EQ(ReadAll(m_out), file.bytes);
        ASSERT_EQ(m_report.doubts.first.size(), 1U);
        EXPECT_EQ(m_report.doubts.first[0].from, static_cast<std::int64_t>(file.segments[2].position));
    }

    // The well has no other segment.
    const CWritten two = TakingTurns(1);
    EXPECT_EQ(Placeless(Recovered(damage(two.bytes, two.segments[0].position, "TimeTo=", "900"))),
              Placeless({two.segments[1]}));
    ExpectSound();
    ASSERT_EQ(m_report.losses.first.size(), 1U);
    EXPECT_EQ(m_report.losses.first[0].from, 3650);

    // No segment fits the header, so its intervals belong to another recording.
    EXPECT_EQ(Recovered(damage(two.bytes, 1190, "Ticks=", "500:500")), two.segments);
    EXPECT_EQ(ReadAll(m_out), two.bytes);

    // The header's interval wins if the other segments fit it, even if another interval would fit all.
    const std::string alone = damage(file.bytes, 1190, "Ticks=", std::string("100:99\0", 7));
    Recovered(damage(alone, file.segments[0].position, "TimeFrom=", "1"));
    EXPECT_EQ(ReadAll(m_out), alone);

    // The interval is lost, and no two segments agree on one.
    std::string none = damage(file.bytes, 1190, "Ticks=", "xxx:xxx");
    none = damage(none, file.segments[0].position, "TimeTo=", "399");
    none = damage(none, file.segments[2].position, "TimeTo=", "900");
    EXPECT_GE(Recovered(none).size(), 4U);
    ExpectSound();

    // A size that contradicts the other values is damaged, even if it can be read.
    EXPECT_EQ(Recovered(damage(file.bytes, file.segments[2].position, "Size=", "5")), file.segments);
    EXPECT_EQ(ReadAll(m_out), file.bytes);
    ASSERT_EQ(m_report.doubts.first.size(), 1U);
    const CRemark& doubt = m_report.doubts.first.front();
    ASSERT_EQ(doubt.reason, EReason::DamagedCells);
    EXPECT_TRUE(doubt.cells[doubt.form->RowOf("Size")] && doubt.lost[doubt.form->RowOf("Size")]);
}

// Readers hold an interval in 32 bits.
TEST_F(RecoverTest, IntervalsThatReadersCannotHoldAreNotMadeUp) {
    const std::string chain = ChainBytes({{11, 0, {1, 2}, 3'000'000'000}, {12, 0, {3, 4}, 5'000'000'000}});
    std::string bytes = FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650}) + chain;
    bytes.replace(bytes.find("Ticks=") + 6, 7, "xxx:xxx");
    const std::vector<CSeen> kept = Recovered(bytes);
    ASSERT_EQ(kept.size(), 1U);  // the samples of the other well are more than 32 bits apart
    EXPECT_EQ(kept[0].samples, (std::vector<std::uint16_t>{1, 2}));
    ExpectSound();
    ASSERT_EQ(m_report.losses.first.size(), 1U);
    EXPECT_EQ(m_report.losses.first[0].wellID, 12);
    EXPECT_NE(ReadAll(m_out).find("Ticks=2147483647"), std::string::npos);
}

// In an unfinished recording only the segments' positions show that something is missing. An empty one has none.
TEST_F(RecoverTest, CutsBetweenSegmentsAreReported) {
    CWritten file = TakingTurns(3);
    file.bytes.replace(1190 + 150, 50, Cell(50, "FPosRecordingData=-1"));
    for (const CSeen& one : file.segments) {
        EXPECT_EQ(Recovered(file.bytes.substr(0, one.position)).size(), (one.position - 3650) / 308);
        const auto& remarks = one.position == 3650 ? m_report.doubts : m_report.losses;
        ASSERT_EQ(remarks.first.size(), 1U);
        EXPECT_EQ(remarks.first[0].from, static_cast<std::int64_t>(one.position));
        EXPECT_EQ(remarks.first[0].recording, 0U);

        // The same if another file follows.
        Recovered(file.bytes.substr(0, one.position) + file.bytes);
        ASSERT_EQ(remarks.first.size(), 1U);
        EXPECT_EQ(remarks.first[0].from, static_cast<std::int64_t>(one.position));
        EXPECT_EQ(remarks.first[0].recording, 0U);
    }
    EXPECT_EQ(Recovered(file.bytes), file.segments);
    EXPECT_TRUE(m_report.IsComplete());
}

// The damage hits the line end, the padding, or the value.
TEST_F(RecoverTest, OneDamagedCellOfASegmentFollowsFromTheOthers) {
    const CWritten file = TakingTurns(3);
    for (const CSeen& one : file.segments) {
        for (std::size_t cell = one.position; cell < one.position + 300; cell += 50) {
            for (const std::size_t at : {cell + 49, cell + 40, file.bytes.find('=', cell) + 1}) {
                std::string bytes = file.bytes;
                bytes[at] = 'x';
                EXPECT_EQ(Recovered(bytes), file.segments) << "byte " << at;
                EXPECT_EQ(ReadAll(m_out), file.bytes);
                ASSERT_FALSE(m_report.doubts.None()) << "byte " << at;
                EXPECT_EQ(m_report.doubts.first[0].from, static_cast<std::int64_t>(one.position));
                EXPECT_TRUE(m_report.losses.None());
            }
        }
    }

    // Nothing follows the damaged header's samples, so only its position confirms where they end.
    std::string alone = file.bytes;
    alone.replace(file.segments[3].position, 300, 300, 'x');
    alone[file.segments[2].position + 40] = 'x';
    EXPECT_EQ(Placeless(Recovered(alone)), Without(Placeless(file.segments), 3));
    alone[file.segments[2].position + 119] = 'x';
    EXPECT_EQ(Placeless(Recovered(alone)), Without(Without(Placeless(file.segments), 3), 2));

    // The intervals are lost, so a size follows from the position, which inserted bytes made wrong.
    std::string moved = file.bytes;
    moved.replace(moved.find("Ticks=") + 6, 7, "xxx:xxx");
    moved[file.segments[3].position + 255] = 'x';
    EXPECT_EQ(Placeless(Recovered(moved.insert(file.segments[1].position, 10, '\xAA'))), Placeless(file.segments));
}

/// A file with a segment whose samples look like a whole segment: of well 12, with the times that come next and a
/// correct position.
CWritten WithForgedSegment() {
    CWritten file = TakingTurns(3);
    CSeen& host = file.segments[5];
    const auto forged = static_cast<std::int64_t>(host.position) + 300;
    const std::string samples = SegmentHdrBytes(12, forged + 308, 1200, 1500, "4") + SampleBytes(kWell11);
    file.bytes.replace(host.position, 308, SegmentHdrBytes(12, -1, 800, 16100, "154") + samples);
    host.to = 16100;
    host.samples = SamplesIn(samples);
    file.bytes += RecordingHdrBytes({.recording = 2, .data = static_cast<std::int64_t>(host.End()) + 2460}) +
                  SegmentHdrBytes(11, -1, 0, 300, "4") + SampleBytes(kWell12);
    file.bytes.replace(1190 + 250, 50, Cell(50, "FPosNextRecordingHdr=" + std::to_string(host.End())));
    file.segments.push_back({"CompoundTest2", 11, 0, 300, kWell12, host.End() + 2460});
    return file;
}

// The header before, the one after, or both are destroyed. The segment within the samples must not be recovered; all
// whole ones must.
TEST_F(RecoverTest, SegmentsWithinSamplesAreNoSegments) {
    const CWritten file = WithForgedSegment();
    const CSeen& host = file.segments[5];
    const std::string rubbish(300, '\xAA');
    const auto without = [&](std::string bytes, std::initializer_list<std::size_t> places) {
        for (const std::size_t place : places)
            bytes.replace(place, rubbish.size(), rubbish);
        return bytes;
    };
    ExpectPromiseKept(file, file.bytes);
    ExpectPromiseKept(file, without(file.bytes, {file.segments[4].position}));
    ExpectPromiseKept(file, without(file.bytes, {file.segments[4].position, host.End() + 50}));
    std::string bytes = without(file.bytes, {file.segments[4].position});
    bytes.replace(host.End(), 2460, std::string(2460, '\xAA'));  // destroys the next recording header
    ExpectPromiseKept(file, bytes);
    // A position that points at it doesn't make it a segment, even if the chain continues after it.
    bytes = file.bytes;
    bytes.replace(file.segments[4].position + 100, 50,
                  Cell(50, "FPosNextSegmentHdr=" + std::to_string(host.position + 300)));
    bytes.replace(host.position + 400, 50, Cell(50, "FPosNextSegmentHdr=-1"));
    ASSERT_EQ(Recovered(bytes).size(), file.segments.size());
    EXPECT_EQ(SeenIn(m_out)[5].samples.size(), host.samples.size());
}

// One cell of the next recording header is damaged, and the segment before the last one is destroyed.
TEST_F(RecoverTest, TheLastSegmentStaysIfTheNextRecordingIsDamaged) {
    CWritten file = WithForgedSegment();
    for (std::size_t cell = 0; cell < 2460; cell += 50) {
        std::string bytes = file.bytes;
        bytes.replace(file.segments[4].position, 300, std::string(300, '\xAA'));
        bytes[file.segments[5].End() + cell] = '\0';
        ExpectPromiseKept(file, bytes);
    }

    // The interval is lost, and the next recording header is destroyed: a segment follows.
    file = TakingTurns(1);
    const std::string next = SegmentHdrBytes(11, -1, 0, 300, "4") + SampleBytes(kWell11);
    std::string bytes = file.bytes + std::string(2460, '\xAA') + next;
    bytes.replace(1190 + 430, 400, std::string(400, '\xAA'));
    bytes.replace(file.segments[0].position, 300, std::string(300, '\xAA'));
    const std::vector<CSeen> kept = Recovered(bytes);
    ASSERT_EQ(kept.size(), 2U);
    EXPECT_EQ(kept[0].samples, file.segments[1].samples);
    EXPECT_EQ(kept[1].samples, kWell11);
}

// Positions after the damage are wrong by its size. Segments are found even if no position points at them.
TEST_F(RecoverTest, BytesPutInOrTakenOutMoveTheRestWithoutLosingIt) {
    const CWritten file = TakingTurns(3);
    const auto original = Placeless(file.segments);
    for (const CSeen& one : file.segments) {
        std::string bytes = file.bytes;
        EXPECT_EQ(Placeless(Recovered(bytes.insert(one.position, 1000, '\xAA'))), original) << one;
        EXPECT_FALSE(m_report.losses.None());
        ExpectSound();
    }
    // Nothing shows whether the bytes are within the samples before them or after these.
    Recovered(std::string(file.bytes).insert(file.segments[1].position + 304, 10, '\xAA'));
    EXPECT_FALSE(m_report.doubts.None());
    // Only the segment from which bytes were removed is lost.
    for (std::size_t i = 0; i + 1 < file.segments.size(); ++i) {
        EXPECT_EQ(Placeless(Recovered(std::string(file.bytes).erase(file.segments[i].position + 302, 2))),
                  Without(original, i));
        EXPECT_FALSE(m_report.losses.None());
    }
    EXPECT_EQ(Recovered(std::string(file.bytes).erase(2000, 512)).size(), original.size());
    EXPECT_FALSE(m_report.losses.None());
    // Positions near the end of the number range are never valid, even if they agree.
    std::string far = file.bytes;
    constexpr std::int64_t kEnd = std::numeric_limits<std::int64_t>::max();
    far.replace(file.segments[1].position + 100, 50, Cell(50, "FPosNextSegmentHdr=" + std::to_string(kEnd - 308)));
    far.replace(file.segments[2].position + 100, 50, Cell(50, "FPosNextSegmentHdr=" + std::to_string(kEnd)));
    far.replace(file.segments[4].position, 300, 300, '?');
    EXPECT_EQ(Placeless(Recovered(far)), Without(original, 4));
    // Bytes before the file header aren't part of the file.
    for (const std::size_t size : {1U, 512U}) {
        EXPECT_EQ(Recovered(std::string(size, '\0') + file.bytes), file.segments);
        ASSERT_EQ(m_report.losses.first.size(), 1U);
        EXPECT_EQ(m_report.losses.first[0].to, static_cast<std::int64_t>(size));
    }
    // Without its first bytes it isn't a raw data file. Recovery makes one of the rest, with a made-up recording name.
    std::vector<CSeen> kept = Placeless(Recovered(file.bytes.substr(3000)));
    ASSERT_EQ(kept.size(), original.size());
    for (std::size_t i = 0; i < kept.size(); ++i) {
        kept[i].recording = original[i].recording;
        EXPECT_EQ(kept[i], original[i]);
    }
    ExpectSound();
}

// The samples of this segment are right or lost; all others are right.
TEST_F(RecoverTest, BytesPutIntoAHeaderOrTakenOutOfItBringNoWrongSample) {
    const CWritten file = TakingTurns(3);
    const auto original = Placeless(file.segments);
    const CSeen& hit = file.segments[2];
    for (std::size_t at = 0; at < 300 && !HasFailure(); at += kStride) {
        for (const std::size_t size : {1U, 5U, 10U, 50U}) {
            SCOPED_TRACE(testing::Message() << size << " bytes at " << at);
            const std::size_t place = hit.position + at;
            const auto put = Placeless(Recovered(std::string(file.bytes).insert(place, size, '\0')));
            EXPECT_TRUE(put == original || put == Without(original, 2));
            EXPECT_FALSE(m_report.IsComplete());
            if (at + size >= 300) continue;
            const auto taken = Placeless(Recovered(std::string(file.bytes).erase(place, size)));
            EXPECT_TRUE(taken == original || taken == Without(original, 2));
            EXPECT_FALSE(m_report.IsComplete());
        }
    }
    // All is kept if the size follows from the times.
    EXPECT_EQ(Placeless(Recovered(std::string(file.bytes).insert(hit.position + 220, 3, '\0'))), original);
    EXPECT_EQ(Placeless(Recovered(std::string(file.bytes).erase(hit.position + 270, 3))), original);
}

// The end of one header and the beginning of the next one are removed. What is left looks like one header with bytes in
// it, which would have the samples of the other one.
TEST_F(RecoverTest, TwoHeadersWithoutTheBytesBetweenThemAreNotJoined) {
    const CWritten file = TakingTurns(3);
    const auto original = Placeless(file.segments);
    const std::size_t end = file.segments[2].position + 236;
    EXPECT_EQ(Placeless(Recovered(std::string(file.bytes).erase(end, 100))), Without(original, 2));
    // Of the next header, only the same times and sizes are left.
    EXPECT_EQ(Placeless(Recovered(std::string(file.bytes).erase(end, 180))), Without(Without(original, 3), 2));
}

/// Returns a chain of segments of two wells in turns, 308 bytes each. It begins at the time `from` and the offset `at`.
std::string Turns(std::int64_t count, std::int64_t from, std::int64_t at) {
    CSegmentTexts segments;
    for (const std::int64_t end = from + 400 * count; from < end; from += 400)
        segments.push_back({from % 800 == 0 ? 11 : 12, from, from % 800 == 0 ? kWell11 : kWell12});
    return ChainBytes(segments, at);
}

// The end of a recording header, its segments and the beginning of the next header are removed. What is left has the
// name of the first recording, but the segments of the second one.
TEST_F(RecoverTest, SegmentsAfterThePartsOfTwoRecordingHeadersAreNotOfTheFirst) {
    for (const int count : {1, 2, 3, 4}) {
        const std::int64_t next = 3650 + 308 * 4;
        const std::int64_t last = next + 2460 + 308 * count;
        const std::string file =
            FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650, .next = next}) + Turns(4, 0, 3650) +
            RecordingHdrBytes({.recording = 2, .data = next + 2460, .next = last}) + Turns(count, 10'000, next + 2460) +
            RecordingHdrBytes({.recording = 3, .data = last + 2460}) + Turns(1, 0, last + 2460);
        for (std::size_t first = 3; first < 2460; first += 117 * kStride) {
            for (std::size_t second = 1; second < 2460 && !HasFailure(); second += 131) {
                SCOPED_TRACE(testing::Message() << count << " segments, " << first << " bytes of one header, all but "
                                                << second << " of the other");
                const std::size_t removed = 3692 - first + second;
                std::string bytes = std::string(file).erase(1190 + first, removed);
                // Without this position, nothing shows whether bytes are missing before the last recording.
                if (second % 4 == 1) bytes.replace(static_cast<std::size_t>(last) - removed + 150, 50, 50, '?');
                const auto kept = Recovered(bytes);
                EXPECT_EQ(kept.size(), static_cast<std::size_t>(count) + 1);
                const auto isDoubted = [](const CRemark& doubt) {
                    return doubt.reason == EReason::OtherRecording && doubt.recording == 0;
                };
                const auto isOfFirst = [](const CSeen& seen) { return seen.recording == "CompoundTest1"; };
                // The position of the second recording is in the first 300 bytes. The last segment has no position, and
                // a single one may be wrong.
                EXPECT_TRUE(std::ranges::none_of(kept, isOfFirst) ||
                            ((first < 300 || count < 3) && std::ranges::any_of(m_report.doubts.first, isDoubted)));
            }
        }
    }
}

/// Returns a file of recordings with so many segments each.
std::string RecordingsOf(const std::vector<int>& counts) {
    std::string file = FileHdrBytes(1190);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const auto data = static_cast<std::int64_t>(file.size()) + 2460;
        const std::int64_t next = i + 1 < counts.size() ? data + 308 * counts[i] : -1;
        file += RecordingHdrBytes({.recording = static_cast<int>(i) + 1, .data = data, .next = next}) +
                Turns(counts[i], 10'000 * static_cast<std::int64_t>(i), data);
    }
    return file;
}

bool MayBeOfAnotherRecording(const CRemark& doubt) {
    return doubt.reason == EReason::OtherRecording || (doubt.reason == EReason::OtherHeader && !doubt.wellID);
}

// The bytes between the same offset of two recording headers are removed. What is left is a whole header, so only
// positions show that it is of two recordings.
TEST_F(RecoverTest, AWholeHeaderThatIsMadeOfTwoIsInDoubt) {
    const std::vector<std::vector<int>> files = {{2, 1}, {1, 2}, {1, 1, 2}, {2, 1, 2}, {2, 2, 1}, {1, 2, 1, 2}};
    for (const std::vector<int>& counts : files) {
        const std::string file = RecordingsOf(counts);
        std::size_t header = 1190;
        for (std::size_t first = 0; first + 1 < counts.size(); ++first) {
            const std::size_t size = 2460 + 308 * static_cast<std::size_t>(counts[first]);
            for (std::size_t offset = 95; offset < 2460 && !HasFailure(); offset += 50) {
                SCOPED_TRACE(testing::PrintToString(counts) + ", offset " + std::to_string(offset) + " of header " +
                             std::to_string(first + 1));
                const auto kept = Recovered(std::string(file).erase(header + offset, size));
                EXPECT_EQ(kept.size(),
                          static_cast<std::size_t>(std::reduce(counts.begin(), counts.end()) - counts[first]));
                const auto isOfFirst = [&](const CSeen& seen) {
                    return seen.recording == "CompoundTest" + std::to_string(first + 1);
                };
                const auto isDoubted = [&](const CRemark& doubt) {
                    return MayBeOfAnotherRecording(doubt) && doubt.recording == first &&
                           doubt.from <= static_cast<std::int64_t>(header) + 2460;
                };
                // With its own position from the first header and -1 from the last one, it is as sound as any.
                const bool isSound =
                    first + 2 == counts.size() && counts.back() == 1 && (offset == 195 || offset == 245);
                EXPECT_EQ(
                    std::ranges::none_of(kept, isOfFirst) || std::ranges::any_of(m_report.doubts.first, isDoubted),
                    !isSound);
            }
            header += size;
        }
    }
}

constexpr std::size_t kDataCell = 150;  ///< The offset of the position of the data in a recording header.
constexpr std::size_t kNextCell = 250;  ///< The same of the next recording.

std::string WithPosition(std::string bytes, std::size_t cell, const char* value) {
    const auto size = bytes.find('=', cell) + 1 - cell;
    return bytes.replace(cell, 50, Cell(50, bytes.substr(cell, size) + value));
}

// Recordings of 2, 1 and 3 segments, and the offsets of their headers.
const std::string kThreeRecordings = RecordingsOf({2, 1, 3});
constexpr std::array<std::size_t, 3> kThreeHeaders = {1190, 4266, 7034};

// The positions of the copy are those of the other one.
TEST_F(RecoverTest, SegmentsAfterTheHeaderOfAnotherRecordingAreInDoubt) {
    const std::string unfinished = WithPosition(kThreeRecordings, kThreeHeaders[2] + kDataCell, "-1");
    for (std::uint32_t place = 0; place < 3; ++place) {
        for (const std::string& file : {kThreeRecordings, unfinished}) {
            for (std::uint32_t other = 0; other < 3; ++other) {
                SCOPED_TRACE(testing::Message() << "header " << other + 1 << " at the place of header " << place + 1);
                std::string bytes = file;
                EXPECT_EQ(KeptOf(bytes.replace(kThreeHeaders[place], 2460, file, kThreeHeaders[other], 2460)), 6U);
                const auto isDoubted = [&](const CRemark& doubt) {
                    return doubt.reason == EReason::OtherRecording && doubt.recording == place &&
                           doubt.from == static_cast<std::int64_t>(kThreeHeaders[place]) + 2460;
                };
                EXPECT_EQ(std::ranges::count_if(m_report.doubts.first, isDoubted), other != place);
                EXPECT_EQ(std::ranges::count_if(m_report.doubts.first, MayBeOfAnotherRecording), other != place);
            }
        }
    }
    // A segment that isn't kept is in no doubt.
    std::string copied = kThreeRecordings;
    KeptOf(copied.replace(kThreeHeaders[2], 2460, kThreeRecordings, 1190, 2460).substr(0, kThreeHeaders[2] + 2764));
    EXPECT_TRUE(std::ranges::none_of(m_report.doubts.first, MayBeOfAnotherRecording));
    std::string lost = RecordingsOf({12, 12}).substr(0, 3650 + 308 * 9 + 302);
    KeptOf(lost.replace(1290, 3650 + 308 * 9 - 1290, 3650 + 308 * 9 - 1290, 'x'));
    EXPECT_TRUE(std::ranges::none_of(m_report.doubts.first, MayBeOfAnotherRecording));
}

TEST_F(RecoverTest, OneWrongPositionDoesNotMakeAHeaderACopy) {
    for (const std::size_t header : kThreeHeaders) {
        for (const std::size_t cell : {kDataCell, kNextCell}) {
            SCOPED_TRACE(testing::Message() << "the cell at " << cell << " of the header at " << header);
            EXPECT_EQ(KeptOf(WithPosition(kThreeRecordings, header + cell, "77")), 6U);
            // The last segment has no position, so a single one may be of the next recording.
            const bool isUnshown = header == kThreeHeaders[1] && cell == kNextCell;
            EXPECT_EQ(std::ranges::any_of(m_report.doubts.first, MayBeOfAnotherRecording), isUnshown);
            EXPECT_EQ(KeptOf(WithPosition(kThreeRecordings, header + cell, "-1")), 6U);
            EXPECT_TRUE(std::ranges::none_of(m_report.doubts.first, MayBeOfAnotherRecording));
        }
    }
    // A position beyond the end isn't wrong: what it points at may have been cut off. Nor is -1 before a header that a
    // killed writer has just begun.
    const std::string wrongData = WithPosition(kThreeRecordings, 1190 + kDataCell, "77");
    const std::string killed =
        WithPosition(WithPosition(kThreeRecordings, 1190 + kDataCell, "-1"), 1190 + kNextCell, "-1");
    for (const std::string& bytes :
         {wrongData.substr(0, 4266), wrongData.substr(0, 4000),
          killed.substr(0, 4266) + WithPosition(killed, kThreeHeaders[2] + kDataCell, "-1").substr(7034, 2460)}) {
        KeptOf(bytes);
        EXPECT_TRUE(std::ranges::none_of(m_report.doubts.first, MayBeOfAnotherRecording)) << bytes.size();
    }
}

// What is doubted in one recording doesn't hide the same doubt in the next one.
TEST_F(RecoverTest, EachRecordingHasItsOwnDoubts) {
    std::string file = RecordingsOf({12, 12});  // data at 3650 and 9806
    file.replace(1461, 4, "????");              // the position of the next recording would confirm the first one
    for (const std::size_t data : {3650U, 9806U})
        file.replace(data + 308, 308 * 9, 308 * 9, '\0');
    EXPECT_EQ(Recovered(file).size(), 6U);
    for (const std::uint32_t recording : {0U, 1U}) {
        const auto isOfIt = [&](const CRemark& doubt) {
            return MayBeOfAnotherRecording(doubt) && doubt.recording == recording;
        };
        EXPECT_EQ(std::ranges::count_if(m_report.doubts.first, isOfIt), 1) << recording;
    }
}

// Only the position of the next recording is left of a header. A segment right after the header can't confirm it.
TEST_F(RecoverTest, APositionConfirmsNoRecordingRightAfterIt) {
    for (const std::size_t header : {1190U, 7346U}) {
        SCOPED_TRACE(testing::Message() << "the header at " << header);
        std::string file = RecordingsOf({12, 12, 1});
        file.replace(header, kNextCell, kNextCell, 'x').replace(header + kNextCell + 50, 2160, 2160, 'x');
        file.erase(header + 2460, 308 * 8).replace(header + 2460, 50, 50, 'x');
        KeptOf(file);
        const auto isIt = [&](const CRemark& doubt) {
            return MayBeOfAnotherRecording(doubt) && doubt.from == static_cast<std::int64_t>(header) + 2460;
        };
        EXPECT_EQ(std::ranges::count_if(m_report.doubts.first, isIt), 1);
    }
}

// More samples than a signed number of 32 bits can count. The file has the first four.
TEST_F(RecoverTest, TheBeginningOfAHugeSegmentIsKept) {
    const std::string file = FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650}) +
                             SegmentHdrBytes(11, -1, 0, 299'999'999'900, "3000000000") + SampleBytes(kWell11);
    const std::vector<CSeen> kept = Recovered(file, true);
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept[0].samples, kWell11);
    EXPECT_EQ(kept[0].to, 300);
}

// Nothing is missing there that could be a recording header, or it is missing at the end.
TEST_F(RecoverTest, ShortRecordingsWithOtherDamageAreOfNoOtherRecording) {
    const std::string file = RecordingsOf({1, 1, 1});  // headers at 1190, 3958 and 6726
    const std::map<std::string, std::string> damaged = {
        {"cut before a header", file.substr(0, 6726)},
        {"cut within a header", file.substr(0, 6826)},
        {"cut within a segment", file.substr(0, 6720)},
        {"a header of zeros", std::string(file).replace(6726, 2460, 2460, '\0')},
        {"an inserted byte", std::string(file).insert(3958, "x")},
        {"the first cell of a header removed", std::string(file).erase(3958, 50)},
        {"299 bytes inserted in samples", std::string(file).insert(3952, 299, 'x')},
        {"a wrong own position", std::string(file).replace(6894, 4, "9177")},
    };
    for (const auto& [name, bytes] : damaged) {
        EXPECT_GE(Recovered(bytes, true).size(), 2U) << name;
        EXPECT_TRUE(std::ranges::none_of(m_report.doubts.first, MayBeOfAnotherRecording)) << name;
    }
}

// A file that ends within a recording header, and another one without its file header and the beginning of its first
// recording header. The positions of the second one point back.
TEST_F(RecoverTest, FilesJoinedWithinTheirHeadersStayApart) {
    const std::string first = TakingTurns(2).bytes + RecordingHdrBytes({.recording = 2, .data = 99'999});
    for (std::size_t end = 60; end < 2460; end += 170) {
        for (std::size_t begin = 1; begin < 2460 && !HasFailure(); begin += 190) {
            SCOPED_TRACE(testing::Message() << end << " bytes of one header, all but " << begin << " of the other");
            const int count = begin % 20 == 1 ? 3 : 1;  // of both in turns
            const std::string second = RecordingHdrBytes({.task = "Series", .data = 3650}) + Turns(count, 50'000, 3650);
            const std::size_t kept = TakingTurns(2).bytes.size() + end;
            const std::vector<CSeen> seen = Recovered(first.substr(0, kept) + second.substr(begin));
            EXPECT_EQ(seen.size(), static_cast<std::size_t>(4 + count));
            const auto isDoubted = [](const CRemark& doubt) {
                return doubt.reason == EReason::OtherRecording && doubt.recording == 1;
            };
            for (const CSeen& one : seen) {
                EXPECT_EQ(one.recording == "CompoundTest1", one.from < 50'000) << one;
                EXPECT_TRUE(one.recording != "CompoundTest2" || std::ranges::any_of(m_report.doubts.first, isDoubted))
                    << one;
            }
            EXPECT_FALSE(m_report.IsComplete());
        }
    }
}

// The offsets are those of the reference files.
TEST_F(RecoverTest, TwoDamagedHeadersNextToEachOtherAreBothKept) {
    // The file header is 17 bytes shorter, so all positions are too large; then 5 bytes are repeated in the next
    // header.
    std::string bytes = ReadAll(Reference("small_example.vxd"));
    bytes.erase(1050, 17).insert(1623, bytes.substr(1618, 5));
    EXPECT_EQ(Recovered(bytes), SeenIn(Reference("small_example.vxd")));
    EXPECT_EQ(std::ranges::count(m_report.doubts.first, EReason::Position, &CRemark::reason), 0);
    // Recordings without segments: with the end of one header and the beginning of the next one, each looks whole.
    bytes = ReadAll(Reference("awkward_text.vxd"));
    bytes.erase(8512, 1).insert(9779, bytes.substr(9778, 1));
    Recovered(bytes);
    EXPECT_EQ(m_report.recordings.size(), 5U);
    // A segment whose position shows that the header before it is in parts isn't left out for that.
    bytes = ReadAll(Reference("two_tasks.vxd"));
    EXPECT_EQ(Recovered(bytes.erase(4754, 9090 - 4754)).size(), 5U);
}

// Bytes before the place, among them parts of the header itself.
TEST_F(RecoverTest, CopiesInARecordingHeaderCostNothing) {
    const CWritten file = TakingTurns(3);
    const std::string other = RecordingHdrBytes({.recording = 7, .data = 99'650, .wellIDs = "=11:13"});
    for (std::size_t at = 1; at < 2460; at += 49 * kStride) {
        const std::size_t place = 1190 + at;
        const auto inserted = [&](const std::string& bytes) { return std::string(file.bytes).insert(place, bytes); };
        for (const std::size_t size : {1U, 50U, 300U, 600U}) {
            SCOPED_TRACE(testing::Message() << size << " bytes at " << at);
            EXPECT_EQ(Recovered(inserted(file.bytes.substr(place - size, size))), file.segments);
            EXPECT_FALSE(m_report.IsComplete());
        }
        if (at < 150 || at > 2260) continue;  // the name is lost, or the other header may be that of the segments
        SCOPED_TRACE(testing::Message() << "the header of another recording at " << at);
        const std::vector<CSeen> kept = Recovered(inserted(other));
        EXPECT_EQ(kept.size(), file.segments.size());
        EXPECT_TRUE(std::ranges::none_of(kept, [](const CSeen& one) { return one.recording == "CompoundTest7"; }));
        EXPECT_FALSE(m_report.IsComplete());
    }
    // The last cells again, after the whole header, are no header of their own.
    std::string twice = ReadAll(Reference("two_tasks.vxd"));
    Recovered(twice.insert(3566, twice.substr(2966, 600)));
    EXPECT_EQ(m_report.recordings.size(), 3U);
}

// Exactly one segment's length is removed, so that another header is where the next one should be.
TEST_F(RecoverTest, BytesRemovedByTheLengthOfASegmentAreReported) {
    const CWritten file = TakingTurns(4);
    const auto original = Placeless(file.segments);
    EXPECT_EQ(Placeless(Recovered(std::string(file.bytes).erase(2000, 308))), original) << "of the recording header";
    EXPECT_FALSE(m_report.losses.None());
    const auto doubted = [&](std::size_t position) {
        Recovered(std::string(file.bytes).erase(position, 308));
        std::map<std::int64_t, std::int32_t> wells;
        for (const auto& doubt : m_report.doubts.first)
            wells.emplace(doubt.from, doubt.wellID.value_or(0));
        return wells;
    };
    // First the samples of well 11 and the header of well 12 are removed; then the ID of well 11, and all of well 12 up
    // to its ID.
    const auto third = static_cast<std::int64_t>(file.segments[2].position);
    EXPECT_EQ(doubted(file.segments[2].position + 304)[third], 11);
    EXPECT_EQ(doubted(file.segments[2].position + 102)[third], 11);
}

// All segments have one length, so a damaged size that is too large by a multiple of it ends at a header.
TEST_F(RecoverTest, DamagedSizesThatEndAtAHeaderAreNotBelieved) {
    const CWritten file = TakingTurns(6);
    for (std::size_t i = 0; i < file.segments.size(); ++i) {
        for (std::size_t beyond = i + 1; beyond < file.segments.size(); ++beyond) {
            std::string bytes = file.bytes;
            bytes.replace(file.segments[i].position + 250, 50,
                          Cell(50, "Size=" + std::to_string(4 + 154 * (beyond - i))));
            SCOPED_TRACE(testing::Message() << "segment " << i << " reaches to the end of segment " << beyond);
            EXPECT_EQ(Recovered(bytes), file.segments);
            EXPECT_FALSE(m_report.IsComplete());
        }
    }
    // This one seems to reach beyond the end of the file, over the last segment.
    std::string beyond = file.bytes;
    beyond.replace(file.segments[10].position + 250, 50, Cell(50, "Size=301"));
    EXPECT_EQ(Recovered(beyond), file.segments);
    EXPECT_FALSE(m_report.IsComplete());
    // A time that can't be read says nothing about the size, even if it begins with a number.
    std::string damaged = file.bytes;
    damaged.replace(file.segments[2].position + 200, 50, Cell(50, "TimeTo=16200\xD5"));
    EXPECT_EQ(Placeless(Recovered(damaged.insert(file.segments[2].position + 252, 2, '\0'))),
              Without(Placeless(file.segments), 2));
    // The last segment of a recording has no next position. This one seems to reach into the next recording.
    std::string bytes = TakingTurns(1).bytes + RecordingHdrBytes({.recording = 2, .data = 6726});
    for (const std::int64_t next : {7034, -1})
        bytes += SegmentHdrBytes(11, next, next == -1 ? 400 : 0, next == -1 ? 700 : 300, "4") + SampleBytes(kWell12);
    const std::vector<CSeen> all = Recovered(bytes);
    ASSERT_EQ(all.size(), 4U);
    bytes.replace(3958 + 250, 50, Cell(50, "Size=1388"));
    EXPECT_EQ(Recovered(bytes), all);
    EXPECT_FALSE(m_report.IsComplete());
}

TEST_F(RecoverTest, TwoDamagedPlacesCostNoMoreThanWhatTheyTouch) {
    const CWritten file = TakingTurns(3);
    std::mt19937 random(2718);
    for (int round = 0; round < 3000 / static_cast<int>(kStride) && !HasFailure(); ++round) {
        std::string bytes = file.bytes;
        const std::size_t places[] = {1190 + random() % (bytes.size() - 1190), 1190 + random() % (bytes.size() - 1190)};
        for (const std::size_t at : places) {
            const auto damages = DamagesOf(bytes[at]);
            bytes[at] = damages[random() % damages.size()];
        }
        SCOPED_TRACE(testing::Message() << "bytes " << places[0] << " and " << places[1]);
        ExpectPromiseKept(file, bytes);
    }
}

/// A small file of one recording with two segments; the first has these samples.
std::string WithSegment(const std::string& samples) {
    const std::string size = std::to_string(samples.size() / 2);
    const auto last = static_cast<std::int64_t>(samples.size() / 2 - 1) * 100;
    const auto second = 3650 + 300 + static_cast<std::int64_t>(samples.size());
    return FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650}) + SegmentHdrBytes(11, second, 0, last, size) +
           samples + SegmentHdrBytes(12, -1, 0, 300, "4") + SampleBytes(kWell12);
}

// The samples of a segment are a raw data file, and its own header has more and more damage: nothing of the inner file
// may be recovered, and the segment after it must be.
TEST_F(RecoverTest, FilesWithinSamplesAreSkipped) {
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
            EXPECT_EQ(kept.size() == 2, damaged <= 2) << damaged;  // the times determine the size
        }
        // Nothing follows the segment, but its header is still there.
        std::string last = whole.substr(0, whole.size() - 308);
        last[3650] = 'x';
        const std::vector<CSeen> kept = Recovered(last);
        ASSERT_EQ(kept.size(), 1U);
        EXPECT_EQ(kept.front().samples.size(), samples.size() / 2);
    }
}

/// A file whose only recording has the number of its segments as its own.
CWritten OneRecording(int segments) {
    CWritten file{FileHdrBytes(1190) + RecordingHdrBytes({.recording = segments, .data = 3650}), {}, {}};
    for (int i = 0; i < segments; ++i) {
        const std::vector<std::uint16_t> samples(4, static_cast<std::uint16_t>(10 * segments + i));
        const std::size_t position = file.bytes.size();
        const auto next = static_cast<std::int64_t>(position + 308);
        file.segments.push_back(
            {"CompoundTest" + std::to_string(segments), 11, 400 * i, 400 * i + 300, samples, position});
        file.bytes += SegmentHdrBytes(11, i + 1 < segments ? next : -1, 400 * i, 400 * i + 300, "4");
        file.bytes += SampleBytes(samples);
    }
    return file;
}

// Headers of the third file have the places that those of the first one point at.
TEST_F(RecoverTest, FilesOneAfterAnotherAreSavedInAnyOrder) {
    std::array<int, 3> counts = {3, 4, 6};
    do {
        const std::array files = {OneRecording(counts[0]), OneRecording(counts[1]), OneRecording(counts[2])};
        for (const std::size_t cut : {0U, 2U, 150U, 308U, 320U, 616U}) {
            const std::size_t size = files[0].bytes.size() - cut;
            std::vector<CSeen> expected;
            std::ranges::copy_if(files[0].segments, std::back_inserter(expected),
                                 [&](const CSeen& one) { return one.End() <= size; });
            const std::size_t end = expected.back().End();
            for (const CWritten& file : {files[1], files[2]})
                expected.insert(expected.end(), file.segments.begin(), file.segments.end());
            std::string bytes = files[0].bytes.substr(0, size) + files[1].bytes + files[2].bytes;
            EXPECT_EQ(Placeless(Recovered(bytes)), Placeless(expected))
                << counts[0] << " segments come first, without their last " << cut << " bytes";
            EXPECT_EQ(m_report.losses.None(), cut == 0);
            for (const auto& loss : m_report.losses.first) {
                EXPECT_EQ(loss.from, static_cast<std::int64_t>(end));
                EXPECT_EQ(loss.to, static_cast<std::int64_t>(size));
            }
            // A header of the second or of the third file is destroyed.
            if (cut == 0) {
                std::string lost = bytes;
                lost.replace(size + 1190, 2460, std::string(2460, '\xAA'));
                EXPECT_EQ(Recovered(lost).size(), expected.size()) << counts[0] << " segments come first";
                lost = bytes;
                EXPECT_EQ(Recovered(lost.replace(0, 1190, 1190, '\xAA')).size(), expected.size());
                EXPECT_EQ(ReadAll(m_out).find("PlateID=P1"), std::string::npos) << "the second file's plate";
            }
            bytes.replace(size + files[1].bytes.size(), 1190, std::string(1190, '\xAA'));
            EXPECT_EQ(Placeless(Recovered(bytes)), Placeless(expected)) << counts[0] << " segments, cut by " << cut;
        }
    } while (std::ranges::next_permutation(counts).found);
}

TEST_F(RecoverTest, LostRecordingHeadersAreReplaced) {
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

    // A cell that ran into the next one has no value.
    bytes = whole;
    bytes.replace(1190, 50, "TaskName=PreQC\r\nRecording=1" + std::string(23, '\0'));
    EXPECT_EQ(Recovered(bytes)[0].recording, "Recovered1");

    // Only the name is left of the header: it is kept, and the intervals follow from the segments.
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

    // Without the IDs, the wells of the segments have the scale that all wells had.
    bytes = ReadAll(Reference("small_example.vxd"));
    kept = Recovered(bytes.replace(1190 + 430, 200, 200, '\xAA'));
    ASSERT_EQ(kept.size(), 2U);
    io.GetRawDataReader()->Open(m_out);
    const CRawDataRecordingHdr* const header = io.GetRawDataReader()->GetRecordingHdr("CompoundTest", 1);
    ASSERT_NE(header, nullptr);
    ASSERT_EQ(header->WellChannels.size(), 2U);
    for (const auto& well : header->WellChannels) {
        EXPECT_EQ(well.UnitsPerAD, 0.0002) << well.ID;
        EXPECT_EQ(well.ADZero, 32768) << well.ID;
    }
}

// Two recordings with two segments each. The second header begins at 4266, its data at 6726.
TEST_F(RecoverTest, DamagedRecordingHeadersKeepTheirPlaceAndTheirSegments) {
    const std::string whole = FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650, .next = 4266}) +
                              ChainBytes({{11, 0, kWell11}, {12, 0, kWell12}}) +
                              RecordingHdrBytes({.recording = 2, .data = 6726}) +
                              ChainBytes({{11, 0, kWell11}, {12, 0, kWell12}}, 6726);
    const auto patched = [](std::string bytes, std::size_t at, const std::string& by) {
        return bytes.replace(at, by.size(), by);
    };
    Recovered(patched(whole, 1390, Cell(50, "FPosRecordingTrailer=77")));
    EXPECT_EQ(ReadAll(m_out), whole) << "no recording has a trailer";
    // The first recording has twelve segments. Nine of them have room for a header.
    const auto longer = [&](std::int64_t next, const std::string& by) {
        CSegmentTexts links;
        for (std::int64_t from = 0; from < 4800; from += 400)
            links.push_back({11, from, kWell11});
        return patched(FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650, .next = next}) + ChainBytes(links), 3958,
                       by) +
               RecordingHdrBytes({.recording = 2, .data = 9806}) + ChainBytes({{11, 0, kWell11}}, 9806);
    };
    const auto destroyed = [&](std::size_t from, std::size_t to) {
        return patched(whole, from, std::string(to - from, '\xAA'));
    };
    // The recordings that come out, with their numbers of segments, and what is in doubt.
    const auto outcome = [&](const std::string& bytes) {
        std::map<std::string, int> segments;
        for (const CSeen& kept : Recovered(bytes))
            ++segments[kept.recording];
        std::string text;
        for (const auto& recording : m_report.recordings) {
            const std::string name = recording.task + std::to_string(recording.number);
            text += name + ": " + std::to_string(segments[name]) + "  ";
        }
        for (const auto& [reason, word] :
             {std::pair(EReason::Position, "position"), {EReason::OtherRecording, "other"}})
            for (auto left = std::ranges::count(m_report.doubts.first, reason, &CRemark::reason); left > 0; --left)
                text += std::string(word) + "? ";
        return text.substr(0, text.find_last_not_of(' ') + 1);
    };
    const struct {
        const char* what;
        std::string bytes;
        const char* outcome;
    } cases[] = {
        {"only the first cells are left", destroyed(4466, whole.size()), "CompoundTest1: 2  CompoundTest2: 0"},
        {"a segment is lost that has no room for a header", destroyed(3650, 3950),
         "CompoundTest1: 1  CompoundTest2: 2"},
        {"the segment before is lost, too", destroyed(3958, 6726), "CompoundTest1: 1  Recovered2: 2"},
        {"only the name is left of a header, and the segment after it is damaged", destroyed(1290, 3700),
         "CompoundTest1: 2  CompoundTest2: 2"},
        {"only the name is left of a recording, and nothing of the next header", destroyed(1290, 6726),
         "CompoundTest1: 2  other?"},
        {"the first segment points back at the lost header",
         patched(destroyed(1190, 3650), 3750, Cell(50, "FPosNextSegmentHdr=1190")).substr(0, 3958),
         "Recovered1: 1  position?"},
        {"an empty recording points at the segment of the next one",
         FileHdrBytes(1190) + RecordingHdrBytes({.data = 6110, .next = 3650}) +
             RecordingHdrBytes({.recording = 2, .data = 6110}) + ChainBytes({{11, 0, kWell11}}, 6110),
         "CompoundTest1: 0  CompoundTest2: 1  position?"},
        {"bytes were removed from a header", whole.substr(0, 4595) + whole.substr(5107),
         "CompoundTest1: 2  CompoundTest2: 2"},
        {"a file overwrites the second half of a header and the segment after it",
         patched(
             FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650}) + std::string(2772, '\xAA') +
                 ChainBytes({{11, 0, kWell11}, {12, 0, kWell12}}, 6422),
             2400,
             FileHdrBytes(1190) + RecordingHdrBytes({.recording = 7, .data = 3650}) + ChainBytes({{11, 0, kWell11}})),
         "CompoundTest1: 2  other?"},
        {"two files without their first headers",
         ChainBytes({{11, 0, kWell11}, {11, 400, kWell11}, {11, 800, kWell11}}) +
             ChainBytes({{12, 0, kWell12}, {12, 400, kWell12}, {12, 800, kWell12}}),
         "Recovered1: 3  Recovered2: 3"},
        {"a header of another file and its first segment overwrite a segment",
         patched(whole.substr(0, 3958) + std::string(3000, '\xAA') +
                     ChainBytes({{11, 400, kWell11}, {12, 400, kWell12}, {11, 800, kWell11}}, 6958),
                 3958,
                 RecordingHdrBytes({.recording = 7, .data = 99'650, .wellIDs = "=21:22"}) +
                     ChainBytes({{21, 0, kWell11}, {22, 0, kWell12}}, 99'650).substr(0, 308)),
         "CompoundTest1: 1  CompoundTest7: 1  Recovered3: 3  position? position? position?"},
        {"segments of another file overwrite one",
         whole.substr(0, 3958) + std::string(12, '\xAA') + ChainBytes({{11, 400, kWell11}, {12, 0, kWell12}}, 2000),
         "CompoundTest1: 3  position? position? other?"},
        {"only the name is left of a header, and the bytes of its segments and of the next header are missing",
         destroyed(4366, 6726).substr(0, 6726) + std::string(300, '\xAA') +
             ChainBytes({{11, 5000, kWell11}, {12, 5000, kWell12}}, 20'000),
         "CompoundTest1: 2  CompoundTest2: 2  position? other?"},
        {"the positions of a header and a segment after a gap confirm the next header",
         longer(7346, std::string(2772, '\xAA')), "CompoundTest1: 3  CompoundTest2: 1"},
        {"only the first cells of the header before are left, with the position of the next header alone",
         patched(patched(longer(7346, ""), 1490, std::string(5240, '\xAA')), 1340, std::string(50, '\xAA')),
         "CompoundTest1: 2  CompoundTest2: 1"},
        {"the header before the gap has no next one", longer(-1, std::string(2772, '\xAA')),
         "CompoundTest1: 3  CompoundTest2: 1  position? other?"},
        {"segments of another file overwrite some of many",
         longer(7346, std::string(12, '\xAA') +
                          ChainBytes({{11, 400, kWell11}, {12, 0, kWell12}, {12, 400, kWell12}}, 2000).substr(0, 616)),
         "CompoundTest1: 12  CompoundTest2: 1  other?"},
        {"pages of 512 bytes at the end of the header are swapped",
         TakingTurns(3).bytes.replace(3584, 1024,
                                      TakingTurns(3).bytes.substr(4096, 512) + TakingTurns(3).bytes.substr(3584, 512)),
         "CompoundTest1: 4"},
        {"most of the header was removed, the rest and the segment before it are destroyed",
         whole.substr(0, 3958) + std::string(800, '\xAA') + ChainBytes({{12, 400, kWell12}}, 6726),
         "CompoundTest1: 2  position? other?"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(outcome(c.bytes), c.outcome) << c.what;
}

TEST_F(RecoverTest, PositionsInAnotherOrderAreFollowedUnlessSamplesAreMissing) {
    const std::string file = FileHdrBytes(1190) + RecordingHdrBytes({.data = 3958}) +
                             SegmentHdrBytes(12, -1, 0, 300, "4") + SampleBytes(kWell12) +
                             SegmentHdrBytes(11, 3650, 0, 300, "4") + SampleBytes(kWell11);
    const auto wells = [&](std::size_t size) {
        std::vector<std::int32_t> found;
        for (const CSeen& one : Recovered(file.substr(0, size)))
            found.push_back(one.well);
        return found;
    };
    EXPECT_EQ(wells(4266), (std::vector<std::int32_t>{11, 12}));
    EXPECT_TRUE(m_report.IsComplete());
    for (std::size_t size = 3959; size < 4266; ++size) {
        EXPECT_EQ(wells(size), std::vector<std::int32_t>{12}) << size;
        EXPECT_FALSE(m_report.losses.None()) << size;
    }
}

// Read in the layout of version 2, the header is damaged, but ends where its position points.
TEST_F(RecoverTest, HeadersAreReadInTheirOwnVersion) {
    std::string bytes = ReadAll(Reference("version_1.vxd"));
    bytes.replace(1340, 22, "FPosRecordingData=3650");
    EXPECT_EQ(Placeless(Recovered(bytes)), Placeless(SeenIn(Reference("version_1.vxd"))));
    EXPECT_EQ(std::ranges::count(m_report.doubts.first, EReason::Position, &CRemark::reason), 1);
    EXPECT_TRUE(m_report.losses.None());

    // Of the header, only the name and the lists of the wells are left, and the segment after it is damaged.
    bytes = ReadAll(Reference("version_1.vxd"));
    bytes.replace(1240, 330, 330, '\xAA').replace(2570, 1130, 1130, '\xAA');
    Recovered(bytes);
    CVXFileIO io;
    io.GetRawDataReader()->Open(Reference("version_1.vxd"));
    const auto expected = io.GetRawDataReader()->GetRecordingHdr("CompoundTest", 1)->WellChannels;
    io.GetRawDataReader()->Open(m_out);
    const CRawDataRecordingHdr* const header = io.GetRawDataReader()->GetRecordingHdr("CompoundTest", 1);
    ASSERT_NE(header, nullptr);
    ASSERT_EQ(header->WellChannels.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(header->WellChannels[i].ID, expected[i].ID);
        EXPECT_EQ(header->WellChannels[i].UnitsPerAD, expected[i].UnitsPerAD);
        EXPECT_EQ(header->WellChannels[i].ADZero, expected[i].ADZero);
    }
}

TEST_F(RecoverTest, TheNewFileIsAlwaysSound) {
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

/// Writes segments until the process is killed, and sends the number of each through the pipe once it is written.
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

TEST_F(RecoverTest, KilledWritersLoseNoAcknowledgedSegment) {
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
