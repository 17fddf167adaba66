// Writes the workbooks of a whole plate with minimal effort: stores their cells directly into one buffer, and makes one
// write per workbook. usage: export_limit write FOLDER/NAME.xls AVERAGES
#include <cstdlib>
#include <memory>

#include "../Measure.h"
#include "../PlateTree.h"
#include "StraightCells.h"
#include "StraightCompound.h"

namespace {

constexpr U32 kStride = kExportDoses + 2;
constexpr double kMicrovolts = 1'000'000.0;

std::vector<std::string> DosesBehind(std::vector<std::string> texts) {
    for (int dose = 1; dose <= kExportDoses; ++dose)
        texts.push_back(std::to_string(dose) + "nM");
    return texts;
}

bool Finish(const std::string& path, char* stream) {
    const auto size = U32(g_at - stream);
    std::memset(g_at, 0, 512);
    return WriteCompound(path.c_str(), stream, size);
}

bool PutResults(const CTree& plate, const std::string& path, char* stream) {
    std::vector<std::string> texts = DosesBehind({"QT-Interval", "Na-Amplitude", "Na-Slope"});
    for (const auto& [id, well] : plate.recordings[0].wells)
        texts.push_back(well.label);
    g_at = stream;
    const auto sheets = PutGlobals({"Results"}, 3 * (1 + kExportDoses + kWells), texts);
    constexpr int kTypes[] = {3, 1, 2};
    PutSheet(stream, sheets[0], true, 2, 4 + kWells, 3 * kStride - 1, [&](U32 row) {
        for (U32 block = 0; block < 3; ++block) {
            const U32 left = block * kStride;
            if (row == 2) PutLabel(row, left, block);
            for (U32 dose = 0; row == 3 && dose < kExportDoses; ++dose)
                PutLabel(row, left + 1 + dose, 3 + dose);
            if (row < 4) continue;
            const double factor = block == 1 ? kMicrovolts : 1.0;
            PutLabel(row, left, 3 + kExportDoses + row - 4);
            PutNumbers(row, left + 1, left + 1 + kExportDoses, [&](U32 column) {
                const auto& wells = plate.recordings[column - left - 1].wells;
                return wells.at(kFirstWell + int(row) - 4).responses.at(kTypes[block]) * factor;
            });
        }
    });
    return Finish(path, stream);
}

bool PutWell(const CTree& plate, int id, const std::string& path, char* stream) {
    const CTree::CWell* wells[kExportDoses];
    for (std::size_t dose = 0; dose < kExportDoses; ++dose)
        wells[dose] = &plate.recordings[dose].wells.at(id);
    std::vector<std::string> texts = DosesBehind({});
    texts.emplace_back("Time");
    g_at = stream;
    const auto sheets = PutGlobals({"HB Time Stamps", "Averages"}, 2 * kExportDoses + 1, texts);
    PutSheet(stream, sheets[0], true, 0, U32(1 + wells[0]->times.size()), kExportDoses, [&](U32 row) {
        for (U32 dose = 0; row == 0 && dose < kExportDoses; ++dose)
            PutLabel(row, dose, dose);
        if (row > 0) PutNumbers(row, 0, kExportDoses, [&](U32 dose) { return double(wells[dose]->times[row - 1]); });
    });
    PutSheet(stream, sheets[1], false, 0, U32(1 + wells[0]->average.size()), 1 + kExportDoses, [&](U32 row) {
        if (row == 0) PutLabel(row, 0, kExportDoses);
        for (U32 dose = 0; row == 0 && dose < kExportDoses; ++dose)
            PutLabel(row, dose + 1, dose);
        if (row == 0) return;
        PutNumbers(row, 0, 1 + kExportDoses, [&](U32 column) {
            if (column == 0) return (row - 1) * kExportTick - kExportPre;
            return wells[column - 1]->average[row - 1] * kMicrovolts;
        });
    });
    return Finish(path, stream);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const std::string path = argv[2];
    const std::string title = path.substr(0, path.rfind('.'));
    const int samples = std::atoi(argv[3]);
    const CTree plate = MakePlate(samples);
    bool good = true;
    Measure([&] {
        const auto stream = std::make_unique_for_overwrite<char[]>(200'000 + 200 * std::size_t(samples));
        good = PutResults(plate, path, stream.get());
        for (const auto& [id, well] : plate.recordings[0].wells)
            good = good && PutWell(plate, id, title + "-" + well.label + ".xls", stream.get());
    });
    return good ? 0 : 1;
}
