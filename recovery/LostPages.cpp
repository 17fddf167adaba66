#include "recovery/LostPages.h"

#include <algorithm>

namespace vxfileio::recovery {

namespace {

using helpers::kPageSize;

bool IsZero(std::string_view bytes) {
    return bytes.empty() || (bytes.front() == '\0' && bytes.substr(1) == bytes.substr(0, bytes.size() - 1));
}

/// Returns whether a page is zeros. Reads bytes outside the samples only if the samples are zeros, so that the window
/// usually stays.
bool IsLost(CWindow& window, std::int64_t page, std::int64_t begin, std::int64_t end) {
    const std::int64_t from = std::max(page, begin);
    const std::int64_t to = std::min(page + kPageSize, end);
    return IsZero(window.At(from, static_cast<std::size_t>(to - from))) && IsZero(window.At(page, kPageSize));
}

}  // namespace

void ForLostPages(CWindow& window, std::int64_t begin, std::int64_t end,
                  const std::function<void(std::int64_t from, std::int64_t to)>& act) {
    for (std::int64_t page = begin / kPageSize * kPageSize; page < end; page += kPageSize) {
        const std::int64_t from = page;
        while (page < end && IsLost(window, page, begin, end))
            page += kPageSize;
        const bool isLost = page > from && (from < begin || !IsZero(window.At(from - 2, 2)));
        if (isLost) act(from, std::min(page, end));
    }
}

}  // namespace vxfileio::recovery
