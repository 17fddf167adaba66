// The limit of raw recordings: only the system calls that nobody can do without, on the same bytes.
// usage: raw_limit write|read FILE SEGMENTS SAMPLES
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kWells = 54;
constexpr off_t kHeaders = 1190 + 2460;
constexpr size_t kSegmentHdr = 300;

void PutCell(char* cell, const char* key, long long value) {
    memset(cell, 0, 50);
    snprintf(cell, 48, "%s=%lld", key, value);
    memcpy(cell + 48, "\r\n", 2);
}

void PutSegmentHdr(char* hdr, int well, long long from, long long samples) {
    memset(hdr, 0, 50);
    memcpy(hdr, "Type=Well", 9);
    memcpy(hdr + 48, "\r\n", 2);
    PutCell(hdr + 50, "ID", well);
    PutCell(hdr + 100, "FPosNextSegmentHdr", -1);
    PutCell(hdr + 150, "TimeFrom", from);
    PutCell(hdr + 200, "TimeTo", from + samples - 1);
    PutCell(hdr + 250, "Size", samples);
}

bool Write(int file, long segments, long samples) {
    std::vector<uint16_t> data(static_cast<size_t>(samples));
    off_t end = kHeaders;
    for (long s = 0; s < segments; ++s) {
        for (size_t i = 0; i < 8 && i < data.size(); ++i)
            data[i] = static_cast<uint16_t>(s + static_cast<long>(i));
        char hdr[kSegmentHdr];
        PutSegmentHdr(hdr, 10 + static_cast<int>(s % kWells), s / kWells * samples, samples);
        iovec parts[2] = {{hdr, sizeof hdr}, {data.data(), data.size() * 2}};
        const auto size = static_cast<ssize_t>(sizeof hdr + data.size() * 2);
        if (pwritev(file, parts, 2, end) != size) return false;
        char cell[50];
        PutCell(cell, "FPosNextSegmentHdr", end);
        if (s > 0 && pwrite(file, cell, 50, end - size + 100) != 50) return false;
        end += size;
    }
    return true;
}

bool Read(int file, long segments, long samples) {
    std::vector<uint16_t> data(static_cast<size_t>(samples));
    off_t position = kHeaders;
    for (long s = 0; s < segments; ++s) {
        char hdr[kSegmentHdr];
        iovec parts[2] = {{hdr, sizeof hdr}, {data.data(), data.size() * 2}};
        if (preadv(file, parts, 2, position) != static_cast<ssize_t>(sizeof hdr + data.size() * 2)) return false;
        if (memcmp(hdr, "Type", 4) != 0 || data[0] != static_cast<uint16_t>(s)) return false;
        position = atoll(hdr + 100 + sizeof "FPosNextSegmentHdr");
    }
    return position == -1;
}

/// The program's own peak memory. The usual call would count that of the process that started it, too.
long PeakKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        long peak = 0;
        if (word == "VmHWM:" && status >> peak) return peak;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const bool writes = std::string(argv[1]) == "write";
    const int file = writes ? open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0666) : open(argv[2], O_RDONLY);
    if (file < 0) return 2;
    const auto start = std::chrono::steady_clock::now();
    const bool ok = (writes ? Write : Read)(file, atol(argv[3]), atol(argv[4]));
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    printf("%.6f %ld\n", seconds.count(), PeakKiB());
    return ok ? 0 : 1;
}
