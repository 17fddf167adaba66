// Reads segments with the minimum of system calls: one positioned read per segment, into one buffer. For one well,
// reads only the well and next position of each segment, then the rest if the well matches. usage:
// raw_read_limit read|one|every FILE ROUNDS SAMPLES
#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstring>
#include <string>

#include "../Measure.h"
#include "../RawData.h"

namespace {

constexpr ssize_t kHeader = 300, kFront = 150;  // the front contains well and position of the next
constexpr off_t kFirstSegment = 3650;

struct CSegments {
    int file = -1;
    CShape shape;
    std::vector<std::uint16_t> buffer = std::vector<std::uint16_t>(static_cast<std::size_t>(shape.samples) + 150);
    off_t next = kFirstSegment;

    char* Bytes() { return reinterpret_cast<char*>(buffer.data()); }
    ssize_t Size() const { return kHeader + 2 * shape.samples; }

    long Number(std::size_t at) {
        long value = 0;
        std::from_chars(Bytes() + at, Bytes() + kHeader, value);
        return value;
    }

    bool Get(ssize_t from, ssize_t to) {
        return pread(file, Bytes() + from, static_cast<std::size_t>(to - from), next + from) == to - from;
    }

    /// Returns whether this round and well is in the buffer, and moves to the next.
    bool Take(long round, int well) {
        next = Number(100 + 19);
        return Number(50 + 3) == kFirstWell + well && Number(150 + 9) == shape.TimeFrom(round) &&
               Number(200 + 7) == shape.TimeTo(round) && Number(250 + 5) == shape.samples &&
               AreSamples(buffer.data() + kHeader / 2, shape, round, well);
    }

    bool ReadAll() {
        for (long round = 0; round < shape.rounds; ++round) {
            for (int well = 0; well < kWells; ++well)
                if (!Get(0, Size()) || !Take(round, well)) return false;
        }
        return next == -1;
    }

    bool ReadWell(int well) {
        next = kFirstSegment;
        for (long round = 0; next != -1;) {
            if (!Get(0, kFront)) return false;
            if (Number(50 + 3) != kFirstWell + well) {
                next = Number(100 + 19);
            } else if (!Get(kFront, Size()) || !Take(round++, well)) {
                return false;
            }
        }
        return true;
    }

    bool ReadEveryWell() {
        for (int well = 0; well < kWells; ++well)
            if (!ReadWell(well)) return false;
        return true;
    }
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const std::string mode = argv[1];
    const int file = open(argv[2], O_RDONLY);
    bool good = false;
    Measure([&] {
        CSegments segments{file, CShape(argv)};
        if (mode == "read") good = segments.ReadAll();
        if (mode == "one") good = segments.ReadWell(kOneWell);
        if (mode == "every") good = segments.ReadEveryWell();
    });
    return good ? 0 : 1;
}
