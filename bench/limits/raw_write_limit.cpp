// Writes segments with the minimum of system calls: one gathered write of header and samples, and one write of 50 bytes
// that points to it. usage: raw_write_limit write FILE ROUNDS SAMPLES
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <charconv>
#include <cstring>
#include <string>
#include <string_view>

#include "../Measure.h"
#include "../RawData.h"

namespace {

void AddCell(std::string& header, std::size_t width, std::string_view text) {
    header += text;
    header.resize(header.size() + width - 2 - text.size(), '\0');
    header += "\r\n";
}

void AddList(std::string& header, std::size_t width, std::string text, auto itemOf) {
    for (int well = 0; well < kWells; ++well)
        text.append(well == 0 ? "=" : ":").append(itemOf(well));
    AddCell(header, width, text);
}

/// Writes everything before the segments, before the measured work begins.
std::string MakeHeaders() {
    std::string header;
    AddCell(header, 50, "OVL Vexaprobe");
    for (const char* text : {"FPosFirstRecordingHdr=1190", "FileType", "ProgramVersion"})
        AddCell(header, 50, text);
    AddCell(header, 30, "FileVersion=2");
    AddCell(header, 50, "Guid");
    AddCell(header, 30, "PlateID");
    AddCell(header, 30, "CompoundID=-1");
    AddCell(header, 200, "CompoundName");
    AddCell(header, 100, "PreQC");
    AddCell(header, 150, "CompoundTest");
    AddCell(header, 100, "PostQC");
    AddCell(header, 100, "CheckSum=0");
    AddCell(header, 200, "Reserved");
    for (const char* text :
         {"TaskName=Series", "Recording=1", "Dose=1000", "FPosRecordingData=3650", "FPosRecordingTrailer=-1",
          "FPosNextRecordingHdr=-1", "RecordingStartTime=0", "RecordingTime=0"})
        AddCell(header, 50, text);
    AddCell(header, 30, "NumberOfWells=54");
    AddList(header, 200, "WellIDs", [](int well) { return std::to_string(kFirstWell + well); });
    AddList(header, 200, "Ticks", [](int) { return std::to_string(kTick); });
    AddList(header, 400, "UnitsPerADs", [](int) { return std::string("0.0005"); });
    AddList(header, 200, "ADZeros", [](int) { return std::to_string(kADZero); });
    AddCell(header, 30, "NumberOfAuxCh=0");
    AddCell(header, 200, "AuxIDs");
    AddCell(header, 200, "Ticks");
    AddCell(header, 400, "UnitsPerADs");
    AddCell(header, 200, "ADZeros");
    return header;
}

void Put(char* at, long value) { std::to_chars(at, at + 20, value); }

bool WriteSegments(int file, off_t end, const CShape& shape, std::vector<std::uint16_t>& samples) {
    std::string blank;
    for (const char* text : {"Type=Well", "ID=", "FPosNextSegmentHdr=", "TimeFrom=", "TimeTo=", "Size="})
        AddCell(blank, 50, text);
    Put(&blank[250 + 5], shape.samples);
    std::string header = blank, pointer = blank.substr(100, 50);
    Put(&blank[100 + 19], -1);
    iovec parts[2] = {{header.data(), header.size()}, {samples.data(), samples.size() * 2}};
    const auto size = static_cast<ssize_t>(header.size() + samples.size() * 2);
    const off_t first = end;
    for (long round = 0; round < shape.rounds; ++round) {
        for (int well = 0; well < kWells; ++well, end += size) {
            TurnInto(samples.data(), round, well);
            std::memcpy(header.data(), blank.data(), header.size());
            Put(&header[50 + 3], kFirstWell + well);
            Put(&header[150 + 9], shape.TimeFrom(round));
            Put(&header[200 + 7], shape.TimeTo(round));
            if (pwritev(file, parts, 2, end) != size) return false;
            Put(&pointer[19], end);
            if (end != first && pwrite(file, pointer.data(), 50, end - size + 100) != 50) return false;
        }
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const int file = open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const std::string headers = MakeHeaders();
    bool good = write(file, headers.data(), headers.size()) == static_cast<ssize_t>(headers.size());
    std::vector<std::uint16_t> samples = MakeSamples(CShape(argv));
    Measure([&] { good = good && WriteSegments(file, 3650, CShape(argv), samples); });
    return good ? 0 : 1;
}
