#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/vxfile/raw/SampleSource.h"
#include "tools/vxfile/system/Output.h"

namespace vxfile {

/// How samples are written.
struct CSampleForm {
    enum class EKind { Csv, Tsv, NpyArray, NpyTable };

    EKind kind = EKind::Csv;
    bool units = false;                     ///< In the channel's physical unit instead of steps of the converter.
    CTarget target = {};                    ///< With `{well}` in its path each well has an output of its own.
    std::optional<std::int32_t> well = {};  ///< The one whose target this is, if each has its own.
};

/// Takes samples, piece by piece, and writes them in one of the forms.
class CSampleSink {
 public:
    CSampleSink() = default;
    virtual ~CSampleSink() = default;
    CSampleSink(const CSampleSink&) = delete;
    CSampleSink& operator=(const CSampleSink&) = delete;

    /// Is told of a piece before it is read. It stays until the next one.
    virtual void Begin(const CPiece& piece) = 0;
    /// Takes samples of this piece that follow one another. `time` is that of the first one.
    virtual void Put(std::int64_t time, std::span<const std::uint16_t> samples) = 0;
    /// Ends all outputs: all files appear, or none. Without it there are none.
    void Commit();
    /// Finishes all outputs and adds them to a list. They wait for being committed.
    virtual void Finish(std::vector<COutput*>& outputs) = 0;
};

/// Makes the sink for a form. The length of an array stands ahead of it: where that can't be put in later, as in a
/// pipe, the source is gone through for counting. Throws `CFailure` if the form can't hold what is chosen. The source
/// outlives the sink.
std::unique_ptr<CSampleSink> MakeSampleSink(const CSampleForm& form, CSampleSource& source);

}  // namespace vxfile
