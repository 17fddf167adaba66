#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <random>
#include <sstream>

#include "tests/rawdata/RawFileBytes.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr const char* kBadSegment = "Error reading Data Segment Header";
constexpr const char* kBadSeek = "Error seeking Data Segment.";
constexpr std::int64_t kData = 3650;  ///< Offset of the first recording's segments.

/// A reader without memory: it reads every header of the chain each time.
class CForgetfulReader {
 public:
    explicit CForgetfulReader(const std::string& bytes) : m_bytes(bytes) {}

    void Jump(std::int64_t data) {
        m_position = data;
        m_hops.clear();
    }

    /// Returns the next segment, as `SegmentsOf` prints it.
    std::string Next(int well) {
        while (m_position != -1) {
            if (m_position < 0) return kBadSeek;
            const auto at = static_cast<std::size_t>(m_position);
            if (at + 50 > m_bytes.size() || m_bytes.compare(at, 4, "Type") != 0 || !Admits()) return kBadSegment;
            const std::int64_t id = Number(at + 53);
            const std::int64_t size = Number(at + 255);
            if ((well == -1 || id == well) && size > 10'000'000) return kBadSegment;
            m_position = Number(at + 119);
            if (well == -1 || id == well) return Segment(at, id, size);
        }
        return "end";
    }

 private:
    /// Reports a loop when a segment comes again that was reached after a power of two of hops.
    bool Admits() {
        if (m_position == m_marked && !m_hops.empty()) return false;
        m_hops.push_back(m_position);
        if ((m_hops.size() & (m_hops.size() - 1)) == 0) m_marked = m_position;
        return m_hops.size() <= m_bytes.size() / 300 + 1;
    }

    std::int64_t Number(std::size_t at) const { return at < m_bytes.size() ? std::atoll(&m_bytes[at]) : 0; }

    std::string Segment(std::size_t at, std::int64_t id, std::int64_t size) const {
        std::ostringstream line;
        line << id << "[" << Number(at + 159) << ".." << Number(at + 207) << "]";
        for (std::size_t i = 0; i < static_cast<std::size_t>(size); ++i) {
            const auto byte = [&](std::size_t b) { return b < m_bytes.size() ? m_bytes[b] & 0xFF : 0; };
            line << (i == 0 ? "" : ",") << byte(at + 300 + 2 * i) + 256 * byte(at + 301 + 2 * i);
        }
        return line.str();
    }

    const std::string& m_bytes;
    std::int64_t m_position = -1;
    std::int64_t m_marked = -1;
    std::vector<std::int64_t> m_hops;
};

class RememberedChainTest : public testing::Test {
 protected:
    /// Writes two recordings. The first has `count` segments of different wells and sizes.
    void Write(int count) {
        m_bytes = FileHdrBytes(1190) + RecordingHdrBytes({.data = kData, .next = kSecond});
        m_starts.clear();
        for (int i = 0; i < count; ++i) {
            const int size = i % 5 == 3 ? 2 : 4;
            m_starts.push_back(m_bytes.size());
            const auto next = static_cast<std::int64_t>(m_bytes.size()) + 300 + 2 * size;
            m_bytes += SegmentHdrBytes(11 + i % 3, i + 1 < count ? next : -1, i, i, std::to_string(size));
            for (int s = 0; s < size; ++s)
                m_bytes += SampleBytes({static_cast<std::uint16_t>(100 * i + s)});
        }
        m_bytes.resize(kSecond);
        m_bytes += RecordingHdrBytes({.recording = 2, .data = kSecond + 2460}) + SegmentHdrBytes(12, -1, 7, 7, "4") +
                   SampleBytes(kWell12);
        WriteAll(m_path, m_bytes);
    }

    /// Overwrites part of the file in place, as another writer would.
    void Patch(std::size_t at, const std::string& bytes) {
        m_bytes.replace(at, bytes.size(), bytes);
        std::fstream file(m_path, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>(at));
        file << bytes;
    }

    std::string Pass(int well, int recording = 1) {
        m_reader.SelectWellID(well);
        EXPECT_TRUE(m_reader.JumpToData("CompoundTest", recording));
        return SegmentsOf(m_reader);
    }

