// Writes and reads raw recordings through the C interface. usage:
//   raw_c write|read FILE ROUNDS SAMPLES              all wells round robin, one call per segment
//   raw_c bulk|bulk-read FILE ROUNDS SAMPLES          all wells into one array per well
#include <capi/vxfileio.h>

#include <array>
#include <stdexcept>
#include <string>

#include "Measure.h"
#include "RawData.h"

namespace {

/// Throws if a call failed, with what its handle says.
void Check(int code, const void* handle) {
    if (code == VX_OK) return;
    std::array<char, 1000> text{};
    auto size = static_cast<std::int64_t>(text.size());
    vx_last_error(handle, text.data(), &size);
    throw std::runtime_error(text.data());
}

template <class Struct>
Struct Made() {
    Struct made{};
    made.size = sizeof made;
    return made;
}

void Write(const char* path, const CShape& shape) {
    vx_writer* writer = nullptr;
    const int created = vx_writer_create(&writer, path, VX_CREATE_REPLACE);
    Check(created, writer);
    auto file = Made<vx_file_header>();
    file.compound_id = -1;
    Check(vx_writer_write_file_header(writer, &file), writer);

    std::array<std::int32_t, kWells> wells{}, zeros{};
    std::array<double, kWells> units{};
    std::array<std::int64_t, kWells> intervals{};
    for (int well = 0; well < kWells; ++well)
        wells[static_cast<std::size_t>(well)] = kFirstWell + well;
    zeros.fill(kADZero);
    units.fill(kUnitsPerAD);
    intervals.fill(kTick);
    auto recording = Made<vx_recording_header>();
    recording.task = "Series";
    recording.number = 1;
    recording.dose = 1000;
    Check(vx_writer_begin_recording(writer, &recording, wells.data(), zeros.data(), units.data(), intervals.data(),
                                    kWells),
          writer);

    std::vector<std::uint16_t> samples = MakeSamples(shape);
    Measure([&] {
        for (long round = 0; round < shape.rounds; ++round) {
            for (int well = 0; well < kWells; ++well) {
                TurnInto(samples.data(), round, well);
                Check(vx_writer_write(writer, kFirstWell + well, shape.TimeFrom(round), shape.TimeTo(round), kTick,
                                      samples.data(), shape.samples),
                      writer);
            }
        }
    });
    vx_writer_finish(writer);  // reports a header without texts, which readers don't mind
    vx_close(writer);
}

/// Reads each segment, which must be the one of its round and well.
bool ReadSegments(vx_segments* segments, const CShape& shape) {
    std::vector<std::uint16_t> samples(static_cast<std::size_t>(shape.samples));
    auto info = Made<vx_segment_info>();
    for (long round = 0; round < shape.rounds; ++round) {
        for (int well = 0; well < kWells; ++well) {
            std::int64_t count = shape.samples;
            Check(vx_segments_next(segments, &info, samples.data(), &count), segments);
            if (info.well != kFirstWell + well || info.time_from != shape.TimeFrom(round) || count != shape.samples ||
                !AreSamples(samples.data(), shape, round, well))
                return false;
        }
    }
    return true;
}

bool ReadArrays(vx_recording* recording, const CShape& shape, CArrays& arrays) {
    vx_selection* selection = nullptr;
    const int selected = vx_recording_select(&selection, recording, nullptr, 0, VX_TIME_FIRST, VX_TIME_LAST);
    Check(selected, selection);
    auto count = static_cast<std::int64_t>(arrays.samples.size());
    Check(vx_selection_read(selection, arrays.samples.data(), &count), selection);
    vx_close(selection);
    return count == static_cast<std::int64_t>(arrays.samples.size()) && arrays.AreWhole(shape);
}

/// Opens the recording with its index. `bulk-read` doesn't measure that.
bool ReadBulk(bool isIndexMeasured, vx_raw* raw, const CShape& shape) {
    CArrays arrays(shape, kWells);
    vx_recording* recording = nullptr;
    const auto open = [&] {
        const int code = vx_recording_open(&recording, raw, 0, nullptr);
        Check(code, recording);
    };
    if (!isIndexMeasured) open();
    bool good = true;
    Measure([&] {
        if (isIndexMeasured) open();
        good = ReadArrays(recording, shape, arrays);
    });
    vx_close(recording);
    return good;
}

bool ReadOneByOne(vx_raw* raw, const CShape& shape) {
    vx_segments* segments = nullptr;
    const int opened = vx_segments_open(&segments, raw, 0, VX_ALL_WELLS);
    Check(opened, segments);
    bool good = true;
    Measure([&] { good = ReadSegments(segments, shape); });
    vx_close(segments);
    return good;
}

bool Read(const std::string& mode, const char* path, const CShape& shape) {
    vx_raw* raw = nullptr;
    const int opened = vx_raw_open(&raw, path);
    Check(opened, raw);
    const bool good = mode == "read" ? ReadOneByOne(raw, shape) : ReadBulk(mode == "bulk", raw, shape);
    vx_close(raw);
    return good;
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc < 5) return 2;
    const std::string mode = argv[1];
    if (mode == "write") {
        Write(argv[2], CShape(argv));
        return 0;
    }
    return Read(mode, argv[2], CShape(argv)) ? 0 : 1;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
