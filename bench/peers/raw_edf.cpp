// Writes and reads raw recordings in an EDF+ file with EDFlib: 54 signals, one segment per well in each data record.
// usage: raw_edf write|read|one|every FILE ROUNDS SAMPLES
#include <edflib.h>

#include <string>

#include "../Measure.h"
#include "../RawData.h"

namespace {

int CreateFile(const char* path, const CShape& shape) {
    const int file = edfopen_file_writeonly(path, EDFLIB_FILETYPE_EDFPLUS, kWells);
    for (int well = 0; well < kWells; ++well) {
        edf_set_samplefrequency(file, well, static_cast<int>(shape.samples));
        edf_set_digital_minimum(file, well, -32768);
        edf_set_digital_maximum(file, well, 32767);
        edf_set_physical_minimum(file, well, -1);
        edf_set_physical_maximum(file, well, 1);
    }
    return file;
}

bool Write(const char* path, const CShape& shape) {
    const int file = CreateFile(path, shape);
    std::vector<std::uint16_t> samples = MakeSamples(shape);
    bool good = true;
    Measure([&] {
        for (long round = 0; round < shape.rounds; ++round) {
            for (int well = 0; well < kWells; ++well) {
                TurnInto(samples.data(), round, well);
                good = good && edfwrite_digital_short_samples(file, reinterpret_cast<short*>(samples.data())) == 0;
            }
        }
    });
    return good && edfclose_file(file) == 0;
}

/// Reads `count` wells, starting with `first`, round robin. EDFlib returns samples as 32-bit numbers.
bool ReadRounds(int file, const CShape& shape, int first, int count) {
    std::vector<int> samples(static_cast<std::size_t>(shape.samples));
    const int size = static_cast<int>(shape.samples);
    for (int well = first; well < first + count; ++well)
        edfrewind(file, well);
    for (long round = 0; round < shape.rounds; ++round) {
        for (int well = first; well < first + count; ++well) {
            if (edfread_digital_samples(file, well, size, samples.data()) != size) return false;
            if (!AreSamples(samples.data(), shape, round, well)) return false;
        }
    }
    return true;
}

bool Read(const char* path, const CShape& shape, const std::string& mode) {
    edf_hdr_struct header = {};
    if (edfopen_file_readonly(path, &header, EDFLIB_DO_NOT_READ_ANNOTATIONS) != 0) return false;
    bool good = header.datarecords_in_file == shape.rounds && header.edfsignals == kWells;
    Measure([&] {
        if (mode == "read") good = good && ReadRounds(header.handle, shape, 0, kWells);
        if (mode == "one") good = good && ReadRounds(header.handle, shape, kOneWell, 1);
        for (int well = 0; mode == "every" && good && well < kWells; ++well)
            good = ReadRounds(header.handle, shape, well, 1);
    });
    return good;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const std::string mode = argv[1];
    const CShape shape(argv);
    return (mode == "write" ? Write(argv[2], shape) : Read(argv[2], shape, mode)) ? 0 : 1;
}
