#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tests/tools/RawBytes.h"
#include "tests/tools/Stride.h"
#include "tests/tools/ToolRun.h"
#include "tools/vxfile/report/Seal.h"
#include "tools/vxfile/report/SealCheck.h"
#include "tools/vxfile/system/FileDigest.h"
#include "tools/vxfile/system/Hex.h"

using namespace vxfile;

namespace {

using EState = CSealVerdict::EState;
using nlohmann::json;

/// Headers begin at 0, 1190, 3650, 3954, 4262 and 6722.
const std::string kTwo = FileOf({{{11, 0, {1, 2}}, {12, 0, {3, 4, 5, 6}}}, {{12, 500, {7}}}});

/// The part that a changed byte belongs to: from the end of the previous one up to `end`.
struct CPlaceName {
    std::size_t end;
    const char* where;
};
const std::vector<CPlaceName> kPlaces = {{1190, "file header"},
                                         {3650, "CompoundTest 1 > header"},
                                         {3950, "CompoundTest 1 > well 11, times 0 to 100 > header"},
                                         {3954, "CompoundTest 1 > well 11, times 0 to 100 > samples"},
                                         {4254, "CompoundTest 1 > well 12, times 0 to 300 > header"},
                                         {4262, "CompoundTest 1 > well 12, times 0 to 300 > samples"},
                                         {6722, "CompoundTest 2 > header"},
                                         {7022, "CompoundTest 2 > well 12, times 500 to 500 > header"},
                                         {7024, "CompoundTest 2 > well 12, times 500 to 500 > samples"}};

std::string Flipped(std::string bytes, std::size_t at, int bit = 0) {
    bytes[at] = static_cast<char>(bytes[at] ^ (1 << bit));
    return bytes;
}

/// Flips a bit without rewriting the file, which would be slow on a disk.
void FlipInPlace(const std::string& path, std::size_t at) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    const auto place = static_cast<std::streamoff>(at);
    const char byte =
        Flipped(std::string(1, static_cast<char>(file.seekg(place).get())), 0, static_cast<int>(at % 8))[0];
    file.seekp(place).put(byte);
}

/// Returns the lines of a seal with the correct `check`.
std::string WithCheck(const std::string& lines) {
    CXxh3 sum;
    sum.Add(std::as_bytes(std::span(lines)));
    return lines + "\"check\": \"" + HexOf(sum.Take()) + "\"\n}\n";
}

class Seals : public testing::Test {
 protected:
    /// Writes a file and seals it.
    void SealFile(const std::string& bytes) {
        WriteAll(m_path, bytes);
        m_run = RunTool({"seal", "--force", m_path});
    }

    /// Gives the file this content and compares it with its seal.
    EState Check(const std::string& bytes) {
        WriteAll(m_path, bytes);
        return Check();
    }

    EState Check() {
        m_findings = {};
        const auto verdict = CSealCheck(m_path).Finish(m_findings);
        return verdict ? verdict->state : EState::Unusable;
    }

    json RecoverJson() {
        m_run = RunTool({"recover", m_path, "-o", m_folder.Path("new.vxd"), "--force", "--json"});
        return json::parse(m_run.out)["files"][0];
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
    std::string m_seal = m_path + ".seal";
    CToolRun m_run;
    CFindings m_findings;
};

}  // namespace

