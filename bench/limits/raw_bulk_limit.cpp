// Reads all samples of each well into its own array, with one call per segment at a known offset.
// usage: raw_bulk_limit bulk|bulk-read|bulk-every FILE ROUNDS SAMPLES    all wells in file order, or each well in turn
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <string>

#include "../Measure.h"
#include "../RawData.h"

namespace {

constexpr std::size_t kHeader = 300;
constexpr off_t kFirstSegment = 3650;

struct CSegments {
    int file = -1;
    CShape shape;
    CArrays arrays;
    char header[kHeader] = {};

    off_t Position(long round, int well) const {
        return kFirstSegment + (round * kWells + well) * static_cast<off_t>(kHeader + arrays.segmentBytes);
    }

    /// Header and samples, as they are in the file.
    bool ReadAll() {
        const auto size = static_cast<ssize_t>(kHeader + arrays.segmentBytes);
        for (long round = 0; round < shape.rounds; ++round) {
            for (int well = 0; well < kWells; ++well) {
                const iovec parts[2] = {{header, kHeader}, {arrays.Segment(round, well), arrays.segmentBytes}};
                if (preadv(file, parts, 2, Position(round, well)) != size) return false;
            }
        }
        return arrays.AreWhole(shape);
    }

    bool ReadWell(int well) {
        const auto size = static_cast<ssize_t>(arrays.segmentBytes);
        for (long round = 0; round < shape.rounds; ++round) {
            const off_t position = Position(round, well) + static_cast<off_t>(kHeader);
            if (pread(file, arrays.Segment(round, 0), arrays.segmentBytes, position) != size) return false;
        }
        return arrays.IsWell(shape, 0, well);
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
    const bool isEvery = argv[1] == std::string("bulk-every");
    const CShape shape(argv);
    CSegments segments{open(argv[2], O_RDONLY), shape, CArrays(shape, isEvery ? 1 : kWells)};
    bool good = false;
    Measure([&] { good = isEvery ? segments.ReadEveryWell() : segments.ReadAll(); });
    return good ? 0 : 1;
}
