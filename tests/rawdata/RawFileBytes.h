#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// @file
/// Builds raw data files by hand, cell by cell, without any library code.

/// Returns a cell: text, NUL bytes, CR LF.
inline std::string Cell(std::size_t width, std::string text) {
    text.resize(width - 2, '\0');
    return text + "\r\n";
}

/// Returns samples as bytes, low byte first.
inline std::string SampleBytes(const std::vector<std::uint16_t>& samples) {
    std::string bytes;
    for (const auto sample : samples) {
        bytes += static_cast<char>(sample & 0xFFU);
        bytes += static_cast<char>(sample >> 8U);
    }
    return bytes;
}

/// Returns the 1190 bytes of `ExampleFileHdr`.
inline std::string FileHdrBytes(std::int64_t firstRecordingHdr, const std::string& compoundTest = "CompoundTest",
                                int version = 2) {
    return Cell(50, "OVL Vexaprobe") + Cell(50, "FPosFirstRecordingHdr=" + std::to_string(firstRecordingHdr)) +
           Cell(50, "FileType=Raw") + Cell(50, "ProgramVersion=1.0") +
           Cell(30, "FileVersion=" + std::to_string(version)) + Cell(50, "Guid=0123") + Cell(30, "PlateID=P1") +
           Cell(30, "CompoundID=5") + Cell(200, "CompoundName=Test") + Cell(100, "PreQC") + Cell(150, compoundTest) +
           Cell(100, "PostQC") + Cell(100, "CheckSum=0") + Cell(200, "Reserved");
}

/// The values that differ between the recordings of the tests.
struct CRecordingText {
    std::string task = "CompoundTest";
    int recording = 1;
    std::int64_t data = -1;
    std::int64_t next = -1;
    bool hasStartTime = true;
    std::string wells = "2";
    std::string wellIDs = "=11:12";
};

/// Returns the 2460 bytes of a recording header.
inline std::string RecordingHdrBytes(const CRecordingText& t) {
    return Cell(50, "TaskName=" + t.task) + Cell(50, "Recording=" + std::to_string(t.recording)) +
           Cell(50, "Dose=1000") + Cell(50, "FPosRecordingData=" + std::to_string(t.data)) +
           Cell(50, "FPosRecordingTrailer=-1") + Cell(50, "FPosNextRecordingHdr=" + std::to_string(t.next)) +
           (t.hasStartTime ? Cell(50, "RecordingStartTime=1000000") : std::string()) + Cell(50, "RecordingTime=300") +
           Cell(30, "NumberOfWells=" + t.wells) + Cell(200, "WellIDs" + t.wellIDs) + Cell(200, "Ticks=100:100") +
           Cell(400, "UnitsPerADs=0.0002:0.0002") + Cell(200, "ADZeros=32768:32768") + Cell(30, "NumberOfAuxCh=0") +
           Cell(200, "AuxIDs") + Cell(200, "Ticks") + Cell(400, "UnitsPerADs") + Cell(200, "ADZeros");
}

/// Returns the 300 bytes of a segment header. `size` is text, so that it can be invalid.
inline std::string SegmentHdrBytes(int wellID, std::int64_t next, std::int64_t from, std::int64_t to,
                                   const std::string& size) {
    return Cell(50, "Type=Well") + Cell(50, "ID=" + std::to_string(wellID)) +
           Cell(50, "FPosNextSegmentHdr=" + std::to_string(next)) + Cell(50, "TimeFrom=" + std::to_string(from)) +
           Cell(50, "TimeTo=" + std::to_string(to)) + Cell(50, "Size=" + size);
}

/// One segment, as a list of its samples.
struct CSegmentText {
    int well = 11;
    std::int64_t from = 0;
    std::vector<std::uint16_t> samples = {};
    std::int64_t tick = 100;
    std::string size = {};  ///< The size in the header, if it isn't the number of samples.
};

/// The segments of one recording.
using CSegmentTexts = std::vector<CSegmentText>;

/// Returns a chain of segments for the offset `at`, by default that of the first recording's data. The last one has no
/// next segment.
inline std::string ChainBytes(const CSegmentTexts& segments, std::int64_t at = 3650) {
    std::string bytes;
    for (const CSegmentText& s : segments) {
        const auto count = static_cast<std::int64_t>(s.samples.size());
        const std::int64_t next = at + static_cast<std::int64_t>(bytes.size()) + 300 + 2 * count;
        bytes += SegmentHdrBytes(s.well, &s == &segments.back() ? -1 : next, s.from, s.from + (count - 1) * s.tick,
                                 s.size.empty() ? std::to_string(count) : s.size) +
                 SampleBytes(s.samples);
    }
    return bytes;
}

inline const std::vector<std::uint16_t> kWell11 = {1, 256, 65535, 32768};
inline const std::vector<std::uint16_t> kWell12 = {7, 8, 9, 10};

/// Returns a small file of 4266 bytes: one recording, wells 11 and 12, one segment of four samples each.
inline std::string SmallFileBytes() {
    return FileHdrBytes(1190, "CompoundTest=1000:2000") + RecordingHdrBytes({.data = 3650}) +
           SegmentHdrBytes(11, 3958, 0, 300, "4") + SampleBytes(kWell11) + SegmentHdrBytes(12, -1, 0, 300, "4") +
           SampleBytes(kWell12);
}
