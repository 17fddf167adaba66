#include "tools/vxfile/system/Descriptor.h"

#include <fcntl.h>
#ifdef _WIN32
#include <io.h>
#elif __has_include(<unistd.h>)
#include <unistd.h>
#else
#error "Descriptor.cpp isn't ported to this system; see \"Adding a platform\" in CONTRIBUTING.md."
#endif

#include <algorithm>
#include <cerrno>
#include <utility>

#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/Terminal.h"

namespace vxfile {

namespace {

constexpr int kStandardOutput = 1;

#ifdef _WIN32
constexpr int kAsTheyAre = O_BINARY;
#else
constexpr int kAsTheyAre = O_CLOEXEC;
#endif

}  // namespace

bool CDescriptor::Open(const std::string& path) {
    m_number = ::open(path.c_str(), O_WRONLY | kAsTheyAre);
    m_isOwn = true;
    return m_number != kClosed;
}

void CDescriptor::UseOpen(int number) {
    if (number == kStandardOutput) MakeOutputBinary();
    m_number = number;
}

bool CDescriptor::Write(std::span<const std::byte> bytes) {
    constexpr std::size_t kMost = std::size_t{1} << 30;  // systems accept at most 2 GiB per call
    while (!bytes.empty()) {
        if (IsInterrupted()) return false;
        const auto part = bytes.first(std::min(bytes.size(), kMost));
        const auto written = ::write(m_number, part.data(), static_cast<unsigned>(part.size()));
        if (written > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        } else if (written == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool CDescriptor::Close() {
    const int number = std::exchange(m_number, kClosed);
    return !std::exchange(m_isOwn, false) || number == kClosed || ::close(number) == 0;
}

}  // namespace vxfile
