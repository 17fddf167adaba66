#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tests/tools/RawBytes.h"
#include "tools/vxfile/raw/DecimalScale.h"
#include "tools/vxfile/raw/SampleSink.h"
#include "tools/vxfile/raw/SampleSource.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/system/Interrupt.h"
#include "verify/raw/FileWindow.h"
#include "vxfileio/access/Internals.h"

using namespace vxfile;

namespace {

constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
constexpr auto kMost = std::numeric_limits<std::int64_t>::max();

/// Wells 11 and 12 in two recordings. All samples are different.
const std::string kFile = FileOf(
    {{{11, 0, {1, 2, 3, 4}}, {12, 0, {5, 6, 7, 8}}, {11, 400, {9, 10}}}, {{12, 1000, {20, 21, 22}}, {11, 1000, {30}}}});

class Samples : public testing::Test {
 protected:
    /// Writes the samples in a form, as the command does. Returns the output, or the message of the failure.
    std::string Written(const std::string& bytes, const CSampleChoice& choice, CSampleForm form = {}) {
        WriteAll(m_path, bytes);
        form.target.sources = {m_path};
        form.target.path = m_folder.Path("out");
        form.target.replace = true;
        const std::string failure = FailureOf([&] {
            CSampleSource source(m_path, choice);
            const auto sink = MakeSampleSink(form, source);
            source.ForEach([&](const CPiece& piece) { sink->Put(piece); });
            source.RefuseNothing();
            sink->Commit();
        });
        return failure.empty() ? ReadAll(form.target.path) : failure;
    }

