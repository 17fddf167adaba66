#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

/// @file
/// What the tests of faults play: a file of each kind, written and read through the facades.

/// One kind of file.
struct CKind {
    const char* name;
    const char* file;  ///< The name of the file that the steps write.
    bool isReplaced;   ///< Whether an older file stays until the new one is whole.

    /// The calls that write a file, one by one. They and what they use live as long as the program, apart from `io`.
    std::vector<std::function<void()>> (*steps)(CVXFileIO& io, const std::string& path);
    std::string (*writeError)(CVXFileIO& io);
    /// Reads the file and returns its content in words; null for what the library doesn't read. Throws as it does.
    std::string (*read)(CVXFileIO& io, const std::string& path);
};

/// The name alone: tests are listed by it, and a list must be the same each time.
inline void PrintTo(const CKind& kind, std::ostream* out) { *out << kind.name; }

/// All kinds.
const std::vector<CKind>& AllKinds();

/// The samples of the segment `number` of the raw data that is played; the segments of a recording are side by side.
std::vector<std::uint16_t> SamplesOf(std::int64_t number);
inline constexpr std::int64_t kSegments = 6;

/// Returns the bytes of a file without the date of writing that a settings file has; empty if there is no file.
std::string BytesOf(const std::string& path);
