#include "recovery/LostPages.h"

#include <algorithm>
#include <cstring>

namespace vxfileio::recovery {

namespace {

constexpr std::int64_t kPage = 4096;

bool IsZero(std::string_view bytes) {
    return bytes.empty() || (bytes.front() == '\0' && std::memcmp(bytes.data(), &bytes[1], bytes.size() - 1) == 0);
}

/// Returns whether a page is zeros. Looks at what follows the samples only if they are, so that the window stays.
bool IsLost(CWindow& window, std::int64_t page, std::int64_t end) {
    const std::int64_t samples = std::min(kPage, end - page);
    return IsZero(window.At(page, static_cast<std::size_t>(samples))) &&
           IsZero(window.At(page + samples, static_cast<std::size_t>(kPage - samples)));
}

}  // namespace

void ForLostPages(CWindow& window, std::int64_t begin, std::int64_t end,
                  const std::function<void(std::int64_t from, std::int64_t to)>& act) {
    for (std::int64_t page = (begin + kPage - 1) / kPage * kPage; page < end; page += kPage) {
        const std::int64_t from = page;
        while (page < end && IsLost(window, page, end))
            page += kPage;
        if (page > from && !IsZero(window.At(from - 2, 2))) act(from, std::min(page, end));
    }
}

}  // namespace vxfileio::recovery
