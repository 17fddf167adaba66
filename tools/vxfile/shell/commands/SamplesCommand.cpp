#include <algorithm>
#include <string>
#include <vector>

#include "tools/vxfile/raw/SampleSink.h"
#include "tools/vxfile/raw/SampleSource.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/CommandLine.h"
#include "tools/vxfile/shell/commands/Commands.h"

namespace vxfile {

namespace {

constexpr CCommandText kText = {
    .name = "samples",
    .purpose = "Write samples as CSV, TSV or NPY",
    .details =
        "Takes the samples of a raw data file, or those of the tasks, recordings, wells and times that are "
        "chosen, and writes them: as text with a line per sample (task, recording, well, time, sample), or as "
        "arrays for numpy. An array has all samples of a well that were chosen, one recording behind the other; what "
        "is of which, a --table tells. With --units a sample is (sample - ADZero) * UnitsPerAD of its well. Times are "
        "whole numbers of the instrument's time unit.",
    .example = "vxfile samples run.vxd --task Series --well 11 --units --npy -o well11.npy",
    .statuses =
        "  0  all that was chosen is written\n"
        "  1  written, but a chosen recording was never finished, a chosen well has no samples, or something is\n"
        "     in doubt or missing, as standard error tells\n"
        "  2  the file is damaged, there are no samples, the options don't go together, or a file is there; no new\n"
        "     file is left",
};

class CSamplesCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kText; }

    void AddOptions(CLI::App& app) override {
        app.add_option("FILE", m_path, "The raw data file")->required();
        const auto list = [&](const char* name, auto& values, const char* text) {
            return app.add_option(name, values, text)->delimiter(',')->allow_extra_args(false);
        };
        const CLI::Validator number = WholeNumber<std::int32_t>();
        const CLI::Validator time =
            Wanted(WholeNumber<std::int64_t>(), "a time, which is a whole number of the instrument's time unit");
        list("--task", m_choice.tasks, "Only recordings of this task; several with commas, as A,B");
        list("--recording", m_choice.recordings, "Only recordings with this number; likewise")
            ->transform(Wanted(number, "the number of a recording"));
        list("--well", m_choice.wells, "Only this well ID; likewise")
            ->transform(Wanted(number, "the ID of a well, which is a whole number"));
        app.add_option("--from", m_choice.from, "Only samples of this time or later")->transform(time);
        app.add_option("--to", m_choice.to, "Only samples of this time or earlier")->transform(time);
        auto* const csv = app.add_flag("--csv", m_csv, "Text with commas (this is the form if none is told)");
        auto* const tsv = app.add_flag("--tsv", m_tsv, "Text with tabs")->excludes(csv);
        auto* const npy = app.add_flag("--npy", m_npy, "An array per well, for numpy")->excludes(csv)->excludes(tsv);
        app.add_flag("--table", m_table, "With --npy: one table of all, with tasks, recordings, wells and times")
            ->needs(npy);
        app.add_flag("--units", m_form.units, "In physical units instead of steps of the converter");
        app.add_option("-o,--output", m_form.target,
                       "Where to write; - is standard output. With {well} in the name each well has a file of its own");
        app.add_flag("--force", m_form.replace, "Replace files that are there already");
    }

    int Run() override {
        using enum CSampleForm::EKind;
        m_form.kind = m_tsv ? Tsv : !m_npy ? Csv : m_table ? NpyTable : NpyArray;
        m_form.source = m_path;
        CSampleSource source(m_path, m_choice);
        const auto sink = MakeSampleSink(m_form, source);
        CProgress progress("Writing samples", source.Size());
        source.ForEach([&](const CPiece& piece) {
            std::int64_t time = piece.time;
            std::int64_t position = piece.position;
            sink->Begin(piece);
            source.Read(piece, [&](std::span<const std::uint16_t> samples) {
                sink->Put(time, samples);
                time = piece.TimeBehind(time, samples.size());
                position += static_cast<std::int64_t>(samples.size_bytes());
                progress.Reach(position);
            });
        });
        source.RefuseNothing();
        const int status = TellMissing(source);
        sink->Commit();
        return status;
    }

 private:
    /// Tells what is in doubt or missing of what was chosen, beside what is there.
    static int TellMissing(const CSampleSource& source) {
        const auto doubts = source.Doubts();
        std::ranges::for_each(doubts, Complain);
        const auto unfinished = source.Unfinished();
        for (const auto& name : unfinished)
            Complain(name + " was never finished; vxfile recover gives its samples.");
        const auto wells = source.MissingWells();
        if (!wells.empty())
            Complain(source.Path() + " has no samples of these wells among those chosen: " + ListText(wells) + ".");
        return doubts.empty() && unfinished.empty() && wells.empty() ? kSound : kFindings;
    }

    std::string m_path;
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
