#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#ifndef _WIN32
#include <pthread.h>
#endif

#include "recovery/Explanation.h"
#include "recovery/LostPages.h"
#include "recovery/Recover.h"
#include "recovery/Wells.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/recovery/StringInput.h"
#include "tests/tools/Stride.h"
#include "vxfileio/rawdata/SegmentTimes.h"

/// @file
/// The parts of recovery, on bytes in memory.

namespace {

using namespace vxfileio::rawdata;
using namespace vxfileio::recovery;

const CReach kNoReach = [](std::int64_t) {};

std::vector<CCandidate> CandidatesIn(const std::string& bytes) {
    const CStringInput input(bytes);
    CWindow window(input, input.Size());
    return FindCandidates(window, kNoReach).list;
}

/// Returns kind and offsets of a header, such as "F0 R1190 S3650".
std::string Text(const CCandidate& candidate) {
    return "FRS"[static_cast<int>(candidate.kind)] + std::to_string(candidate.begin);
}

std::string WholeIn(const std::string& bytes) {
    std::string text;
    for (const CCandidate& candidate : CandidatesIn(bytes))
        text += candidate.IsWhole() ? Text(candidate) + " " : "";
    return text;
}

/// Returns the pieces of the best explanation.
std::string Explained(const std::string& bytes) {
    const CStringInput input(bytes);
    CWindow window(input, input.Size());
    const CCandidates candidates = FindCandidates(window, kNoReach);
    std::string text;
    for (const CPiece& piece : Explain(candidates, input.Size(), kNoReach))
        text += Text(*piece.candidate) + (piece.lostRecording ? "! " : " ");
    return text;
}

std::string With(std::string bytes, std::size_t at, std::size_t size, const std::string& other) {
    return bytes.replace(at, size, other);
}

const std::string kRubbish(300, '\xAA');

TEST(CandidatesTest, HeadersAreFoundAtAnyOffsetByAnyOfTheirCells) {
    const std::string file = SmallFileBytes();
    EXPECT_EQ(WholeIn(file), "F0 R1190 S3650 S3958 ");
    EXPECT_EQ(WholeIn("x" + file.substr(3650)), "S1 S309 ");
    EXPECT_EQ(WholeIn(kRubbish), "");
    // The key of each cell in turn is destroyed.
    for (std::size_t cell = 0; cell < 300; cell += 50) {
        const auto found = CandidatesIn(With(file, 3650 + cell, 3, "???"));
        const auto segment = std::ranges::find(found, 3650, &CCandidate::begin);
        ASSERT_NE(segment, found.end()) << cell;
        EXPECT_EQ(segment->damaged, 1) << cell;
    }
}

TEST(CandidatesTest, PartsOfAHeaderWithInsertedBytesAreJoined) {
    const std::string file = SmallFileBytes();
    for (const int moved : {-5, -1, 1, 7, 120}) {
        std::string bytes = file;
        moved > 0 ? bytes.insert(3650 + 130, static_cast<std::size_t>(moved), '\0')
                  : bytes.erase(3650 + 130, static_cast<std::size_t>(-moved));
        const auto found = CandidatesIn(bytes);
        const auto joined = std::ranges::find_if(
            found, [&](const CCandidate& one) { return one.kind == EKind::Segment && one.moved == moved; });
        ASSERT_NE(joined, found.end()) << moved;
        EXPECT_EQ(joined->begin, 3650);
        EXPECT_EQ(joined->end, 3950 + moved);
        EXPECT_EQ(joined->size, 4);
    }
}

/// Two recordings; the last segment of the first has 60 samples.
std::string TwoRecordings(int version = 2) {
    const std::int64_t less = version == 1 ? 50 : 0;
    const bool hasStart = version != 1;
    return FileHdrBytes(1190, "CompoundTest", version) +
           RecordingHdrBytes({.data = 3650 - less, .next = 4378 - less, .hasStartTime = hasStart}) +
           SegmentHdrBytes(11, 3958 - less, 0, 300, "4") + SampleBytes(kWell11) +
           SegmentHdrBytes(12, -1, 0, 5900, "60") + std::string(120, '\x55') +
           RecordingHdrBytes({.recording = 2, .data = 6838 - 2 * less, .hasStartTime = hasStart}) +
           SegmentHdrBytes(11, 7146 - 2 * less, 0, 300, "4") + SampleBytes(kWell11) +
           SegmentHdrBytes(12, -1, 0, 300, "4") + SampleBytes(kWell12);
}

struct CExplanationCase {
    const char* what;
    std::string bytes;
    const char* pieces;
};

TEST(ExplanationTest, TheFewestAssumptionsExplainAFile) {
    const std::string file = SmallFileBytes();
    const std::string host = "?" + file + "?";  // a file as samples, at an odd offset
    const auto last = static_cast<std::int64_t>(host.size() / 2 - 1) * 100;
    const auto next = static_cast<std::int64_t>(3950 + host.size() / 2 * 2);
    const std::string within = file.substr(0, 3650) +
                               SegmentHdrBytes(11, next, 0, last, std::to_string(host.size() / 2)) +
                               host.substr(0, host.size() / 2 * 2) + SegmentHdrBytes(12, -1, 0, 300, "4") + "12345678";
    const std::string after = "S" + std::to_string(next) + " ";
    std::string goesOn =
        With(within, static_cast<std::size_t>(next), 300, SegmentHdrBytes(12, next + 308, 0, 300, "4")) +
        SegmentHdrBytes(12, -1, 400, 700, "4") + "12345678";
    const std::string two = TwoRecordings();
    const CExplanationCase cases[] = {
        {"whole", file, "F0 R1190 S3650 S3958 "},
        {"rubbish ahead", kRubbish + file, "F300 R1490 S3950 S4258 "},
        {"no file header", file.substr(1190), "R0 S2460 S2768 "},
        {"no recording header", file.substr(0, 1190) + file.substr(3650), "F0 S1190! S1498 "},
        {"a lost segment header", With(file, 3650, 300, kRubbish), "F0 R1190 S3958 "},
        {"bytes put in between", std::string(file).insert(3958, "xyz"), "F0 R1190 S3650 S3961 "},
        {"bytes taken out of samples", std::string(file).erase(3952, 2), "F0 R1190 S3956 "},
        {"a cut file with an intact one after it", file.substr(0, 3955) + file, "F0 R1190 F3955 R5145 S7605 S7913 "},
        {"a cut header with an intact file after it", file.substr(0, 2000) + file, "F0 R1190 F2000 R3190 S5650 S5958 "},
        {"a file as samples of a whole segment", within, nullptr},
        {"a file as samples of a lost segment", With(within, 3650, 300, kRubbish), nullptr},
        {"a file as samples that lost bytes", std::string(goesOn).erase(7902, 6), "F0 R1190 S8212 S8520 "},
        {"a file as samples that lost their last bytes", goesOn.erase(8200, 6), "F0 R1190 S8212 S8520 "},
        {"bytes taken out of samples before a recording", std::string(two).erase(4300, 50),
         "F0 R1190 S3650 R4328 S6788 S7096 "},
        {"as many as the next version's header is longer", TwoRecordings(1).erase(4250, 50),
         "F0 R1190 S3600 R4278 S6688 S6996 "},
        {"bytes taken out across the header of a recording", std::string(two).erase(4300, 2460),
         "F0 R1190 S3650 S3958 S4378! S4686 "},
        {"other wells right after the bytes that were taken out",
         two.substr(0, 3958) + SegmentHdrBytes(13, 7146, 0, 300, "4") + SampleBytes(kWell11) +
             SegmentHdrBytes(14, -1, 0, 300, "4") + SampleBytes(kWell12),
         "F0 R1190 S3650 S3958! S4266 "},
    };
    for (const CExplanationCase& one : cases) {
        if (one.pieces != nullptr) {
            EXPECT_EQ(Explained(one.bytes), one.pieces) << one.what;
            continue;
        }
        const bool isWhole = one.bytes[3650] == 'T';
        EXPECT_EQ(Explained(one.bytes), std::string("F0 R1190 ") + (isWhole ? "S3650 " : "") + after) << one.what;
    }
}

/// Returns whether recovery of these bytes reports a doubt for this reason at an offset.
bool HasDoubt(const std::string& bytes, EReason reason, std::int64_t from) {
    const CReport report = Recover(CStringInput(bytes), {}, [](std::span<const std::byte>) {});
    return std::ranges::any_of(report.doubts.first,
                               [&](const CRemark& remark) { return remark.reason == reason && remark.from == from; });
}

TEST(AccountTest, SamplesAreInDoubtIfTheNextHeaderDoesNotConfirmThem) {
    const std::string two = TwoRecordings();
    EXPECT_FALSE(HasDoubt(two, EReason::TakenOut, 3958));
    // The next segment follows directly, so samples or a recording header are missing.
    EXPECT_TRUE(HasDoubt(std::string(two).erase(4300, 2460), EReason::TakenOut, 3958));
    // No position shows it, only the interval.
    const std::string faster = SegmentHdrBytes(12, -1, 0, 150, "4") + SampleBytes(kWell12);
    EXPECT_TRUE(HasDoubt(two.substr(0, 4378) + faster, EReason::TakenOut, 3958));
    // What follows the cut could also be samples.
    EXPECT_TRUE(HasDoubt(two.substr(0, 4300) + two, EReason::Ambiguous, 4300));
    EXPECT_FALSE(HasDoubt(two + two, EReason::Ambiguous, static_cast<std::int64_t>(two.size())));
}

TEST(ExplanationTest, AFileFullOfHeadersHasNoMoreCandidatesThanFitIntoIt) {
    std::string bytes;
    for (int i = 0; i < 1000; ++i)
        bytes += SegmentHdrBytes(11, -1, 0, 300, "4").substr(0, 150 + 50 * static_cast<std::size_t>(i % 4));
    EXPECT_LE(CandidatesIn(bytes).size(), bytes.size() / 150);
    // Each cell points at the end of its recording header, which begins within those of many others.
    bytes.clear();
    while (bytes.size() < 50'000)
        bytes += Cell(50, "FPosRecordingData=" + std::to_string(bytes.size() + 2310));
    const CStringInput input(bytes);
    CWindow window(input, input.Size());
    const CCandidates found = FindCandidates(window, kNoReach);
    EXPECT_GE(found.list.size(), bytes.size() / 100);
    EXPECT_LE(found.list.size(), bytes.size() / 25);
    EXPECT_EQ(found.wellLists.size(), found.list.size());
}

#ifndef _WIN32

// If releasing the chain recursed, this many segments would overflow the small stack, and the program would crash.
TEST(ExplanationTest, ManySegmentsDoNotOverflowTheStack) {
    constexpr std::int64_t kStep = 300 + 2 * 4;
    constexpr std::int64_t kEnd = kStep * 200'000;
    CCandidates chain;
    for (std::int64_t at = 0; at < kEnd; at += kStep) {
        chain.list.push_back({.begin = at,
                              .claim = at,
                              .end = at + 300,
                              .next = at + kStep,
                              .from = at,
                              .to = at + 300,
                              .size = 4,
                              .well = 11,
                              .whole = 6,
                              .form = &FormsOf(EKind::Segment).back()});
    }
    const auto explain = [](void* list) -> void* {
        const auto& candidates = *static_cast<const CCandidates*>(list);
        EXPECT_EQ(Explain(candidates, kEnd, kNoReach).size(), candidates.list.size());
        return nullptr;
    };
    pthread_attr_t small;
    ASSERT_EQ(pthread_attr_init(&small), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&small, std::size_t{256} << 10), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &small, explain, &chain), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&small);
}

