// Copies the samples of a recording to arrays with the minimum of system calls: one read per segment, and one write of
// its samples to the file of its well. For a single well, reads only the headers of the other wells' segments. usage:
// raw_arrays_limit FILE SAMPLES FOLDER [WELL]
#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kHeader = 300;
constexpr off_t kFirstSegment = 3650;

long Number(const std::vector<char>& segment, std::size_t at) {
    long value = 0;
    std::from_chars(segment.data() + at, segment.data() + kHeader, value);
    return value;
}

void Read(int file, std::span<char> bytes, off_t position) {
    if (pread(file, bytes.data(), bytes.size(), position) != static_cast<ssize_t>(bytes.size())) std::exit(1);
}

void Write(int file, std::span<const char> bytes) {
    if (write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) std::exit(1);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4 || argc > 5) return 2;
    const int file = open(argv[1], O_RDONLY);
    const bool isOne = argc == 5;
    const long one = isOne ? std::strtol(argv[4], nullptr, 10) : 0;
    std::vector<char> segment(kHeader + 2 * std::strtoul(argv[2], nullptr, 10));
    const auto samples = std::span(segment).subspan(kHeader);
    std::map<long, int> arrays;
    for (off_t position = kFirstSegment, next = 0; position != -1; position = next) {
        Read(file, std::span(segment).first(isOne ? kHeader : segment.size()), position);
        next = Number(segment, 100 + 19);
        const long well = Number(segment, 50 + 3);
        if (isOne && well != one) continue;
        if (isOne) Read(file, samples, position + static_cast<off_t>(kHeader));
        const auto [array, isNew] = arrays.try_emplace(well, -1);
        if (isNew) {
            const std::string path = std::string(argv[3]) + "/limit-" + std::to_string(well);
            array->second = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        }
        Write(array->second, samples);
    }
    return 0;
}
