// Writes and reads raw recordings in an HDF5 file with a chunked dataset per well and one segment per chunk, through
// the calls that don't convert samples. usage:
//   raw_hdf5 write|write-later|read|one|every FILE ROUNDS SAMPLES    with write-later HDF5 decides when to write
//   raw_hdf5 bulk|bulk-every FILE ROUNDS SAMPLES                     into one array per well, all or each in turn
//   raw_hdf5 headers|open FILE RECORDINGS                            recordings as groups with attributes
#include <hdf5.h>

#include <algorithm>
#include <string>

#include "../Measure.h"
#include "../RawData.h"

namespace {

hid_t CreateFile(const char* path) {
    const hid_t access = H5Pcreate(H5P_FILE_ACCESS);
    H5Pset_libver_bounds(access, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST);
    return H5Fcreate(path, H5F_ACC_TRUNC, H5P_DEFAULT, access);
}

std::string NameOf(int number) { return std::to_string(number); }

hid_t CreateDataset(hid_t file, int well, const CShape& shape) {
    const hsize_t none = 0, most = H5S_UNLIMITED, chunk = static_cast<hsize_t>(shape.samples);
    const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_chunk(creation, 1, &chunk);
    H5Pset_fill_time(creation, H5D_FILL_TIME_NEVER);
    return H5Dcreate2(file, NameOf(well).c_str(), H5T_NATIVE_UINT16, H5Screate_simple(1, &none, &most), H5P_DEFAULT,
                      creation, H5P_DEFAULT);
}

bool Append(hid_t well, const CShape& shape, long round, const std::vector<std::uint16_t>& samples) {
    const auto from = static_cast<hsize_t>(round * shape.samples), to = from + samples.size();
    return H5Dset_extent(well, &to) >= 0 &&
           H5Dwrite_chunk(well, H5P_DEFAULT, 0, &from, samples.size() * 2, samples.data()) >= 0;
}

bool Write(const char* path, const CShape& shape, bool later) {
    const hid_t file = CreateFile(path);
    std::vector<hid_t> wells;
    for (int well = 0; well < kWells; ++well)
        wells.push_back(CreateDataset(file, well, shape));
    std::vector<std::uint16_t> samples = MakeSamples(shape);
    bool good = true;
    Measure([&] {
        for (long round = 0; round < shape.rounds; ++round) {
            for (int well = 0; well < kWells; ++well) {
                TurnInto(samples.data(), round, well);
                good = good && Append(wells[static_cast<std::size_t>(well)], shape, round, samples);
                if (!later) good = good && H5Fflush(file, H5F_SCOPE_LOCAL) >= 0;
            }
        }
        if (later) H5Fflush(file, H5F_SCOPE_LOCAL);
    });
    return good && H5close() >= 0;
}

bool ReadSegment(hid_t dataset, const CShape& shape, long round, int well, std::vector<std::uint16_t>& samples) {
    const auto from = static_cast<hsize_t>(round * shape.samples);
    std::uint32_t filters = 0;
    return H5Dread_chunk(dataset, H5P_DEFAULT, &from, &filters, samples.data()) >= 0 &&
           AreSamples(samples.data(), shape, round, well);
}

/// Reads `count` wells, starting with `first`, round robin.
bool ReadRounds(const std::vector<hid_t>& wells, const CShape& shape, int first, int count) {
    std::vector<std::uint16_t> samples(static_cast<std::size_t>(shape.samples));
    for (long round = 0; round < shape.rounds; ++round) {
        for (int well = first; well < first + count; ++well)
            if (!ReadSegment(wells[static_cast<std::size_t>(well)], shape, round, well, samples)) return false;
    }
    return true;
}

std::vector<hid_t> OpenWells(const char* path) {
    const hid_t file = H5Fopen(path, H5F_ACC_RDONLY, H5P_DEFAULT);
    std::vector<hid_t> wells;
    for (int well = 0; well < kWells; ++well)
        wells.push_back(H5Dopen2(file, NameOf(well).c_str(), H5P_DEFAULT));
    return wells;
}

/// Reads all samples of each well into its own array, all wells or each in turn.
bool ReadBulk(const char* path, const CShape& shape, bool isEvery) {
    CArrays arrays(shape, isEvery ? 1 : kWells);
    const std::vector<hid_t> wells = OpenWells(path);
    bool good = true;
    Measure([&] {
        for (int well = 0; good && well < kWells; ++well) {
            const int place = isEvery ? 0 : well;
            for (long round = 0; good && round < shape.rounds; ++round) {
                const auto from = static_cast<hsize_t>(round * shape.samples);
                std::uint32_t filters = 0;
                good = H5Dread_chunk(wells[static_cast<std::size_t>(well)], H5P_DEFAULT, &from, &filters,
                                     arrays.Segment(round, place)) >= 0;
            }
            good = good && arrays.IsWell(shape, place, well);
        }
    });
    return good;
}

bool Read(const char* path, const CShape& shape, const std::string& mode) {
    const std::vector<hid_t> wells = OpenWells(path);
    bool good = true;
    Measure([&] {
        if (mode == "read") good = ReadRounds(wells, shape, 0, kWells);
        if (mode == "one") good = ReadRounds(wells, shape, kOneWell, 1);
        for (int well = 0; mode == "every" && good && well < kWells; ++well)
            good = ReadRounds(wells, shape, well, 1);
    });
    return good;
}

/// The header of a recording, as stored in memory.
struct CRecording {
    char task[50] = "Series";
    std::int64_t number = 0, dose = 0, start = 0, time = 0;
    std::int32_t ids[kWells] = {}, zeros[kWells] = {};
    std::int64_t ticks[kWells] = {};
    double units[kWells] = {};