    /// Returns "time=sample " for each line of text.
    std::string Chosen(const CSampleChoice& choice, const std::string& bytes = kFile) {
        std::istringstream lines(Written(bytes, choice));
        std::string text;
        std::string line;
        for (std::getline(lines, line); std::getline(lines, line);) {
            const auto comma = line.rfind(',');
            const auto before = line.rfind(',', comma - 1);
            text += line.substr(before + 1, comma - before - 1) + "=" + line.substr(comma + 1) + " ";
        }
        return text;
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
};

template <class Number>
Number At(const std::string& bytes, std::size_t offset) {
    Number number{};
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

}  // namespace

TEST_F(Samples, AreThoseFromOneTimeToAnother) {
    struct CCase {
        std::int64_t from;
        std::int64_t to;
        std::string samples;
    };
    for (const auto& [from, to, samples] :
         std::vector<CCase>{{kLeast, kMost, "0=1 100=2 200=3 300=4 400=9 500=10 1000=30 "},
                            {100, 100, "100=2 "},
                            {101, 199, ""},
                            {99, 200, "100=2 200=3 "},
                            {101, 200, "200=3 "},
                            {100, 199, "100=2 "},
                            {-5, 0, "0=1 "},
                            {300, 400, "300=4 400=9 "},
                            {301, 399, ""},
                            {500, kMost, "500=10 1000=30 "},
                            {501, kMost, "1000=30 "},
                            {kLeast, 0, "0=1 "}})
        EXPECT_EQ(Chosen({.plate = {.wells = {11}}, .from = from, .to = to}), samples) << from << " to " << to;
}

TEST_F(Samples, AreRefusedIfTheRecordingsOfADoseHaveNone) {
    const std::string bytes = WithCell(FileOf({{}, {{11, 0, {1}}}}), "Dose", "2000");
    EXPECT_EQ(Written(bytes, {.plate = {.doses = {2000}}}),
              m_path + " has no samples of what was chosen; the wells of the chosen recordings: 11, 12.");
}

TEST_F(Samples, NearTheEndOfTimeHaveTheirOwnTimes) {
    const std::string late = FileOf({{{11, kMost - 200, {1, 2, 3}}}});
    EXPECT_EQ(Chosen({}, late), "9223372036854775607=1 9223372036854775707=2 9223372036854775807=3 ");
    EXPECT_EQ(Chosen({.from = kMost}, late), "9223372036854775807=3 ");
    const std::string early = FileOf({{{11, kLeast, {1, 2}}}});
    EXPECT_EQ(Chosen({.from = kLeast + 1}, early), "-9223372036854775708=2 ");
}

TEST(DecimalScale, HasTheDecimalsOfUnitsPerADAndNoErrorOfADouble) {
    struct CCase {
        double units;
        std::int32_t zero;
        std::uint16_t sample;
        std::string text;
    };
    for (const auto& [units, zero, sample, text] :
         std::vector<CCase>{{0.0001, 32768, 29893, "-0.2875"},
                            {0.0002, 32768, 32768, "0.0000"},
                            {0.0002, 32768, 32767, "-0.0002"},
                            {0.3, 0, 65535, "19660.5"},
                            {3.0517578125e-05, 32768, 0, "-1.000000000000000"},
                            {3.0517578125e-05, 32768, 65535, "0.999969482421875"},
                            {-0.25, 100, 103, "-0.75"},
                            {2000, -1, 1, "4000"},
                            {1e18, 0, 7, "7e+18"},
                            {1e-31, 0, 2, "2e-31"},
                            {1.5e10, -2'000'000'000, 5, "3.0000000075e+19"},
                            {1407396358.71744, 0, 65535, "92233720368547.43040"},
                            {1407396358.71745, 0, 65535, "92233720368548.08"},
                            {1407396358.71745, 65535, 0, "-92233720368548.08"},
                            {0, 5, 7, "0"}}) {
        std::string written;
        CDecimalScale({.ADZero = zero, .UnitsPerAD = units}).AddTo(written, sample);
        EXPECT_EQ(written, text) << units;
    }
}

TEST_F(Samples, InUnitsHaveTheScaleOfTheirOwnRecording) {
    const std::string one = WithCell(FileOf({{{11, 0, {10}}}, {{11, 0, {10}}}}), "UnitsPerADs", "0.5:1");
    const std::string both = WithCell(one, "UnitsPerADs", "0.25:1", one.find("TaskName=", 1190 + 2460));
    const std::string array = Written(both, {}, {.kind = CSampleForm::EKind::NpyArray, .units = true});
    ASSERT_EQ(array.size(), 192U + 16);
    EXPECT_EQ(At<double>(array, 192), -16379);
    EXPECT_EQ(At<double>(array, 200), -8189.5);
}

TEST(FileWindow, ReturnsBytesAcrossTheEndOfABlock) {
    const CTempFolder folder;
    std::string bytes(3 * CFileWindow::kRoom, 'x');
    WriteAll(folder.Path("file"), bytes.replace(CFileWindow::kRoom - 3, 6, "across"));
    vxfileio::helpers::CFile file;
    ASSERT_TRUE(file.OpenForReading(folder.Path("file")));
    CFileWindow window(file);
    EXPECT_EQ(window.BytesAt(0, 1, CFileWindow::kRoom).size(), CFileWindow::kRoom);
    EXPECT_TRUE(window.BytesAt(CFileWindow::kRoom - 3, 6, 6).starts_with("across"));
    EXPECT_TRUE(window.BytesAt(CFileWindow::kRoom - 4, 7, 7).starts_with("xacross")) << "going backwards";
}

TEST_F(Samples, HaveTheSameDoubtsWhenTheyAreCounted) {
    WriteAll(m_path, FileOf({{{11, 0, {1}}, {13, 0, {2}}}, {{13, 0, {3}}}}));
    using CStep = std::function<void(CSampleSource&)>;
    const CStep count = [](CSampleSource& source) { source.Counts(); };
    const CStep read = [](CSampleSource& source) { source.ForEach([](const CPiece&) {}); };
    const CStep countWithin = [&](CSampleSource& source) { source.ForEach([&](const CPiece&) { count(source); }); };
    for (const auto& [name, steps] :
         std::vector<std::pair<std::string, std::vector<CStep>>>{{"count", {count}},
                                                                 {"read", {read}},
                                                                 {"count, read", {count, read}},
                                                                 {"read, count", {read, count}},
                                                                 {"read twice", {read, read}},
                                                                 {"count while reading", {countWithin}}}) {
        CSampleSource source(m_path, {});
        for (const auto& step : steps)
            step(source);
        EXPECT_EQ(source.Doubts(),
                  std::vector<std::string>{"2 segments of a well that the recording doesn't list, so it may belong to "
                                           "another; the first is of well 13, at byte 3952 in recording 1 "
                                           "(CompoundTest 1)."})
            << name;
    }
}

TEST_F(Samples, AreRefusedWithTheNameOfTheFileIfItIsCutWhileTheyAreRead) {
    WriteAll(m_path, FileOf({{{11, 0, {1}}}, {{12, 0, std::vector<std::uint16_t>(40'000)}}}));
    CSampleSource source(m_path, {});
    EXPECT_EQ(FailureOf([&] {
                  source.ForEach([&](const CPiece& piece) {
                      if (piece.well == 12) std::filesystem::resize_file(m_path, 10'000);
                  });
              }),
              m_path +
                  " is damaged or cut: recording 2 (CompoundTest 2) can't be read. Run 'vxfile recover' to save "
                  "what is intact.");
}

TEST_F(Samples, ArentReadIfTheCheckOfTheirIndexThrows) {
    WriteAll(m_path, FileOf({{{11, 0, {1}}, {11, 100, {2}}, {11, 200, {3}}}}));
    int calls = 0;
    const auto check = [&] {
        if (++calls == 2) throw CInterruption();
    };
    EXPECT_THROW(vxfileio::access::CInternals::ReadIndex(CRawDataFile(m_path), 0, {}, check), CInterruption);
    EXPECT_EQ(calls, 2);
}