#endif

TEST(TimesTest, NoResultOverflows) {
    constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
    constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(SpanOf(kLeast, kMost), std::nullopt);
    EXPECT_EQ(SpanOf(0, kMost), kMost);
    EXPECT_EQ(SpanOf(5, 4), std::nullopt);
    EXPECT_EQ(SampleCount(0, 300, 100), 4U);
    EXPECT_EQ(SampleCount(0, 399, 100), 4U);
    EXPECT_EQ(SampleCount(0, kMost, 1), std::uint64_t{1} << 63);
    EXPECT_EQ(TimeAfter(kMost - 1, 2, 1), std::nullopt);
    EXPECT_EQ(TimeAfter(kLeast + 1, -2, 1), std::nullopt);
    EXPECT_EQ(TimeAfter(100, -1, 100), 0);
    EXPECT_EQ(TicksOf(0, 399, 4).atLeast, 100);
    EXPECT_EQ(TicksOf(0, 399, 4).atMost, 133);
    EXPECT_TRUE(TicksOf(0, 2, 4).IsEmpty());
    EXPECT_TRUE(TicksOf(0, 0, 1).IsOpen());
}

CFoundSegment Segment(std::int32_t well, std::int64_t from, std::int64_t to, std::uint32_t samples) {
    CFoundSegment segment;
    segment.wellID = well;
    segment.from = from;
    segment.to = to;
    segment.samples = samples;
    return segment;
}