    static constexpr std::int64_t kSecond = 20000;

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("chain.vxd");
    std::string m_bytes;
    std::vector<std::size_t> m_starts;
    CIRawDataReader m_reader;
};

// A header that is damaged after the first pass shows whether it is read again.
TEST_F(RememberedChainTest, SegmentsSkippedOnceAreNotReadAgain) {
    Write(9);
    m_reader.Open(m_path);
    const std::string first = Pass(12);
    EXPECT_EQ(first, "12[1..1]100,101,102,103 12[4..4]400,401,402,403 12[7..7]700,701,702,703 end");
    EXPECT_EQ(Pass(12, 2), "12[7..7]7,8,9,10 end");  // has its own chain
    Patch(m_starts[2], "Typo");
    EXPECT_EQ(Pass(12), first);
    EXPECT_EQ(Pass(-1), std::string("11[0..0]0,1,2,3 12[1..1]100,101,102,103 ") + kBadSegment);
    // The failure made the reader forget the chain.
    EXPECT_EQ(Pass(12), std::string("12[1..1]100,101,102,103 ") + kBadSegment);
}

TEST_F(RememberedChainTest, ChangedHeadersAreFollowed) {
    struct {
        std::size_t segment, cell;
        std::string text;
        std::string then11, then12;
    } const cases[] = {
        {4, 50, "ID=99", "11[0..0]0,1,2,3 11[3..3]300,301 11[6..6]600,601,602,603 end",
         "12[1..1]100,101,102,103 12[7..7]700,701,702,703 end"},
        {4, 250, "Size=1", "11[0..0]0,1,2,3 11[3..3]300,301 11[6..6]600,601,602,603 end",
         "12[1..1]100,101,102,103 12[4..4]400 12[7..7]700,701,702,703 end"},
        {4, 100, "FPosNextSegmentHdr=-1", "11[0..0]0,1,2,3 11[3..3]300,301 end",
         "12[1..1]100,101,102,103 12[4..4]400,401,402,403 end"},
        {4, 0, "Typo", std::string("11[0..0]0,1,2,3 11[3..3]300,301 ") + kBadSegment,
         std::string("12[1..1]100,101,102,103 ") + kBadSegment},
    };
    for (const auto& c : cases) {
        Write(9);
        m_reader.Open(m_path);
        Pass(12);
        Patch(m_starts[c.segment] + c.cell, Cell(50, c.text));
        EXPECT_EQ(Pass(12), c.then12) << c.text;
        EXPECT_EQ(Pass(11), c.then11) << c.text;  // the rest of the chain was forgotten
    }
}

TEST_F(RememberedChainTest, SegmentsAppendedLaterAreFound) {
    Write(9);
    m_reader.Open(m_path);
    const std::string before = Pass(12);
    const std::size_t end = m_starts.back() + 308;
    Patch(end, SegmentHdrBytes(12, -1, 9, 9, "4") + SampleBytes(kWell12));
    Patch(m_starts.back() + 100, Cell(50, "FPosNextSegmentHdr=" + std::to_string(end)));
    EXPECT_EQ(Pass(12), before.substr(0, before.size() - 3) + "12[9..9]7,8,9,10 end");

    // Appended in the middle of a pass, and more than the file could hold when the pass began.
    Write(2);
    m_reader.Open(m_path);
    m_reader.SelectWellID(-1);
    m_reader.JumpToData("CompoundTest", 1);
    SegmentsOf(m_reader, 1);
    constexpr std::size_t kMany = 100;
    const std::size_t first = m_bytes.size();
    std::string many;
    for (std::size_t i = 1; i <= kMany; ++i) {
        const auto next = i < kMany ? static_cast<std::int64_t>(first + 308 * i) : -1;
        many += SegmentHdrBytes(12, next, 9, 9, "4") + SampleBytes(kWell12);
    }
    Patch(first, many);
    Patch(m_starts.back() + 100, Cell(50, "FPosNextSegmentHdr=" + std::to_string(first)));
    const std::string rest = SegmentsOf(m_reader);
    EXPECT_EQ(std::count(rest.begin(), rest.end(), '['), 1 + kMany);
    EXPECT_TRUE(rest.ends_with(" end")) << rest.substr(rest.size() - 80);
}

