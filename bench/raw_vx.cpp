// Raw recordings through the library, the same work as limits/raw_limit.cpp.
// usage: raw_vx write|read FILE SEGMENTS SAMPLES
#include <vxfileio/frame/VXFileIO.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "Measure.h"

namespace {

constexpr int kWells = 54;

void Begin(CIRawDataWriter& writer, const std::string& path) {
    CRawDataFileHdr file;
    file.HeaderID = "OVL Vexaprobe";
    file.FileVersion = 2;
    CRawDataRecordingHdr recording;
    recording.TaskName = "Series";
    recording.Recording = 1;
    for (int well = 0; well < kWells; ++well)
        recording.WellChannels.push_back({10 + well, 0, 0.005, 1});
    writer.Open(path);
    writer.WriteFileHdr(file);
    writer.WriteRecordingHdr(recording);
}

void Write(CIRawDataWriter& writer, long segments, long samples) {
    std::vector<std::uint16_t> data(static_cast<std::size_t>(samples));
    for (long s = 0; s < segments; ++s) {
        for (std::size_t i = 0; i < 8 && i < data.size(); ++i) {
            data[i] = static_cast<std::uint16_t>(s + static_cast<long>(i));
        }
        const std::int64_t from = s / kWells * samples;
        writer.WriteData(10 + static_cast<int>(s % kWells), from, from + samples - 1, 1, data.data());
    }
}

bool Read(CIRawDataReader& reader, long segments, long samples) {
    std::int32_t wellID = 0;
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::uint32_t size = 0;
    std::uint16_t* data = nullptr;
    for (long s = 0; s < segments; ++s) {
        if (!reader.ReadSegment(wellID, from, to, size, data)) return false;
        if (size != static_cast<std::uint32_t>(samples) || data[0] != static_cast<std::uint16_t>(s)) return false;
    }
    return !reader.ReadSegment(wellID, from, to, size, data);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const bool writes = std::string(argv[1]) == "write";
    CVXFileIO io;
    if (writes) {
        Begin(*io.GetRawDateWriter(), argv[2]);
    } else {
        io.GetRawDataReader()->Open(argv[2]);
        if (!io.GetRawDataReader()->JumpToData("Series", 1)) return 1;
    }
    bool ok = true;
    Measure([&] {
        if (writes) {
            Write(*io.GetRawDateWriter(), std::atol(argv[3]), std::atol(argv[4]));
        } else {
            ok = Read(*io.GetRawDataReader(), std::atol(argv[3]), std::atol(argv[4]));
        }
    });
    return ok ? 0 : 1;
}