TEST(WellsTest, EachSegmentThatContradictsItsRecordingIsInDoubt) {
    struct CCase {
        std::vector<CFoundSegment> segments;
        std::vector<EReason> reasons;
        std::size_t kept;
    };
    const CCase cases[] = {
        {{Segment(11, 0, 300, 4), Segment(12, 0, 150, 4)}, {}, 2},
        {{Segment(11, 0, 300, 4), Segment(11, 0, 300, 4)}, {EReason::SharedTimes}, 2},
        {{Segment(11, 0, 300, 4), Segment(13, 0, 300, 4)}, {EReason::Unlisted}, 2},
        {{Segment(11, 0, 300, 4), Segment(13, 400, 700, 4), Segment(11, 800, 1100, 4)}, {EReason::OtherWell}, 3},
        {{Segment(11, 0, 300, 4), Segment(13, 400, 700, 4), Segment(14, 400, 700, 4), Segment(11, 800, 1100, 4)},
         {EReason::Unlisted, EReason::Unlisted},
         4},
        {{Segment(11, 0, 300, 4), Segment(11, 400, 900, 4), Segment(11, 800, 1100, 4)}, {EReason::MadeTime}, 3},
        {{Segment(11, 0, 300, 4), Segment(11, 410, 900, 4), Segment(11, 900, 1200, 4)}, {EReason::OtherInterval}, 2},
        // Most segments of well 13 have an interval that readers can't hold.
        {{Segment(13, 0, 300, 4), Segment(13, 10'000'000'000, 19'000'000'000, 4),
          Segment(13, 20'000'000'000, 29'000'000'000, 4)},
         {EReason::OtherInterval, EReason::OtherInterval, EReason::Unlisted},
         1},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        CFound found;
        found.recordings.resize(1);
        found.recordings[0].wellList = {{{11, 100}, {12, 50}}};
        found.segments = cases[i].segments;
        SettleWells(found);
        std::vector<EReason> reasons;
        for (const CRemarks* remarks : {&found.losses, &found.doubts}) {
            for (const CRemark& remark : remarks->first)
                reasons.push_back(remark.reason);
        }
        EXPECT_EQ(reasons, cases[i].reasons) << i;
        EXPECT_EQ(found.segments.size(), cases[i].kept) << i;
    }
}

