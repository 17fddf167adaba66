#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tests/tools/Stride.h"
#include "tests/tools/ToolRun.h"

namespace {

const std::string kReference = VXFILEIO_REFERENCE_DIR "/";

/// Runs the program on a file with given content, and keeps its output.
class VxfileOnHostileFiles : public testing::Test {
 protected:
    int Run(const std::string& bytes, std::vector<std::string> command) {
        WriteAll(m_path, bytes);
        command.push_back(m_path);
        const CToolRun run = RunTool(command);
        m_out = run.out;
        return run.status;
    }

    int Verify(const std::string& bytes) {
        const int status = Run(bytes, {"verify", "--quiet"});
        EXPECT_EQ(m_out, "");
        return status;
    }

    /// Runs all commands that read one file. Each must end with a status and a document.
    void ExpectAnswers(const std::string& bytes, const std::string& original, const std::string& what) {
        for (const std::vector<std::string>& command :
             {std::vector<std::string>{"verify", "--json"}, {"info", "--json"}, {"diff", "--json", original}}) {
            const int status = Run(bytes, command);
            EXPECT_TRUE(status >= 0 && status <= 2) << what << ": " << command.front() << " ends with " << status;
            EXPECT_TRUE(nlohmann::json::accept(m_out)) << what << ": " << command.front() << " prints " << m_out;
        }
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("file");
    std::string m_out;
};

constexpr std::array kSoundFiles = {"small_example.vxd", "version_1.vxd",       "xml/settings.vxs",
                                    "xml/results.vxr",   "workbooks/small.xls", "workbooks/empty.xls"};

/// Changes a byte: a letter to another letter, a digit to another digit.
char Flipped(char c) { return static_cast<char>(c ^ 1); }

/// Returns the offsets of bytes that aren't values of a raw data file: keys, `=`, padding and line ends. The byte right
/// after a value isn't included, since the value could be longer.
std::vector<std::size_t> FixedBytesOfRawData(const std::string& bytes) {
    std::vector<std::size_t> fixed;
    for (std::size_t cell = 0, end = bytes.find("\r\n"); end != std::string::npos;
         cell = end + 2, end = bytes.find("\r\n", cell)) {
        const std::size_t text = std::min(bytes.find('\0', cell), end);
        const std::size_t value = std::min(bytes.find('=', cell), text);
        for (std::size_t i = cell; i < end + 2; ++i) {
            const bool isMarkEnd = cell == 0 && i == text;  // the mark could be longer
            if ((i <= value || i > text) && !isMarkEnd) fixed.push_back(i);
        }
    }
    return fixed;
}

}  // namespace

TEST_F(VxfileOnHostileFiles, EndsRegularlyForEveryKindOfDamage) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kReference)) {
        const std::string path = entry.path().string();
        constexpr std::array<std::string_view, 4> kEndings = {".vxd", ".vxs", ".vxr", ".xls"};
        if (std::ranges::find(kEndings, entry.path().extension().string()) == kEndings.end()) continue;
        const std::string bytes = ReadAll(path);
        const std::size_t step = bytes.size() / 60 + 1;
        for (std::size_t at = 0; at < bytes.size(); at += step * kStride) {
            ExpectAnswers(bytes.substr(0, at), path, path + " cut at " + std::to_string(at));
            std::string flipped = bytes;
            flipped[at] = Flipped(flipped[at]);
            ExpectAnswers(flipped, path, path + " changed at " + std::to_string(at));
        }
    }
}

TEST_F(VxfileOnHostileFiles, FindsEveryCutOfASoundFile) {
    for (const std::string name : kSoundFiles) {
        const std::string bytes = ReadAll(kReference + name);
        ASSERT_EQ(Verify(bytes), 0) << name;
        for (std::size_t size = 0; size < bytes.size(); size += 7 * kStride)
            ASSERT_NE(Verify(bytes.substr(0, size)), 0) << name << " cut at " << size;
    }
}

TEST_F(VxfileOnHostileFiles, FindsEveryChangeOfAFixedByteOfRawData) {
    const std::string bytes = ReadAll(kReference + "small_example.vxd");
    constexpr std::size_t kHeaders = 3950;  // the samples follow
    const std::vector<std::size_t> fixed = FixedBytesOfRawData(bytes.substr(0, kHeaders));
    for (std::size_t i = 0; i < fixed.size(); i += kStride) {
        std::string changed = bytes;
        changed[fixed[i]] = Flipped(changed[fixed[i]]);
        ASSERT_NE(Verify(changed), 0) << "changed at " << fixed[i];
    }
    for (const std::string_view cell :
         {"FPosFirstRecordingHdr=", "FPosRecordingData=", "FPosNextRecordingHdr=", "FPosNextSegmentHdr=",
          "NumberOfWells=", "NumberOfAuxCh=", "CheckSum=", "\nType=", "\nID=", "Size="}) {
        std::string changed = bytes;
        const std::size_t value = changed.find(cell) + cell.size();
        changed[value] = Flipped(changed[value]);
        EXPECT_NE(Verify(changed), 0) << cell;
    }
}

TEST_F(VxfileOnHostileFiles, FindsEveryChangeOfATag) {
    for (const std::string name : {"xml/settings.vxs", "xml/results.vxr"}) {
        const std::string bytes = ReadAll(kReference + name);
        bool inTag = false;
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            inTag = bytes[at] == '<' || (inTag && bytes[at - 1] != '>');
            if (!inTag || at % kStride != 0) continue;
            std::string changed = bytes;
            changed[at] = Flipped(changed[at]);
            ASSERT_NE(Verify(changed), 0) << name << " changed at " << at;
        }
    }
}

TEST_F(VxfileOnHostileFiles, FindsEveryChangeOfACompoundFile) {
    const std::string bytes = ReadAll(kReference + "workbooks/small.xls");
    constexpr std::size_t kTables = 3 * 512;  // header, FAT, directory
    for (std::size_t at = 0; at < kTables; at += kStride) {
        std::string changed = bytes;
        changed[at] = Flipped(changed[at]);
        ASSERT_NE(Verify(changed), 0) << "changed at " << at;
    }
}
