#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/vxfile/plate/PlateLabels.h"
#include "tools/vxfile/raw/SampleSource.h"
#include "tools/vxfile/system/Output.h"

namespace vxfile {

/// How samples are written.
struct CSampleForm {
    enum class EKind { Csv, Tsv, NpyArray, NpyTable };

    EKind kind = EKind::Csv;
    bool units = false;                     ///< In the channel's physical unit instead of converter steps.
    CTarget target = {};                    ///< If its path has `{well}`, each well gets an output of its own.
    std::optional<std::int32_t> well = {};  ///< The well of this target if each well has its own.
    const CPlateLabels* labels = nullptr;   ///< Adds the columns `label` and `dose` to tables; null for none.
    double ticksPerSecond = 0;              ///< Adds the column `seconds` to tables; 0 for none.
};

/// Writes samples, piece by piece, in one of the formats.
class CSampleSink {
 public:
    CSampleSink() = default;
    virtual ~CSampleSink() = default;
    CSampleSink(const CSampleSink&) = delete;
    CSampleSink& operator=(const CSampleSink&) = delete;

    /// Writes the samples of a piece.
    virtual void Put(const CPiece& piece) = 0;
    /// Finishes all outputs. Either all files appear or none; without this call, none does.
    void Commit();
    /// Finishes all outputs and adds them to `outputs`, for the caller to commit.
    virtual void Finish(std::vector<COutput*>& outputs) = 0;
};

/// Returns the sink for a format. An array begins with its length. If that can't be filled in later, as in a pipe,
/// reads all headers of the source first. Throws `CFailure` if the format can't hold the chosen samples. The source
/// must outlive the sink.
std::unique_ptr<CSampleSink> MakeSampleSink(const CSampleForm& form, CSampleSource& source);

}  // namespace vxfile
