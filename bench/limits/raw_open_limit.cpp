// Opens a file of many recordings with one read per header, and parses all cells.
// usage: raw_open_limit open FILE RECORDINGS
#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstring>
#include <string>

#include "../Measure.h"
#include "../RawData.h"

namespace {

constexpr std::size_t kFileHdr = 1190, kRecordingHdr = 2460;

struct CChannel {
    int id = 0, zero = 0;
    double units = 0;
    long tick = 0;
};

struct CRecording {
    std::string task;
    long number = 0, dose = 0, data = 0, trailer = 0, next = 0, start = 0, time = 0;
    std::vector<CChannel> wells, aux;
};

void Parse(const char* cell, std::size_t key, auto& value) { std::from_chars(cell + key, cell + 50, value); }
void Parse(const char* cell, std::size_t key, std::string& value) {
    value = *(cell + key - 1) == '=' ? cell + key : "";
}

/// Parses a list into one member of each channel; `key` includes the `=`.
template <class Value>
void ParseList(const char* cell, std::size_t key, std::size_t width, std::vector<CChannel>& channels,
               Value CChannel::*member) {
    const char* at = cell + key;
    for (CChannel& channel : channels)
        at = std::from_chars(at, cell + width, channel.*member).ptr + 1;
}

/// Parses the number of channels and the four lists of the wells or the auxiliary channels.
void ParseChannels(const char* cell, std::size_t countKey, std::size_t idKey, std::vector<CChannel>& channels) {
    std::size_t count = 0;
    Parse(cell, countKey, count);
    channels.resize(count);
    ParseList(cell + 30, idKey, 200, channels, &CChannel::id);
    ParseList(cell + 230, 6, 200, channels, &CChannel::tick);
    ParseList(cell + 430, 12, 400, channels, &CChannel::units);
    ParseList(cell + 830, 8, 200, channels, &CChannel::zero);
}

CRecording ParseRecording(const char* header) {
    CRecording recording;
    Parse(header, 9, recording.task);
    Parse(header + 50, 10, recording.number);
    Parse(header + 100, 5, recording.dose);
    Parse(header + 150, 18, recording.data);
    Parse(header + 200, 21, recording.trailer);
    Parse(header + 250, 21, recording.next);
    Parse(header + 300, 19, recording.start);
    Parse(header + 350, 14, recording.time);
    ParseChannels(header + 400, 14, 8, recording.wells);
    ParseChannels(header + 1430, 14, 7, recording.aux);
    return recording;
}

bool Open(const char* path, std::vector<CRecording>& recordings) {
    const int file = open(path, O_RDONLY);
    char header[kRecordingHdr + 1] = {};
    if (pread(file, header, kFileHdr, 0) != static_cast<ssize_t>(kFileHdr)) return false;
    long next = 0;
    for (Parse(header + 50, 22, next); next != -1; next = recordings.back().next) {
        if (pread(file, header, kRecordingHdr, next) != static_cast<ssize_t>(kRecordingHdr)) return false;
        recordings.push_back(ParseRecording(header));
    }
    return true;
}

bool IsWhole(const CRecording& recording, long number) {
    bool whole = recording.number == number && recording.dose == 1000 * number && recording.wells.size() == kWells;
    for (int id = kFirstWell; const CChannel& well : recording.wells)
        whole = whole && well.id == id++ && well.tick == kTick && well.zero == kADZero && well.units == kUnitsPerAD;
    return whole && recording.task == "Series" && recording.aux.empty();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    std::vector<CRecording> recordings;
    bool good = false;
    Measure([&] { good = Open(argv[2], recordings); });
    for (std::size_t i = 0; i < recordings.size(); ++i)
        good = good && IsWhole(recordings[i], static_cast<long>(i));
    return good && recordings.size() == static_cast<std::size_t>(std::atol(argv[3])) ? 0 : 1;
}
