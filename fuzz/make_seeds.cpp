// Writes the seed corpus and the dictionary: the reference files of the tests, property sets that these don't have, and
// lists of calls.
// usage: make_seeds FOLDER REFERENCE_FOLDER
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <set>
#include <string>

#include "fuzz/Saved.h"
#include "vxfileio/rawdata/RawDataFormat.h"

namespace {

namespace fs = std::filesystem;

void WriteSeed(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

CPropRecordPlate MakePlate() {
    CPropRecordPlate plate;
    plate.Data.Layout = enPlateLayout::L8x12;
    plate.Data.Series = {0, 1000, 10'000'000};
    plate.Data.Compounds.push_back(std::make_unique<PlateCompound>(PlateCompound{.Label = "seed", .Wells = {11, 12}}));
    plate.Data.AddWell(11, 0, 0, 64, "A1");
    plate.Data.AddWell(12, 0, 1, 68, "A2");
    return plate;
}

/// Copies each reference file to the targets that read its kind; settings also to each property set.
/// Leaves out large files, since the fuzzer makes inputs as large as the largest seed.
void CopyReferences(const fs::path& folder, const fs::path& references) {
    for (const auto& entry : fs::recursive_directory_iterator(references)) {
        const fs::path name = entry.path().filename();
        const std::string kind = name.extension().string();
        if (kind != ".vxd" && kind != ".vxs" && kind != ".vxr" && kind != ".xls") continue;
        if (entry.file_size() > 64 * 1024) continue;
        const std::string bytes = ReadBytes(entry.path());
        WriteSeed(folder / "vxfile" / name, bytes);
        for (const char* target : {"access", "raw", "vxfile_recover"})
            if (kind == ".vxd") WriteSeed(folder / target / name, bytes);
        if (kind == ".vxs") WriteSeed(folder / "settings" / name, bytes);
        if (kind == ".vxr") WriteSeed(folder / "results" / name, bytes);
        for (char set = 0; kind == ".vxs" && set < 10; ++set)
            WriteSeed(folder / "properties" / (name.string() + std::to_string(set)), set + ('\x40' + bytes));
    }
}

/// Writes random lists of calls. The generator has a fixed seed.
void WriteCalls(const fs::path& folder, const std::string& target) {
    std::mt19937 random(1);
    for (int seed = 0; seed < 64; ++seed) {
        std::string calls(random() % 400, '\0');
        for (char& byte : calls)
            byte = static_cast<char>(random());
        WriteSeed(folder / target / ("calls" + std::to_string(seed)), calls);
    }
}

void AddCells(const auto& cells, std::set<std::string>& words) {
    for (const auto& cell : cells)
        words.insert(std::string(cell.key) + "=");
}

/// Adds the start tags of a document to the dictionary.
void AddTags(const std::string& document, std::set<std::string>& words) {
    for (std::size_t at = document.find('<'); at != std::string::npos; at = document.find('<', at + 1)) {
        const std::size_t end = document.find('>', at);
        if (end == std::string::npos) return;
        words.insert(document.substr(at, end - at + 1));
    }
}

void WriteDictionary(const fs::path& path, const std::set<std::string>& words) {
    std::ofstream file(path);
    for (const std::string& word : words) {
        file << '"';
        for (const char c : word)
            file << (c == '"' || c == '\\' ? "\\" : "") << c;
        file << "\"\n";
    }
}

void MakeSeeds(const fs::path& folder, const fs::path& references) {
    CopyReferences(folder, references);
    CPropRecordPlate plateSet = MakePlate();
    CPropViability viabilitySet;
    const std::string scratch = CFuzzFolder::Path("scratch");  // the library never stores these two in a file
    const std::string plate = Saved(scratch, plateSet, gd_xml_stream::kBlockSize);
    const std::string viability = Saved(scratch, viabilitySet, gd_xml_stream::kBlockSize);
    WriteSeed(folder / "properties/plate", std::string("\0\x10", 2) + plate);
    WriteSeed(folder / "properties/viability", "\x08\x10" + viability);
    for (const char* target : {"c_calls", "facades", "strict", "workbook"})
        WriteCalls(folder, target);

    std::set<std::string> words = {"<![CDATA[", "]]>",      "<!--", "-->", "<?xml ",       "&#",
                                   "&lt;",      " Size=\"", "nan;", "=-1", "OVL Vexaprobe"};
    AddCells(vxfileio::rawdata::kFileCells, words);
    AddCells(vxfileio::rawdata::kRecordingCells, words);
    AddCells(vxfileio::rawdata::kSegmentCells, words);
    for (const std::string& document :
         {ReadBytes(references / "xml/settings.vxs"), ReadBytes(references / "xml/results.vxr"), plate, viability})
        AddTags(document, words);
    WriteDictionary(folder / "words.dict", words);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: make_seeds FOLDER REFERENCE_FOLDER\n";
        return 2;
    }
    MakeSeeds(argv[1], argv[2]);
    return 0;
}
