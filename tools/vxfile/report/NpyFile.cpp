#include "tools/vxfile/report/NpyFile.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

namespace vxfile {

namespace {

constexpr std::string_view kMagic("\x93NUMPY\x01\x00", 8);

/// Items are aligned to this.
constexpr std::size_t kAlignment = 64;

constexpr std::size_t kLeastHeaderSize = 192;

}  // namespace

CNpyFile::CNpyFile(const CTarget& target, std::string type, const std::function<std::uint64_t()>& countAhead)
    : m_type(std::move(type)), m_output(target) {
    m_output.Write(Header(m_output.CanRewriteFront() ? 0 : countAhead()));
}

void CNpyFile::Finish(std::vector<COutput*>& outputs) {
    if (m_output.CanRewriteFront()) m_output.RewriteFront(Header(m_count));
    m_output.Finish();
    outputs.push_back(&m_output);
}

/// All headers of one type have the same size.
std::string CNpyFile::Header(std::uint64_t count) const {
    std::string text = "{'descr': " + m_type + ", 'fortran_order': False, 'shape': (";
    const std::size_t front = kMagic.size() + sizeof(std::uint16_t);
    const std::size_t longest = front + text.size() + std::numeric_limits<std::uint64_t>::digits10 + 8;
    const std::size_t size = std::max(kLeastHeaderSize, (longest + kAlignment - 1) / kAlignment * kAlignment);
    text += std::to_string(count) + ",), }";
    text.resize(size - front - 1, ' ');
    std::string header(kMagic);
    header += static_cast<char>((size - front) & 0xFFU);
    header += static_cast<char>((size - front) >> 8U);
    return header + text + '\n';
}

}  // namespace vxfile
