#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vxfile/raw/SampleSink.h"
#include "tools/vxfile/raw/SampleSource.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/PlateOptions.h"
#include "verify/Failure.h"

namespace vxfile {

namespace {

constexpr CCommandText kSamplesText = {
    .name = "samples",
    .purpose = "Write samples as CSV, TSV or NPY",
    .details =
        "Writes the samples of a raw data file, or of the chosen tasks, recordings, wells and times: as text with one "
        "line per sample (task, recording, well, time, sample), or as arrays for numpy. An array has all chosen "
        "samples of a well, one recording after the other; use --table to keep task, recording and time. With "
        "--units a sample is (sample - ADZero) * UnitsPerAD of its well. Times are whole numbers of the instrument's "
        "time unit.",
    .example = "vxfile samples run.vxd --task Series --well 11 --units --npy -o well11.npy",
    .statuses =
        "  0  all chosen samples were written\n"
        "  1  written, but a chosen recording is unfinished, a chosen well has no samples, or\n"
        "     something is in doubt or missing; standard error says what\n"
        "  2  the file is damaged, there are no samples, the options contradict each other,\n"
        "     or an output file exists; no new file is left",
};

constexpr std::string_view kTime = "a time, which is a whole number of the instrument's time unit";

class CSamplesCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kSamplesText; }

    std::vector<COption> Options() override {
        std::vector<COption> options = {
            {.names = "FILE", .target = &m_path, .text = "The raw data file", .isRequired = true},
            {.names = "--recording",
             .target = &m_choice.recordings,
             .text = "Only recordings with this number; several with commas",
             .wanted = "the number of a recording"},
            {.names = "--from",
             .target = &m_choice.from,
             .text = "Only samples of this time or later",
             .wanted = kTime},
            {.names = "--to", .target = &m_choice.to, .text = "Only samples of this time or earlier", .wanted = kTime},
            {.names = "--csv", .target = &m_csv, .text = "Text with commas (the default)"},
            {.names = "--tsv", .target = &m_tsv, .text = "Text with tabs", .excludes = {"--csv"}},
            {.names = "--npy",
             .target = &m_npy,
             .text = "An array per well, for numpy",
             .excludes = {"--csv", "--tsv"}},
            {.names = "--table",
             .target = &m_table,
             .text = "With --npy: one table of all, with tasks, recordings, wells and times",
             .needs = {"--npy"}},
            {.names = "--units",
             .target = &m_form.units,
             .text = "In physical units instead of steps of the converter"},
            {.names = "-o,--output",
             .target = &m_form.target.path,
             .text = "Output file; - for standard output (the default). With {well} in the name, one file per well"},
            {.names = "--force", .target = &m_form.target.replace, .text = "Replace existing files"},
        };
        return Together(std::move(options), m_plate.Options(true));
    }

    int Run() override {
        using enum CSampleForm::EKind;
        m_form.kind = m_tsv ? Tsv : !m_npy ? Csv : m_table ? NpyTable : NpyArray;
        const CPlateView view = m_plate.ViewOf(m_path);
        m_form.target.sources = {m_path, view.labels.Source()};
        TakeView(view);
        try {
            return Write(view);
        } catch (const CFailure& failure) {
            throw CFailure(view.labels.AddedTo(failure.what()));
        }
    }

 private:
    /// Writes the samples. Returns the exit status.
    int Write(const CPlateView& view) {
        CSampleSource source(m_path, m_choice);
        const auto sink = MakeSampleSink(m_form, source);
        CProgress progress("Writing samples", source.Size());
        source.ForEach([&](const CPiece& piece) {
            sink->Put(piece);
            progress.Reach(piece.position + static_cast<std::int64_t>(piece.samples.size_bytes()));
        });
        source.RefuseNothing();
        const int status = TellMissing(source, view);
        sink->Commit();
        return status;
    }

    /// Chooses what the words of the plate mean, and adds its columns if there are such words. Requires: `view`
    /// outlives the writing.
    void TakeView(const CPlateView& view) {
        m_choice.plate = view.choice;
        m_form.ticksPerSecond = view.ticksPerSecond;
        if (!m_plate.HasPlateWords()) return;
        m_form.labels = &view.labels;
        if (view.labels.AreKnown()) Complain(SourceText(view));
    }

    /// Tells what is in doubt or missing of what was chosen, beside what is there.
    static int TellMissing(const CSampleSource& source, const CPlateView& view) {
        auto doubts = source.Doubts();
        doubts.insert(doubts.end(), view.doubts.begin(), view.doubts.end());
        for (const auto& doubt : doubts)
            Complain(view.labels.AddedTo(doubt));
        const auto unfinished = source.Unfinished();
        for (const auto& name : unfinished)
            Complain(name + " is unfinished; run 'vxfile recover' to get its samples.");
        const auto wells = source.MissingWells();
        if (!wells.empty())
            Complain(source.Path() + " has no samples of these chosen wells: " + view.labels.List(wells) + ".");
        return doubts.empty() && unfinished.empty() && wells.empty() ? kSound : kFindings;
    }

    std::string m_path;
    CPlateOptions m_plate;
    CSampleChoice m_choice;
    CSampleForm m_form;
    bool m_csv = false;  ///< What is taken anyway.
    bool m_tsv = false;
    bool m_npy = false;
    bool m_table = false;
};

}  // namespace

std::unique_ptr<CCommand> MakeSamplesCommand() { return std::make_unique<CSamplesCommand>(); }

}  // namespace vxfile