    /// Calls `visit(name, type, count, memory)` for each attribute.
    void ForEach(auto visit) {
        visit("TaskName", H5T_NATIVE_CHAR, sizeof task, task);
        visit("Recording", H5T_NATIVE_INT64, 1, &number);
        visit("Dose", H5T_NATIVE_INT64, 1, &dose);
        visit("RecordingStartTime", H5T_NATIVE_INT64, 1, &start);
        visit("RecordingTime", H5T_NATIVE_INT64, 1, &time);
        visit("WellIDs", H5T_NATIVE_INT32, kWells, ids);
        visit("Ticks", H5T_NATIVE_INT64, kWells, ticks);
        visit("UnitsPerADs", H5T_NATIVE_DOUBLE, kWells, units);
        visit("ADZeros", H5T_NATIVE_INT32, kWells, zeros);
    }
};

CRecording MakeRecording(int number) {
    CRecording recording;
    recording.number = number;
    recording.dose = 1000L * number;
    for (int well = 0; well < kWells; ++well)
        recording.ids[well] = kFirstWell + well;
    std::fill_n(recording.zeros, kWells, kADZero);
    std::fill_n(recording.ticks, kWells, kTick);
    std::fill_n(recording.units, kWells, kUnitsPerAD);
    return recording;
}

void WriteHeaders(hid_t file, int recordings) {
    for (int number = 0; number < recordings; ++number) {
        const hid_t group = H5Gcreate2(file, NameOf(number).c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
        MakeRecording(number).ForEach([&](const char* name, hid_t type, hsize_t count, void* memory) {
            const hid_t space = H5Screate_simple(1, &count, nullptr);
            const hid_t attribute = H5Acreate2(group, name, type, space, H5P_DEFAULT, H5P_DEFAULT);
            H5Awrite(attribute, type, memory);
            H5Aclose(attribute);
            H5Sclose(space);
        });
        H5Gclose(group);
    }
    H5Fclose(file);
}

CRecording ReadHeader(hid_t file, int number) {
    CRecording recording;
    const hid_t group = H5Gopen2(file, NameOf(number).c_str(), H5P_DEFAULT);
    recording.ForEach([&](const char* name, hid_t type, hsize_t, void* memory) {
        const hid_t attribute = H5Aopen(group, name, H5P_DEFAULT);
        H5Aread(attribute, type, memory);
        H5Aclose(attribute);
    });
    H5Gclose(group);
    return recording;
}

bool Open(const char* path, int recordings) {
    std::vector<CRecording> read;
    Measure([&] {
        const hid_t file = H5Fopen(path, H5F_ACC_RDONLY, H5P_DEFAULT);
        for (int number = 0; number < recordings; ++number)
            read.push_back(ReadHeader(file, number));
    });
    for (int number = 0; number < recordings; ++number) {
        const CRecording made = MakeRecording(number);
        const CRecording& got = read[static_cast<std::size_t>(number)];
        if (got.dose != made.dose || !std::equal(made.ids, made.ids + kWells, got.ids)) return false;
        if (!std::equal(made.units, made.units + kWells, got.units)) return false;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) return 2;
    const std::string mode = argv[1];
    if (mode == "open") return Open(argv[2], std::atoi(argv[3])) ? 0 : 1;
    if (mode == "headers") {
        Measure([&] { WriteHeaders(CreateFile(argv[2]), std::atoi(argv[3])); });
        return 0;
    }
    const CShape shape(argv);
    if (mode.starts_with("bulk")) return ReadBulk(argv[2], shape, mode == "bulk-every") ? 0 : 1;
    return (mode.starts_with("write") ? Write(argv[2], shape, mode == "write-later") : Read(argv[2], shape, mode)) ? 0
                                                                                                                   : 1;
}
