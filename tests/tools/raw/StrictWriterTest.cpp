#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/support/TempFolder.h"
#include "verify/raw/RawVerify.h"
#include "vxfileio/rawdata/Rules.h"

namespace {

using std::string_literals::operator""s;

/// Whether `vxfile verify` can find a mistake in the resulting file.
enum class ETrace { Visible, None };

/// A mistake in a header: a change to a valid one, and the beginning of the refusal.
template <class Header>
struct CHeaderMistake {
    std::function<void(Header&)> make;
    std::string refusal;
    ETrace trace = ETrace::Visible;
};

/// A mistake in a call. The last segment in the file is that of well 11 from 0 to 300.
struct CCallMistake {
    std::function<void(CIRawDataWriter&)> make;
    std::string refusal;
    ETrace trace = ETrace::Visible;
};

const std::vector<CHeaderMistake<CRawDataFileHdr>> kFileMistakes = {
    {[](auto& h) { h.HeaderID = "Vexaprobe"; }, R"(HeaderID is "Vexaprobe", expected a text that begins "OVL Vexapr)"},
    {[](auto& h) { h.HeaderID = ""; }, R"(HeaderID is "", expected a text that begins)"},
    {[](auto& h) { h.HeaderID += "\0x"s; },
     R"(HeaderID is "OVL Vexaprobe\x00x", expected a text without control characters. Readers take only)"},
    {[](auto& h) { h.HeaderID += "\n"; }, R"(HeaderID is "OVL Vexaprobe\n", expected a text without control)"},
    {[](auto& h) { h.FileVersion = 1; }, "FileVersion is 1, expected 2 or more. Readers won't find the wells."},
    {[](auto& h) { h.FileVersion = -2; }, "FileVersion is -2, expected 2 or more."},
    {[](auto& h) { h.Guid = "a=b"; }, R"(Guid is "a=b", expected a text without '=', ':' and line ends. Readers)"},
    {[](auto& h) { h.PlateID = "a:b"; }, R"(PlateID is "a:b", expected a text without '=')"},
    {[](auto& h) { h.FileType = "\r"; }, R"(FileType is "\r", expected)"},
    {[](auto& h) { h.ProgramVersion = "1\n0"; }, R"(ProgramVersion is "1\n0", expected)"},
    {[](auto& h) { h.CompoundName = "a\0b"s; }, R"(CompoundName is "a\x00b", expected a text without control)"},
    {[](auto& h) { h.CompoundName = "a\0"s; }, R"(CompoundName is "a\x00", expected a text without)", ETrace::None},
    {[](auto& h) { h.HeaderID += "\0"s; }, R"(HeaderID is "OVL Vexaprobe\x00", expected a text)", ETrace::None},
    {[](auto& h) { h.CompoundName = "\x1B[2J"; }, R"(CompoundName is "\x1b[2J", expected a text without c)"},
    {[](auto& h) { h.CompoundName = "a\x7F"; }, R"(CompoundName is "a\x7f", expected a text without c)"},
};

const std::vector<CHeaderMistake<CRawDataRecordingHdr>> kRecordingMistakes = {
    {[](auto& h) { h.TaskName = "Series:1"; }, R"(TaskName is "Series:1", expected)"},
    {[](auto& h) { h.TaskName = "a\tb"; }, R"(TaskName is "a\x09b", expected a text without control)"},
    {[](auto& h) { h.WellChannels[1].ID = 11; }, "WellIDs is a list with well 11 twice, expected each well once."},
    {[](auto& h) { h.WellChannels[0].Ticks = 0; },
     "Ticks is 0 for well 11, expected a sample interval from 1 to 2147483647."},
    {[](auto& h) { h.WellChannels[1].Ticks = -5; }, "Ticks is -5 for well 12, expected a sample interval from 1"},
    {[](auto& h) { h.WellChannels[1].Ticks = 1LL << 31U; },
     "Ticks is 2147483648 for well 12, expected a sample interval from 1 to 2147483647."},
    {[](auto& h) { h.WellChannels[0].UnitsPerAD = std::numeric_limits<double>::quiet_NaN(); },
     "UnitsPerADs is nan for well 11, expected a finite number."},
    {[](auto& h) { h.WellChannels[0].UnitsPerAD = std::numeric_limits<double>::infinity(); },
     "UnitsPerADs is inf for well 11, expected a finite number."},
};

void Write(CIRawDataWriter& writer, std::int32_t well, std::int64_t from, std::int64_t to, std::int64_t tick) {
    static const std::vector<std::uint16_t> samples(100, 7);
    writer.WriteData(well, from, to, tick, samples.data());
}

const std::vector<CCallMistake> kCallMistakes = {
    {[](auto& w) { Write(w, 13, 0, 300, 100); }, "ID is 13, expected a well that the recording lists. Interval and"},
    {[](auto& w) { Write(w, -1, 0, 300, 100); }, "ID is -1, expected a well that the recording lists."},
    {[](auto& w) { Write(w, 12, 0, 300, 50); }, "tick is 50, expected 100, the interval of well 12 in the recording"},
    {[](auto& w) { Write(w, 12, 0, 300, 301); }, "tick is 301, expected 100, the interval of well 12"},
    {[](auto& w) { Write(w, 12, 0, 0, 1); }, "tick is 1, expected 100, the interval of well 12", ETrace::None},
    {[](auto& w) { Write(w, 11, 300, 600, 100); },
     "TimeFrom is 300, expected more than 300, where the previous segment of well 11 ends. The times of these"},
    {[](auto& w) { Write(w, 11, 0, 300, 100); }, "TimeFrom is 0, expected more than 300,"},
    {[](auto& w) { Write(w, 11, -600, -300, 100); }, "TimeFrom is -600, expected more than 300,"},
    {[](auto& w) {
         w.UpdateFileHdr("PreQC", {"1", "x"});
     },
     R"(PreQC is "x", expected the decimal text of a whole number of 64 bits. Readers would read it as 0.)"},
    {[](auto& w) { w.UpdateFileHdr("PostQC", {"1.5"}); }, R"(PostQC is "1.5", expected the decimal text)"},
    {[](auto& w) { w.UpdateFileHdr("PreQC", {"007"}); }, R"(PreQC is "007", expected the decimal text)"},
    {[](auto& w) { w.UpdateFileHdr("PreQC", {" 7"}); }, R"(PreQC is " 7", expected the decimal text)"},
    {[](auto& w) { w.UpdateFileHdr("PreQC", {"9223372036854775808"}); }, R"(PreQC is "9223372036854775808", expected)"},
    {[](auto& w) {
         w.UpdateFileHdr("CompoundTest", {"", "1"});
     },
     R"(CompoundTest is "", expected the decimal text of a whole number of 64 bits. Readers would skip it.)"},
    {[](auto& w) { w.UpdateFileHdr("PreQC", {"1\0"s}); },
     R"(PreQC is "1\x00", expected the decimal text of a whole number of 64 bits. Readers would take only what)",
     ETrace::None},
    {[](auto& w) { w.UpdateFileHdr("PreQC", {"1:2"}); },
     R"(PreQC is "1:2", expected the decimal text of a whole number of 64 bits. Readers would split it into)",
     ETrace::None},
    {[](auto& w) { w.UpdateFileHdr("PreQC", {""}); }, R"(PreQC is "", expected the decimal)", ETrace::None},
    {[](auto& w) { w.UpdateFileHdr("Series", {"1"}); }, R"(taskName is "Series", expected PreQC, CompoundTest)",
     ETrace::None},
};

class StrictWriterTest : public testing::Test {
 protected:
    std::string Bytes() const { return ReadAll(m_path); }

    void ExpectRefused(const std::function<void()>& mistake, const std::string& refusal) {
        const std::string before = Bytes();
        const std::string text = TextOfFailure(mistake);
        EXPECT_EQ(text.substr(0, refusal.size()), refusal);
        EXPECT_TRUE(Bytes() == before) << refusal;
        EXPECT_EQ(m_writer.GetWriteError(), "");
    }

    /// Writes a file that is otherwise correct, and verifies it.
    std::size_t FindingsAfter(const CRawDataFileHdr& file, const CRawDataRecordingHdr& recording,
                              const std::function<void(CIRawDataWriter&)>& call) {
        m_writer.Open(m_path);
        m_writer.WriteFileHdr(file);
        m_writer.WriteRecordingHdr(recording);
        Write(m_writer, 11, 0, 300, 100);
        call(m_writer);
        m_writer.Close();
        return VerifiedCount();
    }

    std::size_t VerifiedCount() try { return vxfile::VerifyRawData(m_path).Count(); } catch (const std::exception&) {
        return 1;  // not a raw data file at all
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
    CIRawDataWriter m_writer;
};

}  // namespace

// In spite of the refusals, the file is the same as in the other tests.
TEST_F(StrictWriterTest, RefusesEachMistakeAndWritesTheSameBytesAsBefore) {
    m_writer.SetStrict(true);
    m_writer.Open(m_path);
    for (const auto& mistake : kFileMistakes) {
        CRawDataFileHdr header = ExampleFileHdr();
        mistake.make(header);
        ExpectRefused([&] { m_writer.WriteFileHdr(header); }, mistake.refusal);
    }
    m_writer.WriteFileHdr(ExampleFileHdr());
    for (const auto& mistake : kRecordingMistakes) {
        CRawDataRecordingHdr header = ExampleRecordingHdr();
        mistake.make(header);
        ExpectRefused([&] { m_writer.WriteRecordingHdr(header); }, mistake.refusal);
        const CRecordingFit fit = CheckRecordingFit(header);
        EXPECT_EQ(fit.Refusal.substr(0, mistake.refusal.size()), mistake.refusal);
        EXPECT_FALSE(fit.Fits());
        EXPECT_TRUE(fit.Split.empty());
    }
    m_writer.WriteRecordingHdr(ExampleRecordingHdr());
    m_writer.WriteData(11, 0, 300, 100, kWell11.data());
    for (const auto& mistake : kCallMistakes)
        ExpectRefused([&] { mistake.make(m_writer); }, mistake.refusal);
    m_writer.UpdateFileHdr("CompoundTest", {"1000", "2000"});
    m_writer.WriteData(12, 0, 300, 100, kWell12.data());
    m_writer.Close();
    EXPECT_EQ(Bytes(), SmallFileBytes());
    EXPECT_EQ(VerifiedCount(), 0U);
}

TEST_F(StrictWriterTest, VerifyReportsTheSameMistakesOfLenientWriters) {
    const auto none = [](CIRawDataWriter& /*writer*/) {};
    ASSERT_EQ(FindingsAfter(ExampleFileHdr(), ExampleRecordingHdr(), none), 0U);
    for (const auto& mistake : kFileMistakes) {
        CRawDataFileHdr header = ExampleFileHdr();
        mistake.make(header);
        const std::size_t findings = FindingsAfter(header, ExampleRecordingHdr(), none);
        EXPECT_EQ(findings > 0, mistake.trace == ETrace::Visible) << mistake.refusal;
    }
    for (const auto& mistake : kRecordingMistakes) {
        CRawDataRecordingHdr header = ExampleRecordingHdr();
        mistake.make(header);
        EXPECT_GT(FindingsAfter(ExampleFileHdr(), header, none), 0U) << mistake.refusal;
    }
    for (const auto& mistake : kCallMistakes) {
        const std::size_t findings = FindingsAfter(ExampleFileHdr(), ExampleRecordingHdr(), mistake.make);
        EXPECT_EQ(findings > 0, mistake.trace == ETrace::Visible) << mistake.refusal;
    }
}

TEST_F(StrictWriterTest, JudgesEachWellAndEachRecordingSeparately) {
    m_writer.SetStrict(true);
    m_writer.Open(m_path);
    m_writer.WriteFileHdr(ExampleFileHdr());
    CRawDataRecordingHdr header = ExampleRecordingHdr();
    header.WellChannels = {{12, 0, 0.5, 7}, {-4, 0, 0.5, 100}, {11, 0, 0.5, 100}};
    for (const int recording : {1, 2}) {
        header.Recording = recording;
        m_writer.WriteRecordingHdr(header);
        Write(m_writer, 11, 0, 399, 100);
        Write(m_writer, 12, 0, 20, 7);
        Write(m_writer, -4, -900, -800, 100);
        Write(m_writer, 12, 21, 21, 7);
        Write(m_writer, 11, 400, 400, 100);  // continues without a gap
        Write(m_writer, 12, 900, 907, 7);
    }
    m_writer.Close();
    EXPECT_EQ(VerifiedCount(), 0U);
}

TEST_F(StrictWriterTest, CanSwitchStrictnessWithinARecording) {
    BeginExample(m_writer, m_path);
    Write(m_writer, 12, 0, 300, 100);
    m_writer.SetStrict(true);
    ExpectRefused([&] { Write(m_writer, 12, 300, 600, 100); }, "TimeFrom is 300,");
    ExpectRefused([&] { Write(m_writer, 13, 0, 300, 100); }, "ID is 13,");
    Write(m_writer, 11, 0, 300, 100);
    ExpectRefused([&] { Write(m_writer, 11, 200, 300, 100); }, "TimeFrom is 200,");
    m_writer.SetStrict(false);
    Write(m_writer, 11, 200, 300, 100);
    m_writer.Close();
    EXPECT_EQ(VerifiedCount(), 1U);
}

// The room in each cell is that of docs/raw-data-file.md: the width minus 3, the key and its `=`.
TEST_F(StrictWriterTest, ReportsTheSizeOfAValueThatDoesNotFit) {
    m_writer.SetStrict(true);
    m_writer.Open(m_path);
    const std::string beyond = "Value does not fit its cell: ";
    CRawDataFileHdr file = ExampleFileHdr();
    file.PlateID = std::string(20, 'p');
    ExpectRefused([&] { m_writer.WriteFileHdr(file); }, beyond + "PlateID has room for 19 bytes, but needs 20.");
    file = MakeFileHdr();
    file.HeaderID += std::string(35, 'x');
    ExpectRefused([&] { m_writer.WriteFileHdr(file); }, beyond + "HeaderID has room for 47 bytes, but needs 48.");
    m_writer.WriteFileHdr(ExampleFileHdr());

    CRawDataRecordingHdr recording = ExampleRecordingHdr();
    recording.TaskName = std::string(39, 't');
    ExpectRefused([&] { m_writer.WriteRecordingHdr(recording); },
                  beyond + "TaskName has room for 38 bytes, but needs 39.");
    recording = ExampleRecordingHdr();
    recording.WellChannels.clear();
    for (int well = 1; well <= 32; ++well)
        recording.WellChannels.push_back({well, 32768, 0.0003, 100});
    ExpectRefused([&] { m_writer.WriteRecordingHdr(recording); },
                  beyond + "ADZeros has room for 189 bytes, but needs 191 for 32 wells; 31 of these wells would fit.");
    recording.WellChannels.pop_back();
    m_writer.WriteRecordingHdr(recording);
    ExpectRefused([&] { m_writer.UpdateFileHdr("PreQC", std::vector<std::string>(47, "7")); },
                  beyond + "PreQC has room for 91 bytes, but needs 93 for 47 values; 46 of these values would fit.");
    m_writer.UpdateFileHdr("PreQC", std::vector<std::string>(46, "7"));
    m_writer.Close();
    EXPECT_EQ(VerifiedCount(), 0U);
}

TEST_F(StrictWriterTest, EveryRuleIsInTheDocs) {
    const std::string page = ReadAll(VXFILEIO_REFERENCE_DIR "/../../docs/raw-data-file.md");
    for (const auto& rule : vxfileio::rawdata::kRules) {
        const std::string row = "| `" + std::string(rule.id) + "` | " + std::string(rule.sentence) + " |\n";
        EXPECT_NE(page.find(row), std::string::npos) << row;
    }
}