// Another well lacks only the later ones of the times that are there twice. The unlisted well could be any.
TEST(WellsTest, OverlapsOfAWellAreCountedAndOneThatFitsAnotherWellIsShown) {
    CFound found;
    found.recordings.resize(1);
    found.recordings[0].wellList = {{{11, 100}, {12, 100}}};
    found.segments = {Segment(11, 0, 300, 4),     Segment(12, 0, 300, 4),   Segment(11, 0, 300, 4),
                      Segment(13, 5000, 5300, 4), Segment(11, 400, 700, 4), Segment(11, 400, 700, 4)};
    SettleWells(found);
    const auto shared = std::ranges::find(found.doubts.first, EReason::SharedTimes, &CRemark::reason);
    ASSERT_NE(shared, found.doubts.first.end());
    EXPECT_EQ(shared->count, 2U);
    EXPECT_EQ(shared->value, 12);
}

/// An input that grows while it is read, as with a running writer.
class CGrowingInput : public CStringInput {
 public:
    CGrowingInput(const std::string& bytes, std::size_t first)
        : CStringInput(bytes), m_size(static_cast<std::int64_t>(first)) {}
    std::int64_t Size() const override { return std::exchange(m_size, CStringInput::Size()); }

 private:
    mutable std::int64_t m_size;
};

