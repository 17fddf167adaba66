#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "tools/vxfile/samples/SampleSource.h"

namespace vxfile {

/// How samples are written.
struct CSampleForm {
    enum class EKind { Csv, Tsv, NpyArrays, NpyTable };

    EKind kind = EKind::Csv;
    bool units = false;        ///< In the channel's physical unit instead of steps of the converter.
    std::string source;        ///< The file that is read.
    std::string target = "-";  ///< A path, or `-` for standard output. Arrays of several wells need `{well}` in it.
};

/// Takes samples, piece by piece, and writes them in one of the forms.
class CSampleSink {
 public:
    CSampleSink() = default;
    virtual ~CSampleSink() = default;
    CSampleSink(const CSampleSink&) = delete;
    CSampleSink& operator=(const CSampleSink&) = delete;

    /// Takes samples that follow one another. `piece` is theirs, and `time` that of the first one.
    virtual void Put(const CPiece& piece, std::int64_t time, std::span<const std::uint16_t> samples) = 0;
    /// Ends all files; without it there are none.
    virtual void Commit() = 0;
};

/// Makes the sink for a form. An array's length stands ahead of it, so the headers may be gone through for counting.
/// Throws `CFailure` if the form can't hold what is chosen.
std::unique_ptr<CSampleSink> MakeSampleSink(const CSampleForm& form, const CSampleSource& source);

}  // namespace vxfile
