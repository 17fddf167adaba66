#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "tools/vxfile/system/Xxh3.h"
#include "verify/Failure.h"
#include "vxfileio/helpers/File.h"

/// @file
/// Seals: JSON files with the checksums of another file and of its parts. `docs/seal.md` describes them. They are
/// written and read line by line, so their size doesn't matter.

namespace vxfile {

/// The extension of a seal, appended to the name of the file.
inline constexpr std::string_view kSealExtension = ".seal";

/// The version of written seals, and the newest readable one.
inline constexpr std::uint64_t kSealVersion = 1;

/// Returns the path of a file's seal.
inline std::string SealOf(const std::string& path) { return path + std::string(kSealExtension); }

/// Returns whether a file has a seal. A dangling link counts as one.
bool HasSeal(const std::string& path);

/// A part of a sealed file and its checksums. The parts of a file are contiguous.
struct CSealedPart {
    enum class EKind : std::uint8_t {
        FileHeader,
        RecordingHeader,
        Segment,
        Other,  ///< Bytes of a raw data file that belong to none of these.
        Block,  ///< A block of another file.
    };

    EKind kind = EKind::Block;
    std::int64_t offset = 0;
    std::int64_t length = 0;
    std::int64_t headerLength = 0;  ///< Segment: the number of bytes before its samples.
    std::string task;               ///< RecordingHeader, Segment: the recording.
    std::int32_t recording = 0;     ///< The same: its number within the task.
    std::int32_t well = 0;          ///< Segment
    std::int64_t from = 0;          ///< Segment: the time of the first sample.
    std::int64_t to = 0;            ///< Segment: the time of the last sample.
    CXxh3Sum sum{};                 ///< The checksum of the bytes; for a segment, of its header.
    CXxh3Sum samplesSum{};          ///< Segment: the checksum of its samples.

    std::int64_t End() const { return offset + length; }

    /// Returns the bytes that `sum` covers.
    std::int64_t SumLength() const { return kind == EKind::Segment ? headerLength : length; }

    /// Returns its name for people, such as "Series 1 > well 11, times 0 to 300".
    std::string Name() const;
};

/// Writes a seal.
class CSealWriter {
 public:
    using CSink = std::function<void(std::string_view)>;

    /// Writes the beginning of a seal for a file with this name, kind and size.
    CSealWriter(CSink sink, std::string_view name, std::string_view kind, std::int64_t size);

    /// Adds a part. Requires: it begins where the previous one ends.
    void Add(const CSealedPart& part);

    /// Writes the end. Requires: the parts cover the whole file.
    void Finish(const std::string& sha256);

 private:
    void Write(std::string_view text);

    CSink m_sink;
    CXxh3 m_sum;
    bool m_hasParts = false;
};

/// Why a seal can't be used.
class CSealFailure : public CFailure {
 public:
    using CFailure::CFailure;
};

/// Reads a seal. Memory is independent of the number of parts.
class CSealReader {
 public:
    /// Throws `CSealFailure` if the seal can't be read, isn't exactly as a writer writes it, or has a newer version.
    explicit CSealReader(const std::string& path);

    /// Returns the name that the file had when it was sealed.
    const std::string& Name() const { return m_name; }
    /// Returns the size of the sealed file.
    std::int64_t Size() const { return m_size; }
    /// Returns its SHA-256 as hexadecimal digits.
    const std::string& Sha256() const { return m_sha256; }

    /// Reads the next part. Returns false after the last one.
    [[nodiscard]] bool Next(CSealedPart& part);

 private:
    [[noreturn]] void RefuseDamage() const;
    void CompareWithRewritten();
    bool ReadLine(std::string& line);
    void ReadMember(std::string_view key, auto& value);
    void ReadVersion();

    std::string m_path;
    vxfileio::helpers::CFile m_file;
    std::string m_block;
    std::size_t m_passed = 0;     ///< The number of bytes of the block already used.
    std::int64_t m_blockEnd = 0;  ///< Offset of the byte after the block.
    std::string m_name;
    std::int64_t m_size = 0;
    std::int64_t m_reached = 0;  ///< The end of the last part in the sealed file.
    std::string m_sha256;
};

}  // namespace vxfile