TEST(GrowingTest, BytesAppendedDuringRecoveryAreNoDamage) {
    const std::string file = SmallFileBytes();
    for (std::size_t first = 3650; first < file.size(); first += kStride) {
        const CReport report = Recover(CGrowingInput(file, first), {}, [](std::span<const std::byte>) {});
        EXPECT_TRUE(report.isGrowing);
        EXPECT_TRUE(report.IsComplete()) << first;
        EXPECT_EQ(report.recordings.at(0).wells.size(), first < 3958 ? 0U : 1U) << first;
    }
    const std::string two = FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650, .next = 3958}) +
                            ChainBytes({{11, 0, kWell11}}) + RecordingHdrBytes({.recording = 2, .data = 6418}) +
                            ChainBytes({{11, 1000, kWell11}}, 6418);
    for (std::size_t first = 3958; first < two.size(); first += kStride)
        EXPECT_TRUE(Recover(CGrowingInput(two, first), {}, [](std::span<const std::byte>) {}).doubts.first.empty());
    // Only the last file grows; one before it that lacks a segment is damaged.
    const CGrowingInput joined(file.substr(0, 3958) + file, 3958 + 3958);
    const CReport report = Recover(joined, {}, [](std::span<const std::byte>) {});
    EXPECT_TRUE(report.isGrowing);
    ASSERT_EQ(report.losses.first.size(), 1U);
    EXPECT_EQ(report.losses.first[0].reason, EReason::MissingSegment);
    EXPECT_EQ(report.losses.first[0].from, 3958);
}

/// Returns the runs of lost pages among the bytes [begin, end), such as "4096-8192 ".
std::string LostIn(const std::string& bytes, std::int64_t begin, std::int64_t end) {
    const CStringInput input(bytes);
    CWindow window(input, input.Size());
    std::string text;
    ForLostPages(window, begin, end, [&](std::int64_t from, std::int64_t to) {
        text += std::to_string(from) + "-" + std::to_string(to) + " ";
    });
    return text;
}

TEST(WindowTest, NamesTheFirstByteThatCannotBeRead) {
    const CStringInput input(std::string(15'000, 'x'));
    CWindow window(input, 19'000);
    window.At(0, 10);                                     // reads a block of 8192 bytes
    for (const std::int64_t position : {8100, 14'990}) {  // the first one in that block, the second one in the next
        try {
            window.At(position, 100);
            FAIL() << position;
        } catch (const CReadFailure& failure) {
            EXPECT_EQ(failure.Position(), 15'000);
        }
    }
}

TEST(LostPagesTest, LostPagesAreWholePagesOfZerosAfterANonzeroSample) {
    const std::string full(20'000, 'x');
    const auto zeros = [&](std::size_t from, std::size_t to) {
        return full.substr(0, from) + std::string(to - from, '\0') + full.substr(to);
    };
    EXPECT_EQ(LostIn(full, 300, 20'000), "");
    EXPECT_EQ(LostIn(zeros(4096, 8192), 300, 20'000), "4096-8192 ");
    EXPECT_EQ(LostIn(zeros(4096, 12'288), 300, 20'000), "4096-12288 ") << "one run of two pages";
    EXPECT_EQ(LostIn(zeros(4096, 8191), 300, 20'000), "") << "not the whole page";
    EXPECT_EQ(LostIn(zeros(4096, 12'000), 300, 20'000), "4096-8192 ") << "the last samples may really be 0";
    EXPECT_EQ(LostIn(zeros(4095, 8192), 300, 20'000), "4096-8192 ") << "half a sample is 0";
    EXPECT_EQ(LostIn(zeros(4094, 8192), 300, 20'000), "") << "the signal was at 0 before";
    EXPECT_EQ(LostIn(zeros(4096, 8192), 4096, 20'000), "4096-8192 ") << "right after the header";
    EXPECT_EQ(LostIn(zeros(4096, 8192), 4098, 20'000), "4096-8192 ") << "includes the end of the header";
    EXPECT_EQ(LostIn(zeros(4098, 8192), 4098, 20'000), "") << "the header is intact, so the page was written";
    EXPECT_EQ(LostIn(zeros(4096, 8192), 300, 5000), "4096-5000 ") << "the rest of the page is zeros, too";
    EXPECT_EQ(LostIn(zeros(4096, 8192), 300, 4097), "4096-4097 ") << "a single byte";
    EXPECT_EQ(LostIn(zeros(4096, 5000), 300, 5000), "") << "something follows in this page";
    EXPECT_EQ(LostIn(zeros(16'384, 20'000), 300, 20'000), "16384-20000 ") << "the file ends in this page";
    EXPECT_EQ(LostIn(zeros(4096, 8192) + zeros(480, 4576), 300, 30'000), "4096-8192 20480-24576 ");
}

}  // namespace
