// Writes and reads raw recordings with the library. usage:
//   raw_vx write|read|one|every FILE ROUNDS SAMPLES    all wells round robin, one well, each well in turn
//   raw_vx bulk|bulk-read|bulk-every FILE ROUNDS SAMPLES    into one array per well, all at once or each in turn
//   raw_vx headers|open FILE RECORDINGS                recordings without samples, written and opened
#include <vxfileio/frame/VXFileIO.h>

#include <optional>
#include <span>
#include <string>

#include "Measure.h"
#include "RawData.h"

namespace {

CRawDataRecordingHdr MakeRecordingHdr(int number) {
    CRawDataRecordingHdr recording;
    recording.TaskName = "Series";
    recording.Recording = number;
    recording.Dose = 1000L * number;
    for (int well = 0; well < kWells; ++well)
        recording.WellChannels.push_back({kFirstWell + well, kADZero, kUnitsPerAD, kTick});
    return recording;
}

void BeginFile(CIRawDataWriter& writer, const char* path) {
    writer.Open(path);
    writer.WriteFileHdr({.HeaderID = "OVL Vexaprobe", .FileVersion = 2});
}

void Write(CIRawDataWriter& writer, const char* path, const CShape& shape) {
    BeginFile(writer, path);
    writer.WriteRecordingHdr(MakeRecordingHdr(1));
    std::vector<std::uint16_t> samples = MakeSamples(shape);
    Measure([&] {
        for (long round = 0; round < shape.rounds; ++round) {
            for (int well = 0; well < kWells; ++well) {
                TurnInto(samples.data(), round, well);
                writer.WriteData(kFirstWell + well, shape.TimeFrom(round), shape.TimeTo(round), kTick, samples.data());
            }
        }
    });
}

/// Reads the next segment, which must be the one of this round and well.
bool ReadNext(CIRawDataReader& reader, const CShape& shape, long round, int well) {
    std::int32_t wellID = 0;
    std::int64_t from = 0, to = 0;
    std::uint32_t size = 0;
    std::uint16_t* samples = nullptr;
    return reader.ReadSegment(wellID, from, to, size, samples) && wellID == kFirstWell + well &&
           from == shape.TimeFrom(round) && to == shape.TimeTo(round) && size == shape.samples &&
           AreSamples(samples, shape, round, well);
}

bool IsAtEnd(CIRawDataReader& reader) {
    std::int32_t wellID = 0;
    std::int64_t from = 0, to = 0;
    std::uint32_t size = 0;
    std::uint16_t* samples = nullptr;
    return !reader.ReadSegment(wellID, from, to, size, samples);
}

/// Reads `wells` wells, starting with `first`, which follow each other in each round.
bool ReadRounds(CIRawDataReader& reader, const CShape& shape, int first, int wells) {
    if (!reader.JumpToData("Series", 1)) return false;
    for (long round = 0; round < shape.rounds; ++round) {
        for (int well = first; well < first + wells; ++well)
            if (!ReadNext(reader, shape, round, well)) return false;
    }
    return IsAtEnd(reader);
}

bool ReadWell(CIRawDataReader& reader, const CShape& shape, int well) {
    reader.SelectWellID(kFirstWell + well);
    return ReadRounds(reader, shape, well, 1);
}

bool ReadEveryWell(CIRawDataReader& reader, const CShape& shape) {
    for (int well = 0; well < kWells; ++well)
        if (!ReadWell(reader, shape, well)) return false;
    return true;
}

bool Read(CIRawDataReader& reader, const std::string& mode, const char* path, const CShape& shape) {
    bool good = false;
    reader.Open(path);
    Measure([&] {
        if (mode == "read") good = ReadRounds(reader, shape, 0, kWells);
        if (mode == "one") good = ReadWell(reader, shape, kOneWell);
        if (mode == "every") good = ReadEveryWell(reader, shape);
    });
    return good;
}

/// Reads some wells, in the order of their numbers, into the first arrays.
bool ReadArrays(const CRecordingIndex& index, const CShape& shape, const std::vector<std::int32_t>& wells,
                CArrays& arrays) {
    const CSampleSelection selection = index.Select({.WellIDs = wells});
    std::vector<std::span<std::uint16_t>> buffers;
    for (const CWellSamples& well : selection.GetWells()) {
        if (well.Runs.size() != 1 || well.Samples != arrays.perWell || well.Runs[0].TimeFrom != 0) return false;
        buffers.emplace_back(arrays.Well(static_cast<int>(buffers.size())), arrays.perWell);
    }
    selection.Read(buffers);
    return wells.empty() ? buffers.size() == kWells && arrays.AreWhole(shape)
                         : arrays.IsWell(shape, 0, wells[0] - kFirstWell);
}

/// Reads the index, then all wells at once, or each well in turn. `bulk-read` doesn't measure reading the index.
bool ReadBulk(const std::string& mode, const char* path, const CShape& shape) {
    const bool isEvery = mode == "bulk-every";
    CArrays arrays(shape, isEvery ? 1 : kWells);
    const CRawDataFile file(path);
    std::optional<CRecordingIndex> index;
    if (mode == "bulk-read") index = file.ReadIndex(0);
    bool good = true;
    Measure([&] {
        if (!index) index = file.ReadIndex(0);
        if (!isEvery) good = ReadArrays(*index, shape, {}, arrays);
        for (int well = 0; isEvery && good && well < kWells; ++well)
            good = ReadArrays(*index, shape, {kFirstWell + well}, arrays);
    });
    return good;
}

void WriteHeaders(CIRawDataWriter& writer, const char* path, int recordings) {
    BeginFile(writer, path);
    Measure([&] {
        for (int number = 0; number < recordings; ++number)
            writer.WriteRecordingHdr(MakeRecordingHdr(number));
    });
}

/// Opens a file of recordings, and checks every hundredth.
bool Open(CIRawDataReader& reader, const char* path, int recordings) {
    Measure([&] { reader.Open(path); });
    bool good = reader.GetIndex()->GetCount() == recordings;
    for (int number = 0; good && number < recordings; number += 100) {
        const CRawDataRecordingHdr* const read = reader.GetRecordingHdr("Series", number);
        good = read != nullptr && read->Dose == 1000L * number && read->WellChannels.size() == kWells;
        for (int well = 0; good && well < kWells; ++well) {
            const CRawDataChannelInfo& channel = read->WellChannels[static_cast<std::size_t>(well)];
            good = channel.ID == kFirstWell + well && channel.Ticks == kTick && channel.ADZero == kADZero &&
                   channel.UnitsPerAD == kUnitsPerAD;
        }
    }
    return good;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) return 2;
    const std::string mode = argv[1];
    CVXFileIO io;
    bool good = true;
    if (mode == "headers") {
        WriteHeaders(*io.GetRawDateWriter(), argv[2], std::atoi(argv[3]));
    } else if (mode == "open") {
        good = Open(*io.GetRawDataReader(), argv[2], std::atoi(argv[3]));
    } else if (mode == "write") {
        Write(*io.GetRawDateWriter(), argv[2], CShape(argv));
    } else if (mode.starts_with("bulk")) {
        good = ReadBulk(mode, argv[2], CShape(argv));
    } else {
        good = Read(*io.GetRawDataReader(), mode, argv[2], CShape(argv));
    }
    return good ? 0 : 1;
}
