#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

/// @file
/// The scenarios of the fault tests: a file of each kind, written and read through the facades.

/// One kind of file.
struct CKind {
    const char* name;
    const char* file;  ///< The name of the file that the steps write.
    bool isReplaced;   ///< Whether an older file stays until the new one is complete.

    /// The calls that write a file, one by one. They and what they use live as long as the program, except `io`.
    std::vector<std::function<void()>> (*steps)(CVXFileIO& io, const std::string& path);
    std::string (*writeError)(CVXFileIO& io);
    /// Reads the file and returns its content as text; null if the library can't read this kind. Throws the library's
    /// exceptions.
    std::string (*read)(CVXFileIO& io, const std::string& path);
};

/// Prints only the name: it identifies a test, so it must be the same in each run.
inline void PrintTo(const CKind& kind, std::ostream* out) { *out << kind.name; }

/// Returns all kinds.
const std::vector<CKind>& AllKinds();

/// Returns raw data whose writer flushes to the disk.
const CKind& FlushedRaw();

/// Returns the samples of segment `number` of the raw data; the segments of a recording follow each other.
std::vector<std::uint16_t> SamplesOf(std::int64_t number);
inline constexpr std::int64_t kSegments = 6;

/// Returns the bytes of a file, without a settings file's date of writing; empty if there is no file.
std::string BytesOf(const std::string& path);
