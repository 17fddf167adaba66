#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "vxfileio/helpers/PrintableText.h"

/// @file
/// Texts of findings.

namespace vxfile {

using vxfileio::helpers::Counted;
using vxfileio::helpers::Quoted;

/// Returns a text of a file as UTF-8 that is safe on a terminal. Files don't name their code page: what isn't UTF-8
/// already is taken for Latin-1.
std::string Readable(std::string_view bytes);

/// The same with its control characters: for programs, not for terminals.
using vxfileio::helpers::Utf8;

/// The most items that a list in a sentence shows.
inline constexpr std::size_t kMostListed = 20;

/// Returns " and 374 more"; empty for 0.
std::string AndMore(std::size_t count);

/// Returns the texts of items with ", " between them, of many the first and the number of the others; "none" if there
/// are none.
std::string ListOf(const auto& items, auto textOf) {
    std::string list;
    std::size_t listed = 0;
    for (const auto& item : items) {
        if (listed == kMostListed) break;
        list += (listed++ == 0 ? "" : ", ") + textOf(item);
    }
    return listed == 0 ? "none" : list + AndMore(items.size() - listed);
}

/// Returns numbers with ", " between them. Runs of neighbours are shortened to "11 - 34". Of more than `most` numbers
/// and runs, returns the first, and how many numbers the others are.
std::string ListText(const std::vector<std::int32_t>& numbers,
                     std::size_t most = std::numeric_limits<std::size_t>::max());

}  // namespace vxfile