// Values from hashlib and xxhsum.
TEST_F(Seals, HaveTheChecksumsThatOtherProgramsCompute) {
    std::string bytes;
    for (int i = 0; i < 2621447; ++i)
        bytes += static_cast<char>(i * 31 % 251);
    struct CCase {
        std::string bytes;
        std::vector<std::int64_t> lengths;
        std::vector<const char*> xxh3;
        const char* sha256;
    };
    for (const auto& c : std::vector<CCase>{{"",
                                             {0},
                                             {"99aa06d3014798d86001c324468d497f"},
                                             "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
                                            {"abc",
                                             {3},
                                             {"06b05ab6733a618578af5f94892f3950"},
                                             "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
                                            {bytes.substr(0, 1000),
                                             {1000},
                                             {"17a0f7b2ab909d68404e1417800eb486"},
                                             "f3f55c45264850b8475533289ff43ab81fa1eb3bf781267db645e1ce0c193379"},
                                            {bytes,
                                             {1048579, 1572868},
                                             {"d9596c1c15ab69f223493c3fc4135a9e", "209d8d7e0ef2b5807cf90686b27cc8ab"},
                                             "02788352a28f478d81b4609d0be75eb2d7e6840f00edbd6f48de09ef4db9230e"}}) {
        WriteAll(m_path, c.bytes);
        vxfileio::helpers::CFile file;
        ASSERT_TRUE(file.OpenForReading(m_path));
        CFileDigest digest(file, m_path, file.Size());
        for (std::size_t i = 0; i < c.lengths.size(); ++i)
            EXPECT_EQ(HexOf(digest.HashNext(c.lengths[i])), c.xxh3[i]);
        EXPECT_EQ(digest.Sha256(), c.sha256);
    }
}

TEST_F(Seals, NameThePlaceOfEveryChangedByte) {
    SealFile(kTwo);
    EXPECT_EQ(Check(kTwo), EState::Intact);
    EXPECT_EQ(m_findings.Count(), 0U);
    std::size_t at = 0;
    std::size_t begin = 0;
    for (const auto& place : kPlaces) {
        for (; at < place.end; at += kStride) {
            FlipInPlace(m_path, at);
            ASSERT_EQ(Check(), EState::Changed) << at;
            FlipInPlace(m_path, at);
            ASSERT_EQ(m_findings.Count(), 1U) << at;
            ASSERT_EQ(m_findings.Kept().front().where, place.where) << at;
            ASSERT_EQ(m_findings.Kept().front().offset, static_cast<std::int64_t>(begin)) << at;
        }
        begin = place.end;
    }
}

TEST_F(Seals, DistinguishAFileThatGrewFromOneThatWasCutOrReplaced) {
    const std::string other = FileOf({{{11, 0, {9, 9}}}});
    struct CCase {
        std::string bytes;
        EState state;
        std::size_t findings;
        const char* where;
        const char* found;
    };
    SealFile(kTwo);
    for (const auto& c : std::vector<CCase>{
             {kTwo + "x", EState::Grown, 1, "file", "7025 bytes"},
             {Flipped(kTwo, 3952) + "x", EState::Changed, 2, "CompoundTest 1 > well 11, times 0 to 100 > samples",
              "XXH3"},
             {kTwo.substr(0, 7023), EState::Changed, 1, "CompoundTest 2 > well 12, times 500 to 500", "301 bytes"},
             {kTwo.substr(0, 6722), EState::Changed, 1, "CompoundTest 2 > well 12, times 500 to 500", "0 bytes"},
             {"", EState::Changed, 6, "file header", "0 bytes"},
             {other, EState::Changed, 6, "CompoundTest 1 > header", "XXH3"},
             {ReadAll(VXFILEIO_REFERENCE_DIR "/small_example.vxd"), EState::OtherFile, 1, "file",
              "4266 bytes, none of the samples"}}) {
        EXPECT_EQ(Check(c.bytes), c.state) << c.where;
        EXPECT_EQ(m_findings.Count(), c.findings) << c.where;
        EXPECT_EQ(m_findings.Kept().front().where, c.where);
        EXPECT_TRUE(m_findings.Kept().front().found.starts_with(c.found)) << m_findings.Kept().front().found;
        const std::string& meaning = m_findings.Kept().back().meaning;
        EXPECT_EQ(meaning.find("what was sealed is as it was") != std::string::npos, c.state == EState::Grown)
            << meaning;
    }
}

TEST_F(Seals, ProveNothingOnceOneOfTheirBytesChanged) {
    SealFile(kTwo);
    const std::string seal = ReadAll(m_seal);
    for (const std::string& file : {kTwo, Flipped(kTwo, 4260)}) {
        WriteAll(m_path, file);
        WriteAll(m_seal, seal);
        for (std::size_t i = 0; i < seal.size(); i += kStride) {
            FlipInPlace(m_seal, i);
            ASSERT_EQ(Check(), EState::Unusable) << i;
            ASSERT_EQ(m_findings.Count(), 1U) << i;
            FlipInPlace(m_seal, i);
        }
        for (std::size_t cut = 1; cut <= seal.size(); cut += kStride) {
            std::filesystem::resize_file(m_seal, seal.size() - cut);
            ASSERT_EQ(Check(), EState::Unusable) << cut;
        }
    }
}

TEST_F(Seals, WithACorrectCheckAreReadOnlyIfTheyAreConsistent) {
    CSealedPart whole;
    whole.length = 10;
    CXxh3 sum;
    sum.Add(std::as_bytes(std::span(std::string_view("0123456789"))));
    CSealedPart right = whole;
    right.sum = sum.Take();
    CSealedPart half = whole;
    half.length = 5;
    CSealedPart later = half;
    later.offset = 6;
    CSealedPart endless = whole;
    endless.length = INT64_MAX;
    CSealedPart segment = whole;
    segment.kind = CSealedPart::EKind::Segment;
    segment.task = "A \"B\"\\\n";
    segment.headerLength = 4;
    CSealedPart headless = segment;
    headless.headerLength = 11;
    for (const auto& [parts, state] :
         std::vector<std::pair<std::vector<CSealedPart>, EState>>{{{whole}, EState::Changed},
                                                                  {{segment}, EState::Changed},
                                                                  {{half}, EState::Unusable},
                                                                  {{half, later}, EState::Unusable},
                                                                  {{whole, whole}, EState::Unusable},
                                                                  {{endless}, EState::Unusable},
                                                                  {{headless}, EState::Unusable},
                                                                  {{}, EState::Unusable}}) {
        std::string seal;
        CSealWriter writer([&](std::string_view text) { seal += text; }, "run.vxd", "raw", 10);
        for (const auto& part : parts)
            writer.Add(part);
        writer.Finish(std::string(64, '0'));
        EXPECT_TRUE(json::accept(seal));
        WriteAll(m_seal, seal);
        EXPECT_EQ(Check("0123456789"), state) << seal;
    }
}

TEST_F(Seals, WithACorrectCheckAreReadOnlyInTheirExactLayout) {
    SealFile(kTwo);
    const std::string seal = ReadAll(m_seal);
    const std::string lines = seal.substr(0, seal.find("\"check\""));
    std::string many;
    for (int i = 0; i < 40'000; ++i)
        many += "\"extra" + std::to_string(i) + "\": 1,\n";
    ASSERT_EQ(WithCheck(lines), seal);
    for (const auto& [old, other] : std::vector<std::pair<std::string, std::string>>{
             {"\"size\": 7024", "\"size\": -5"},
             {"\"size\": 7024", "\"size\": 18446744073709551615"},
             {"\"size\": 7024", "\"size\": 07024"},
             {"\"size\": 7024,\n", "\"size\": 7024,\n\"size\": 7024,\n"},
             {"\"size\": 7024,\n", "\"size\": 1,\n\"size\": 7024,\n"},
             {"\"file\": \"run.vxd\",\n", ""},
             {"\"file\": \"run.vxd\",\n", "\"file\": \"run.vxd\", "},
             {"\"run.vxd\"", std::string(30'000, '[') + std::string(30'000, ']')},
             {"\"run.vxd\"", "\"run\\u002evxd\""},
             {"\"run.vxd\"", '"' + std::string(5'000, 'x') + '"'},
             {"\"kind\": \"raw\"", "\"kind\": 7"},
             {"\"parts\": [\n", many + "\"parts\": [\n"},
             {"\"parts\": [\n", "\n\"parts\": [\n"},
             {"\"parts\": [\n", "\"parts\": [\n],\n\"parts\": [\n"},
             {"\"offset\":0", "\"offset\": 0"},
             {"\"offset\":0", "\"offset\":-0"},
             {"\"},\n", "\"}\n"},
             {"\"}\n]", "\"},\n]"},
             {"\"samplesXxh3\":\"505febe", "\"samplesXxh3\":\"505FEBE"},
             {"],\n", "],\n\"extra\": 1,\n"},
             {"{\n\"seal\"", "{\n" + std::string(1'000'000, '\n') + "\"seal\""},
             {"\"seal\": 1", "\"seal\": 0"}}) {
        std::string changed = lines;
        ASSERT_NE(changed.find(old), std::string::npos) << old;
        WriteAll(m_seal, WithCheck(changed.replace(changed.find(old), old.size(), other)));
        EXPECT_EQ(Check(), EState::Unusable) << other.substr(0, 80);
    }
    WriteAll(m_seal, seal + '\n');
    EXPECT_EQ(Check(), EState::Unusable);
    WriteAll(m_seal, seal);
    EXPECT_EQ(Check(), EState::Intact);
}

#if defined(__linux__)  // times of files that others have open
TEST_F(Seals, ArentWrittenForAFileThatChangesMeanwhile) {
    WriteAll(m_path, kTwo);
    std::filesystem::resize_file(m_path, std::size_t{128} << 20);
    std::atomic<bool> isSealed = false;
    std::thread writer([&] {
        std::fstream file(m_path, std::ios::in | std::ios::out | std::ios::binary);
        while (!isSealed)
            file.seekp(7024).put('x').flush();
    });
    m_run = RunTool({"seal", m_path});
    isSealed = true;
    writer.join();
    EXPECT_EQ(m_run.status, 2);
    EXPECT_NE(m_run.err.find("is being written"), std::string::npos) << m_run.err;
    EXPECT_FALSE(std::filesystem::exists(m_seal));
}
#endif

TEST_F(Seals, AreMadeForEachKindOfFileAndReportUnfinishedOnes) {
    const std::string folder = VXFILEIO_REFERENCE_DIR "/";
    for (const auto& [name, status] : std::vector<std::pair<std::string, int>>{{"small_example.vxd", 0},
                                                                               {"unfinished.vxd", 1},
                                                                               {"cut_samples.vxd", 0},
                                                                               {"circle_of_segments.vxd", 1},
                                                                               {"circle_of_recordings.vxd", 1},
                                                                               {"xml/settings.vxs", 0},
                                                                               {"xml/results.vxr", 0},
                                                                               {"workbooks/big.xls", 0},
                                                                               {"small_example.txt", 2}}) {
        const std::string bytes = ReadAll(folder + name);
        SealFile(bytes);
        EXPECT_EQ(m_run.status, status) << name << m_run.err;
        if (status == 2) continue;
        EXPECT_EQ(Check(bytes), EState::Intact) << name;
        EXPECT_EQ(Check(Flipped(bytes, bytes.size() - 1)), EState::Changed) << name;
    }
}

TEST_F(Seals, KeepNamesWithCharactersThatJsonEscapes) {
    for (const char* const task : {"a\\", "\"", "\\\"\\\\", "\xff\t"}) {
        const std::string bytes = WithCell(kTwo, "TaskName", task);
        SealFile(bytes);
        EXPECT_EQ(Check(bytes), EState::Intact) << task;
        EXPECT_EQ(Check(Flipped(bytes, 3952)), EState::Changed) << task;
        EXPECT_EQ(m_findings.Count(), 1U) << task;
    }
}

TEST_F(Seals, OfAnyLengthAreReadWhereverTheirLinesEnd) {
    constexpr std::size_t kBlock = std::size_t{256} << 10;  // what is read at once
    const std::string bytes(4000, 'x');
    const auto sealWith = [&](std::size_t nameSize) {
        std::string seal;
        CSealWriter writer([&](std::string_view text) { seal += text; }, std::string(nameSize, 'n'), "raw", 4000);
        CXxh3 sum;
        sum.Add(std::as_bytes(std::span("x", 1)));
        CSealedPart part;
        part.length = 1;
        part.sum = sum.Take();
        for (; part.offset < 4000; ++part.offset)
            writer.Add(part);
        writer.Finish(std::string(64, '0'));
        return seal;
    };
    const std::size_t room = kBlock - sealWith(0).rfind('\n', kBlock - 2);
    for (const std::size_t nameSize :
         {room - 1, room, room + 1}) {  // a line ends before, at and after the end of a block
        WriteAll(m_seal, sealWith(nameSize));
        EXPECT_EQ(Check(bytes), EState::Changed) << nameSize;
        EXPECT_EQ(m_findings.Count(), 1U) << "only the SHA-256 differs";
        EXPECT_EQ(Check(bytes + 'x'), EState::Changed) << "the same where the file grew";
    }
}

TEST_F(Seals, ProveWhatRecoverSaves) {
    SealFile(kTwo);
    const json all = RecoverJson();
    EXPECT_EQ(m_run.status, 0);
    EXPECT_EQ(all["seal"]["proven"], 3);
    EXPECT_EQ(all["recordings"][0]["wells"][1]["proven"], 1);
    struct CCase {
        std::string bytes;
        int proven;
        int segments;
        std::vector<std::string> remarks;
    };
    const std::string header = std::string(2460, 'x');
    for (const auto& c :
         std::vector<CCase>{{Flipped(kTwo, 3952), 2, 3, {"changed CompoundTest 1 11 0 3650 null"}},
                            {std::string(kTwo).replace(6722, 300, std::string(300, 'x')),
                             2,
                             2,
                             {"missing CompoundTest 2 12 500 6722 null"}},
                            {WithCell(kTwo, "FPosNextSegmentHdr", "9"), 3, 3, {}},
                            {std::string(kTwo).insert(3650, "123"), 3, 3, {}},
                            {FileOf({{{11, 0, {1, 2}}, {12, 0, {3, 4, 5, 6}}}, {{12, 500, {7}}, {11, 600, {8}}}}),
                             3,
                             4,
                             {"unsealed CompoundTest 2 11 600 7024 null"}},
                            {FileOf({{{11, 0, {1, 2}}, {11, 0, {1, 2}}, {12, 0, {3, 4, 5, 6}}}, {{12, 500, {7}}}}),
                             3,
                             4,
                             {"unsealed CompoundTest 1 11 0 3954 null"}},
                            {std::string(kTwo).replace(4262, 2460, header),
                             2,
                             3,
                             {"moved Recovered 2 12 500 6722 \"CompoundTest 2\""}}}) {
        WriteAll(m_path, c.bytes);
        const json seal = RecoverJson()["seal"];
        EXPECT_EQ(seal["proven"], c.proven) << seal;
        EXPECT_EQ(seal["segments"], c.segments) << seal;
        std::vector<std::string> remarks;
        for (const json& r : seal["remarks"])
            remarks.push_back(r["kind"].get<std::string>() + ' ' + r["recording"].get<std::string>() + ' ' +
                              r["well"].dump() + ' ' + r["from"].dump() + ' ' + r["offset"].dump() + ' ' +
                              r["sealedAs"].dump());
        EXPECT_EQ(remarks, c.remarks);
        EXPECT_EQ(m_run.status == 0, c.remarks.empty() && c.bytes == kTwo);
    }
}
