// The samples of a recording on their way into arrays, with the system calls that nobody can do without: one read per
// segment, and one write of its samples into the file of its well. usage:
// raw_arrays_limit FILE SAMPLES FOLDER
#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <map>
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

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const int file = open(argv[1], O_RDONLY);
    std::vector<char> segment(kHeader + 2 * std::strtoul(argv[2], nullptr, 10));
    const auto size = static_cast<ssize_t>(segment.size());
    std::map<long, int> arrays;
    for (off_t next = kFirstSegment; next != -1;) {
        if (pread(file, segment.data(), segment.size(), next) != size) return 1;
        next = Number(segment, 100 + 19);
        const auto [array, isNew] = arrays.try_emplace(Number(segment, 50 + 3), -1);
        if (isNew) {
            const std::string path = std::string(argv[3]) + "/limit-" + std::to_string(array->first);
            array->second = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        }
        const auto bytes = segment.size() - kHeader;
        if (write(array->second, segment.data() + kHeader, bytes) != static_cast<ssize_t>(bytes)) return 1;
    }
    return 0;
}
