#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <system_error>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/support/TempFolder.h"

namespace {

class WriterTest : public testing::Test {
 protected:
    std::string Bytes() const { return ReadAll(m_path); }

    /// Writes up to a recording of wells 11 and 12, without data.
    void BeginRecording() { BeginExample(m_writer, m_path); }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
    CIRawDataWriter m_writer;
};

TEST_F(WriterTest, OpenNewCreatesAFileButNeverChangesAnExistingOne) {
    m_writer.OpenNew(m_path);
    m_writer.WriteFileHdr(ExampleFileHdr());
    const std::string before = Bytes();
    EXPECT_EQ(before, FileHdrBytes(-1));
    EXPECT_EQ(TextOfFailure([&] { m_writer.OpenNew(m_path); }), "Cannot open file " + m_path + ", because it exists");
    EXPECT_EQ(Bytes(), before);
    const std::string report = std::make_error_code(std::errc::file_exists).message() + ", opening " + m_path +
                               "; choose another name, or move what is there; Open replaces files";
    EXPECT_EQ(m_writer.GetWriteError(), report);
    EXPECT_EQ(TextOfFailure([&] { m_writer.WriteFileHdr(ExampleFileHdr()); }), "No raw data file is open for writing.");
    EXPECT_FALSE(m_writer.FlushToDisk());
    m_writer.Close();
    EXPECT_EQ(m_writer.GetWriteError(), report) << "until the next file";
    const std::string nowhere = m_folder.Path("no folder/run.vxd");
    EXPECT_EQ(TextOfFailure([&] { m_writer.OpenNew(nowhere); }), "Cannot open file " + nowhere);
    m_writer.Open(m_path);
    EXPECT_EQ(m_writer.GetWriteError(), "");
    EXPECT_EQ(Bytes(), "");
}

TEST_F(WriterTest, MakeFileHdrAlwaysSetsHeaderIDAndVersion) {
    const CRawDataFileHdr header = MakeFileHdr({.HeaderID = "x", .FileVersion = 1, .PlateID = "P1"});
    EXPECT_EQ(header.HeaderID, "OVL Vexaprobe");
    EXPECT_EQ(header.FileVersion, 2);
    EXPECT_EQ(header.PlateID, "P1");
    EXPECT_EQ(MakeFileHdr().CompoundID, -1);
}

// Looks at the file from outside after every call.
TEST_F(WriterTest, EachCallPassesItsBytesToTheSystem) {
    m_writer.Open(m_path);
    EXPECT_EQ(Bytes(), "");
    m_writer.WriteFileHdr(ExampleFileHdr());
    EXPECT_EQ(Bytes(), FileHdrBytes(-1));
    m_writer.WriteRecordingHdr(ExampleRecordingHdr());
    EXPECT_EQ(Bytes(), FileHdrBytes(1190) + RecordingHdrBytes({}));
    m_writer.WriteData(11, 0, 300, 100, kWell11.data());
    const std::string first = SegmentHdrBytes(11, -1, 0, 300, "4") + SampleBytes(kWell11);
    EXPECT_EQ(Bytes(), FileHdrBytes(1190) + RecordingHdrBytes({}) + first);
    m_writer.UpdateFileHdr("CompoundTest", {"1000", "2000"});
    m_writer.WriteData(12, 0, 300, 100, kWell12.data());
    EXPECT_EQ(Bytes(), FileHdrBytes(1190, "CompoundTest=1000:2000") + RecordingHdrBytes({}) +
                           SegmentHdrBytes(11, 3958, 0, 300, "4") + SampleBytes(kWell11) +
                           SegmentHdrBytes(12, -1, 0, 300, "4") + SampleBytes(kWell12));
    m_writer.Close();
    EXPECT_EQ(Bytes(), SmallFileBytes());
    m_writer.Close();
    EXPECT_EQ(Bytes(), SmallFileBytes());
}

TEST_F(WriterTest, HeaderFieldsThatTheWriterSetsAreIgnored) {
    CRawDataFileHdr file = ExampleFileHdr();
    file.FPosFirstRecordingHdr = 7;
    file.PreQC = file.CompoundTest = file.PostQC = {1};
    file.CheckSum = file.Reserved = "x";
    CRawDataRecordingHdr recording = ExampleRecordingHdr();
    recording.FPosRecordingData = recording.FPosRecordingTrailer = recording.FPosNextRecordingHdr = 7;
    recording.AuxChannels.resize(3);
    m_writer.Open(m_path);
    m_writer.WriteFileHdr(file);
    m_writer.WriteRecordingHdr(recording);
    EXPECT_EQ(Bytes(), FileHdrBytes(1190) + RecordingHdrBytes({}));
}

TEST_F(WriterTest, SizeIsTheTruncatedQuotientPlusOne) {
    struct {
        std::int64_t from, to, tick, size;
    } const cases[] = {{0, 0, 7, 1}, {0, 6, 7, 1}, {0, 7, 7, 2}, {-100, 99, 100, 2}, {-9, -9, 1, 1}};
    const std::vector<std::uint16_t> samples(4, 0x0102);
    for (const auto& c : cases) {
        BeginRecording();
        m_writer.WriteData(1, c.from, c.to, c.tick, samples.data());
        const auto size = static_cast<std::size_t>(c.size);
        EXPECT_EQ(Bytes().substr(3650), SegmentHdrBytes(1, -1, c.from, c.to, std::to_string(size)) +
                                            SampleBytes({samples.data(), &samples[size]}));
    }
}

TEST_F(WriterTest, UpdateReplacesOneListAndNothingElse) {
    struct {
        const char* task;
        std::size_t offset, width;
    } const lists[] = {{"PreQC", 540, 100}, {"CompoundTest", 640, 150}, {"PostQC", 790, 100}};
    BeginRecording();
    for (const auto& list : lists) {
        std::string expected = Bytes();
        m_writer.UpdateFileHdr(list.task, {"1", "-2", "3"});
        EXPECT_EQ(Bytes(),
                  expected.replace(list.offset, list.width, Cell(list.width, list.task + std::string("=1:-2:3"))));
        m_writer.UpdateFileHdr(list.task, {});
        EXPECT_EQ(Bytes(), expected.replace(list.offset, list.width, Cell(list.width, list.task)));
        m_writer.UpdateFileHdr(list.task, {"", "x"});
        EXPECT_EQ(Bytes(), expected.replace(list.offset, list.width, Cell(list.width, list.task + std::string("=:x"))));
    }
    const std::string before = Bytes();
    for (const char* other : {"Washin", "preqc", "PreQC ", ""})
        m_writer.UpdateFileHdr(other, {"9"});
    EXPECT_EQ(Bytes(), before);
}

TEST_F(WriterTest, ValueMayFillItsCellButNotExceedIt) {
    const std::string beyond = "Value does not fit its cell: ";
    CRawDataFileHdr file = ExampleFileHdr();
    file.PlateID = std::string(30 - 3 - 8, 'p');
    m_writer.Open(m_path);
    m_writer.WriteFileHdr(file);
    EXPECT_EQ(Bytes().substr(280, 30), Cell(30, "PlateID=" + file.PlateID));

    m_writer.Open(m_path);
    file.PlateID += 'p';
    EXPECT_EQ(TextOfFailure([&] { m_writer.WriteFileHdr(file); }), beyond + "PlateID");
    EXPECT_EQ(Bytes(), "");
    m_writer.WriteFileHdr(ExampleFileHdr());
    m_writer.WriteRecordingHdr(ExampleRecordingHdr());
    m_writer.WriteData(11, 0, 300, 100, kWell11.data());
    const std::string before = Bytes();

    CRawDataRecordingHdr recording = ExampleRecordingHdr();
    recording.WellChannels.assign(64, {.ID = 10});  // 64 IDs of two digits: 191 characters, but room for 189
    EXPECT_EQ(TextOfFailure([&] { m_writer.WriteRecordingHdr(recording); }), beyond + "WellIDs");
    EXPECT_EQ(TextOfFailure([&] { m_writer.UpdateFileHdr("PreQC", {std::string(92, '1')}); }), beyond + "PreQC");
    EXPECT_EQ(Bytes(), before);

    // The current recording continues.
    m_writer.UpdateFileHdr("CompoundTest", {"1000", "2000"});
    m_writer.WriteData(12, 0, 300, 100, kWell12.data());
    m_writer.Close();
    EXPECT_EQ(Bytes(), SmallFileBytes());
}

// Calculated by hand: ADZeros has room for 200 - 3 - 8 = 189 bytes, Ticks for 191, UnitsPerADs for 385, WellIDs for
// 189.
TEST_F(WriterTest, CheckRecordingFitAgreesWithTheWriter) {
    CRawDataRecordingHdr header = ExampleRecordingHdr();
    header.WellChannels.clear();
    for (int well = 1; well <= 54; ++well)
        header.WellChannels.push_back({well, 32768, 0.000305176, 100});
    const CRecordingFit fit = CheckRecordingFit(header);
    const struct {
        const char* key;
        int room, needed, wells;
    } cells[] = {
        {"WellIDs", 189, 152, 54}, {"Ticks", 191, 215, 48}, {"UnitsPerADs", 385, 647, 32}, {"ADZeros", 189, 323, 31}};
    for (const auto& c : cells) {
        const auto cell =
            std::find_if(fit.Cells.begin(), fit.Cells.end(), [&](const auto& f) { return f.Key == c.key; });
        ASSERT_NE(cell, fit.Cells.end()) << c.key;
        EXPECT_EQ(cell->Room, c.room) << c.key;
        EXPECT_EQ(cell->Needed, c.needed) << c.key;
        EXPECT_EQ(cell->WellsThatFit, c.wells) << c.key;
        EXPECT_EQ(cell->Fits(), c.wells == 54) << c.key;
    }
    EXPECT_FALSE(fit.Fits());
    EXPECT_EQ(fit.WellsThatFit, 31);
    EXPECT_EQ(fit.Split, (std::vector<std::int64_t>{31, 23}));
    EXPECT_EQ(fit.Text(), "ADZeros has room for 189 bytes, but needs 323 for 54 wells; 31 of these wells would fit.");

    // 31 ADZeros take 185 bytes, so the second part has room for one of three digits.
    CRawDataRecordingHdr longer = header;
    for (int well = 55; well <= 64; ++well)
        longer.WellChannels.push_back({well, 32768, 0.000305176, 100});
    longer.WellChannels[62].ADZero = 327;
    EXPECT_EQ(CheckRecordingFit(longer).Split, (std::vector<std::int64_t>{31, 32, 1}));
    longer.WellChannels[62].ADZero = 3276;
    EXPECT_EQ(CheckRecordingFit(longer).Split, (std::vector<std::int64_t>{31, 31, 2}));

    // The writer accepts exactly what the plan says.
    m_writer.Open(m_path);
    m_writer.WriteFileHdr(ExampleFileHdr());
    for (std::size_t wells = 0; wells <= 54; ++wells) {
        CRawDataRecordingHdr first = header;
        first.WellChannels.resize(wells);
        const bool isTaken = TextOfFailure([&] { m_writer.WriteRecordingHdr(first); }) == "no failure";
        EXPECT_EQ(CheckRecordingFit(first).Fits(), isTaken) << wells;
        EXPECT_EQ(isTaken, wells <= 31) << wells;
    }
    header.WellChannels.resize(3);
    header.TaskName = std::string(39, 't');
    const CRecordingFit longName = CheckRecordingFit(header);
    EXPECT_EQ(longName.Text(), "TaskName has room for 38 bytes, but needs 39.");
    EXPECT_EQ(longName.WellsThatFit, 0);
    EXPECT_TRUE(longName.Split.empty()) << "splitting doesn't shorten the name";
}

// Each ADZero takes 5 bytes and a colon, so 31 of them take 185 of 189 bytes, and no other list is longer.
TEST_F(WriterTest, CheckRecordingFitIsFastForNinetyThousandWells) {
    CRawDataRecordingHdr header = ExampleRecordingHdr();
    header.WellChannels.clear();
    for (int well = 10'000; well < 100'000; ++well)
        header.WellChannels.push_back({well, 32768, 0.0003, 100});
    const auto start = std::chrono::steady_clock::now();
    const CRecordingFit fit = CheckRecordingFit(header);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    ASSERT_EQ(fit.Split.size(), 2904U) << fit.Text();
    EXPECT_TRUE(std::all_of(fit.Split.begin(), fit.Split.end() - 1, [](auto wells) { return wells == 31; }));
    EXPECT_EQ(fit.Split.back(), 7);
}

TEST_F(WriterTest, HeadersThatReadersRefuseAreWrittenUnchangedAndReported) {
    const std::string notOurs = "HeaderID doesn't begin with OVL Vexaprobe, so readers won't open the file";
    const std::string tooOld = "FileVersion is below 2, so readers won't find the wells";
    const struct {
        std::string headerID;
        int version;
        std::string report;
    } cases[] = {{"OVL Vexaprobe, series 2", 2, ""}, {"OVL Vexaprobe", 1, tooOld},
                 {"OVL Vexaprobe", 0, tooOld},       {"OVL Vexaprob", 3, notOurs},
                 {"Our OVL Vexaprobe", 2, notOurs},  {"", -1, notOurs + "; " + tooOld}};
    for (const auto& c : cases) {
        CRawDataFileHdr header = ExampleFileHdr();
        header.HeaderID = c.headerID;
        header.FileVersion = c.version;
        m_writer.Open(m_path);
        EXPECT_EQ(m_writer.GetWriteError(), "");
        m_writer.WriteFileHdr(header);
        EXPECT_EQ(m_writer.GetWriteError(), c.report);
        EXPECT_EQ(Bytes(), Cell(50, c.headerID) + FileHdrBytes(-1, "CompoundTest", c.version).substr(50));
    }
    m_writer.Close();
    EXPECT_EQ(m_writer.GetWriteError(), notOurs + "; " + tooOld);
}

TEST_F(WriterTest, TextsThatReadersCutAreWrittenUnchangedAndReportedByKey) {
    const auto cut = [](const char* key) {
        return std::string("Because of a NUL, CR, LF, '=' or ':', readers get only a part of ") + key;
    };
    const std::vector<std::string> texts = {
        "a=b", "a:b", "a\rb", "a\nb", std::string("a\0b", 3), std::string("a\0", 2)};
    for (const std::string& text : texts) {
        CRawDataFileHdr file = ExampleFileHdr();
        file.PlateID = text;
        CRawDataRecordingHdr recording = ExampleRecordingHdr();
        m_writer.Open(m_path);
        m_writer.WriteFileHdr(file);
        EXPECT_EQ(Bytes().substr(280, 30), Cell(30, "PlateID=" + text));
        EXPECT_EQ(m_writer.GetWriteError(), cut("PlateID"));
        m_writer.WriteRecordingHdr(recording);
        EXPECT_EQ(m_writer.GetWriteError(), cut("PlateID"));
        recording.TaskName = text;
        m_writer.WriteRecordingHdr(recording);
        m_writer.WriteRecordingHdr(recording);
        EXPECT_EQ(m_writer.GetWriteError(), cut("PlateID") + "; " + cut("TaskName")) << "each key once";
        m_writer.UpdateFileHdr("PreQC", {"1", text});
        EXPECT_EQ(m_writer.GetWriteError(), cut("PlateID") + "; " + cut("TaskName") + "; " + cut("PreQC"));
    }
    CRawDataFileHdr file = ExampleFileHdr();
    file.HeaderID = "OVL Vexaprobe=1:2";  // the only cell that readers don't split
    file.Reserved = "never:written";
    m_writer.Open(m_path);
    m_writer.WriteFileHdr(file);
    EXPECT_EQ(m_writer.GetWriteError(), "");
    file.HeaderID += std::string("\0x", 2);
    m_writer.Open(m_path);
    m_writer.WriteFileHdr(file);
    EXPECT_EQ(m_writer.GetWriteError(), cut("HeaderID"));
    file.PlateID = std::string(30, 'x') + "=";
    m_writer.Open(m_path);
    EXPECT_NE(TextOfFailure([&] { m_writer.WriteFileHdr(file); }), "no failure");
    EXPECT_EQ(m_writer.GetWriteError(), "") << "a refused header isn't written";
}

TEST_F(WriterTest, CallsOutOfOrderAreRefusedAndChangeNothing) {
    const auto refuses = [&](auto call) { return TextOfFailure(call) != "no failure"; };
    const auto writeFileHdr = [&] { m_writer.WriteFileHdr(ExampleFileHdr()); };
    const auto writeRecordingHdr = [&] { m_writer.WriteRecordingHdr(ExampleRecordingHdr()); };
    const auto writeData = [&] { m_writer.WriteData(11, 0, 300, 100, kWell11.data()); };
    const auto update = [&] { m_writer.UpdateFileHdr("PreQC", {"1"}); };
    EXPECT_TRUE(refuses(writeFileHdr) && refuses(writeRecordingHdr) && refuses(writeData) && refuses(update));
    m_writer.Open(m_path);
    EXPECT_TRUE(refuses(writeRecordingHdr) && refuses(writeData) && refuses(update));
    EXPECT_EQ(Bytes(), "");
    writeFileHdr();
    EXPECT_TRUE(refuses(writeFileHdr) && refuses(writeData));
    EXPECT_EQ(Bytes(), FileHdrBytes(-1));
    writeRecordingHdr();
    EXPECT_TRUE(refuses(writeFileHdr));
    EXPECT_EQ(Bytes(), FileHdrBytes(1190) + RecordingHdrBytes({}));
    m_writer.Close();
    EXPECT_TRUE(refuses(writeFileHdr) && refuses(writeRecordingHdr) && refuses(writeData) && refuses(update));
}

TEST_F(WriterTest, InvalidSegmentsAreRefusedAndChangeNothing) {
    constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
    BeginRecording();
    const std::string before = Bytes();
    const auto refusal = [&](std::int64_t from, std::int64_t to, std::int64_t tick, const std::uint16_t* samples) {
        return TextOfFailure([&] { m_writer.WriteData(11, from, to, tick, samples); });
    };
    EXPECT_EQ(refusal(0, 300, 0, kWell11.data()), "The sample interval must be above 0.");
    EXPECT_EQ(refusal(0, 300, -1, kWell11.data()), "The sample interval must be above 0.");
    EXPECT_EQ(refusal(1, 0, 1, kWell11.data()), "The segment ends before it begins.");
    EXPECT_EQ(refusal(kMin, kMax, kMax, kWell11.data()), "The segment holds too many samples.");
    EXPECT_EQ(refusal(-1, kMax, kMax, kWell11.data()), "The segment holds too many samples.");
    EXPECT_EQ(refusal(0, kMax, 1, kWell11.data()), "The segment holds too many samples.");
    EXPECT_EQ(refusal(0, (std::int64_t{1} << 32) - 1, 1, kWell11.data()), "The segment holds too many samples.");
    EXPECT_EQ(refusal(0, 300, 100, nullptr), "The samples are missing.");
    EXPECT_EQ(Bytes(), before);
    m_writer.WriteData(11, kMax - 1, kMax, kMax, kWell11.data());  // the last possible time
    EXPECT_EQ(Bytes().size(), before.size() + 302);
}

TEST_F(WriterTest, SecondOpenFinishesTheFirstFile) {
    const std::string other = m_folder.Path("other.vxd");
    BeginRecording();
    m_writer.WriteData(11, 0, 300, 100, kWell11.data());
    m_writer.UpdateFileHdr("CompoundTest", {"1000", "2000"});
    m_writer.WriteData(12, 0, 300, 100, kWell12.data());
    m_writer.Open(other);
    EXPECT_EQ(Bytes(), SmallFileBytes());
    m_writer.WriteFileHdr(ExampleFileHdr());
    EXPECT_EQ(TextOfFailure([&] { m_writer.WriteData(11, 0, 300, 100, kWell11.data()); }),
              "No recording has been begun.");
    m_writer.Close();
    EXPECT_EQ(ReadAll(other), FileHdrBytes(-1));
}

TEST_F(WriterTest, DestructorFinishesTheFile) {
    {
        CIRawDataWriter writer;
        BeginExample(writer, m_path);
        writer.WriteData(11, 0, 300, 100, kWell11.data());
        writer.UpdateFileHdr("CompoundTest", {"1000", "2000"});
        writer.WriteData(12, 0, 300, 100, kWell12.data());
    }
    EXPECT_EQ(Bytes(), SmallFileBytes());
}

TEST_F(WriterTest, FileThatCannotBeCreatedIsReportedWithItsPath) {
    const std::string path = m_folder.Path("missing/run.vxd");
    EXPECT_EQ(TextOfFailure([&] { m_writer.Open(path); }), "Cannot open file " + path);
    EXPECT_EQ(TextOfFailure([&] { m_writer.Open(""); }), "Cannot open file ");
    const std::string cut = m_path + std::string("\0.txt", 5);
    EXPECT_EQ(TextOfFailure([&] { m_writer.Open(cut); }), "Cannot open file " + cut);
    EXPECT_FALSE(std::filesystem::exists(m_path));
    EXPECT_EQ(TextOfFailure([&] { m_writer.WriteFileHdr(ExampleFileHdr()); }), "No raw data file is open for writing.");
}

TEST_F(WriterTest, BothSlashesSeparateFolders) {
    std::filesystem::create_directory(m_folder.Path("sub"));
    std::string path = m_folder.Path("sub/run.vxd");
    std::replace(path.begin(), path.end(), '/', '\\');
    m_writer.Open(path);
    m_writer.WriteFileHdr(ExampleFileHdr());
    m_writer.Close();
    EXPECT_EQ(ReadAll(m_folder.Path("sub/run.vxd")), FileHdrBytes(-1));
}

}  // namespace
