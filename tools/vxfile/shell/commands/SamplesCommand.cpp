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
        list("--recording", m_choice.recordings, "Only recordings with this number; several with commas")
            ->transform(Wanted(number, "the number of a recording"));
        list("--well", m_choice.wells, "Only this well ID; several with commas")
            ->transform(Wanted(number, "the ID of a well, which is a whole number"));
        app.add_option("--from", m_choice.from, "Only samples of this time or later")->transform(time);
        app.add_option("--to", m_choice.to, "Only samples of this time or earlier")->transform(time);
        auto* const csv = app.add_flag("--csv", m_csv, "Text with commas (the default)");
        auto* const tsv = app.add_flag("--tsv", m_tsv, "Text with tabs")->excludes(csv);
        auto* const npy = app.add_flag("--npy", m_npy, "An array per well, for numpy")->excludes(csv)->excludes(tsv);
        app.add_flag("--table", m_table, "With --npy: one table of all, with tasks, recordings, wells and times")
            ->needs(npy);
        app.add_flag("--units", m_form.units, "In physical units instead of steps of the converter");
        app.add_option("-o,--output", m_form.target,
                       "Output file; - for standard output (the default). With {well} in the name, one file per well");
        app.add_flag("--force", m_form.replace, "Replace existing files");
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
            Complain(name + " is unfinished; run 'vxfile recover' to get its samples.");
        const auto wells = source.MissingWells();
        if (!wells.empty()) Complain(source.Path() + " has no samples of these chosen wells: " + ListText(wells) + ".");
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