// The pass before found the loop by a failure, or stopped within it, for any well.
TEST_F(RememberedChainTest, LoopsRepairedInTheFileAreGoneInTheNextPass) {
    for (const std::size_t back : {0U, 1U, 4U}) {
        for (const int well : {-1, 11, 12, 13, 99}) {
            for (const int most : {1, 4, 1000}) {
                Write(9);
                m_reader.Open(m_path);
                const std::string whole = Pass(well);
                const auto next = m_bytes.substr(m_starts[4] + 100, 50);
                Patch(m_starts[4] + 100, Cell(50, "FPosNextSegmentHdr=" + std::to_string(m_starts[back])));
                m_reader.Open(m_path);
                m_reader.JumpToData("CompoundTest", 1);
                const std::string segments = SegmentsOf(m_reader, most);
                EXPECT_TRUE(most < 1000 || segments.ends_with(kBadSegment)) << segments;
                Patch(m_starts[4] + 100, next);
                EXPECT_EQ(Pass(well), whole) << back << " " << well << " " << most;
            }
        }
    }
}

// Another writer rewrites the file: there are samples now where segments began.
TEST_F(RememberedChainTest, RewrittenFilesAreReadAgain) {
    Write(9);
    m_reader.Open(m_path);
    for (const int well : {11, 12, 13})
        Pass(well);
    Patch(kData, SegmentHdrBytes(11, kData + 3000, 5, 5, "1300") + std::string(2700, 'T') +
                     SegmentHdrBytes(13, -1, 6, 6, "4") + SampleBytes(kWell12));
    EXPECT_EQ(Pass(13), "13[6..6]7,8,9,10 end");
}

/// Damages a few cells with values from a small set, so that chains point back, across and out of the file.
std::string Damaged(std::string bytes, const std::vector<std::size_t>& starts, std::mt19937& random) {
    const auto any = [&](std::size_t count) { return static_cast<std::size_t>(random() % count); };
    for (std::size_t damages = any(4); damages > 0; --damages) {
        const std::size_t at = starts[any(starts.size())];
        const std::string position = std::to_string(starts[any(starts.size())]);
        const std::string cells[] = {"FPosNextSegmentHdr=" + position, "FPosNextSegmentHdr=" + position,
                                     any(2) == 0 ? "FPosNextSegmentHdr=-1" : "FPosNextSegmentHdr=-7",
                                     "ID=" + std::to_string(11 + any(3)), "Size=" + std::to_string(any(9))};
        const std::size_t places[] = {100, 100, 100, 50, 250};
        const std::size_t which = any(6);
        if (which == 5) {
            bytes.replace(at, 1, any(2) == 0 ? "t" : "T");
        } else {
            bytes.replace(at + places[which], 50, Cell(50, cells[which]));
        }
    }
    return bytes;
}

TEST_F(RememberedChainTest, PassesOverAnyFileReturnWhatReadingEveryHeaderDoes) {
    std::mt19937 random(1);
    for (int file = 0; file < 400; ++file) {
        Write(static_cast<int>(random() % 20) + 1);
        m_bytes = Damaged(m_bytes, m_starts, random);
        if (random() % 8 == 0) m_bytes.resize(m_bytes.size() - random() % 400);
        WriteAll(m_path, m_bytes);
        m_reader.Open(m_path);
        std::optional<CForgetfulReader> model;
        int well = -1;
        m_reader.SelectWellID(well);
        for (int call = 0; call < 120; ++call) {
            if (call == 0 || random() % 12 == 0) {
                const int recording = 1 + static_cast<int>(random() % 8 == 0);
                m_reader.JumpToData("CompoundTest", recording);
                model.emplace(m_bytes);
                model->Jump(recording == 1 ? kData : kSecond + 2460);
            }
            if (random() % 10 == 0) {
                well = random() % 4 == 0 ? -1 : static_cast<int>(11 + random() % 4);
                m_reader.SelectWellID(well);
            }
            ASSERT_EQ(SegmentsOf(m_reader, 1), model->Next(well)) << "file " << file << ", call " << call;
        }
    }
}

}  // namespace
