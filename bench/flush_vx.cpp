// Measures what FlushToDisk costs. usage: flush_vx FOLDER
//
// Writes one second of a plate, a segment of 5,000 samples for each of 54 wells, 60 times over: without flushing,
// flushed after each second, and, as the limit, the same bytes in one system call and one fdatasync. Prints the medians
// of one second in milliseconds.
#include <fcntl.h>
#include <unistd.h>
#include <vxfileio/frame/VXFileIO.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int kWells = 54;
constexpr int kSeconds = 60;
constexpr std::int64_t kSamples = 5000;

/// Returns the median time of a second in milliseconds.
double MedianOf(const std::function<void(int)>& second) {
    std::vector<double> times;
    for (int i = 0; i < kSeconds; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        second(i);
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
    }
    std::nth_element(times.begin(), times.begin() + kSeconds / 2, times.end());
    return times[kSeconds / 2];
}

double Write(const std::string& path, bool flushes) {
    CIRawDataWriter writer;
    writer.Open(path);
    writer.WriteFileHdr({.HeaderID = "OVL Vexaprobe", .FileVersion = 2});
    writer.WriteRecordingHdr({.TaskName = "Series"});
    const std::vector<std::uint16_t> samples(kSamples, 32768);
    const double median = MedianOf([&](int i) {
        for (int well = 0; well < kWells; ++well)
            writer.WriteData(well, i * kSamples, (i + 1) * kSamples - 1, 1, samples.data());
        if (flushes && !writer.FlushToDisk()) std::perror(writer.GetWriteError().c_str());
    });
    writer.Close();
    return median;
}

double WriteLimit(const std::string& path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const std::string bytes(kWells * (300 + 2 * kSamples), 'x');
    const double median = MedianOf([&](int) {
        if (::write(file, bytes.data(), bytes.size()) < 0 || ::fdatasync(file) != 0) std::perror(path.c_str());
    });
    ::close(file);
    return median;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string path = std::string(argc > 1 ? argv[1] : ".") + "/flush_vx.vxd";
    const double plain = Write(path, false);
    const double flushed = Write(path, true);
    const double limit = WriteLimit(path);
    ::unlink(path.c_str());
    std::printf("written %.2f ms, flushed %.2f ms, limit %.2f ms, flushed : limit %.2f\n", plain, flushed, limit,
                flushed / limit);
}
