#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vxfile/document/DocumentHead.h"
#include "tools/vxfile/raw/RefuseUnknown.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Table.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/PlateOptions.h"
#include "tools/vxfile/shell/ResultsPlate.h"
#include "tools/vxfile/shell/TableForm.h"
#include "verify/Failure.h"
#include "vxfileio/frame/VXFileIO.h"

namespace vxfile {

using vxfileio::results::ColumnsOf;
using vxfileio::results::CResultsRows;
using vxfileio::results::EResultsTable;
using vxfileio::results::ResultsTableOf;

namespace {

constexpr CCommandText kTableText = {
    .name = "table",
    .purpose = "Write responses, means, beats or averages as CSV, TSV, JSON lines or NPY",
    .details =
        "Writes one row per value of a results file: as text, as a JSON object per line, or as a structured array for "
        "numpy. With --settings the rows also have which wells and responses count. --columns describes the columns, "
        "their types and units, which depend only on the command line. Memory doesn't grow with the file.",
    .example = "vxfile table run.vxr --settings run.vxs --what responses -o responses.csv",
    .statuses =
        "  0  all rows were written\n"
        "  1  written, but a file is cut or damaged, so that rows are missing, or the settings are\n"
        "     those of another run\n"
        "  2  nothing was written: a file can't be read or is of another kind, or the output exists",
};

class CTableCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kTableText; }

    std::vector<COption> Options() override {
        std::vector<COption> options = {
            {.names = "RESULTS", .target = &m_path, .text = "The results file", .isRequired = true},
            {.names = "--what", .target = &m_what, .text = "responses (the default), means, beats or averages"},
        };
        return Together(Together(std::move(options), m_form.Options(true)), m_plate.Options(true));
    }

    int Run() override {
        const auto table = ResultsTableOf(m_what);
        if (!table) throw CFailure("There is no table '" + m_what + "'; choose responses, means, beats or averages.");
        if (*table == EResultsTable::Means && m_plate.ChooseWells())
            throw CFailure("Means are those of all wells; leave out --well, or choose another table.");
        const auto columns = ColumnsOf(*table, m_plate.NameSettings(), m_plate.ShowSeconds());
        if (m_form.Describes()) {
            WriteColumns(m_form.Form(), m_form.Target(), columns);
            return kSound;
        }
        RequireKind(EFileKind::Results, m_path);
        TakeView(*table);
        m_form.Target().sources = {m_path, m_view.labels.Source()};
        const auto writer = MakeTableWriter(m_form.Form(), m_form.Target(), columns, [&] { return CountRows(*table); });
        const std::string damage = Walk(*table, [&](auto row) { writer->Put(row); });
        if (!damage.empty()) m_view.doubts.push_back(m_path + ": " + damage);
        writer->Commit();
        std::ranges::for_each(m_view.doubts, Complain);
        return m_view.doubts.empty() ? kSound : kFindings;
    }

 private:
    /// Finds out what the words of the plate mean, and reports which labels aren't those of the results. Means have no
    /// labels, so they need settings only if these are named.
    void TakeView(EResultsTable table) {
        const CResultsPlate plate = m_plate.AreChoosing() ? PlateOfResults(m_path) : CResultsPlate();
        const bool isOfWells = table != EResultsTable::Means;
        const std::string guid = isOfWells || m_plate.NameSettings() ? GuidOfDocument(m_path) : std::string();
        try {
            m_view = m_plate.ViewOf({m_path, guid}, plate.labels, m_settings);
            if (m_plate.AreChoosing()) RefuseUnknown(m_view, m_path, plate.recordings);
        } catch (const CFailure& failure) {
            if (plate.damage.empty()) throw;
            throw CFailure(std::string(failure.what()) + ' ' + m_path + ": " + plate.damage);
        }
        m_hasSettings = m_view.labels.AreKnown() && m_view.labels.Source() != m_path;
        if (m_hasSettings && isOfWells)
            Complain("Labels that the results lack are those of " + Readable(m_view.labels.Source()) + '.');
    }

    /// Passes each row of the chosen tasks, doses and wells. Returns what is wrong with the results.
    std::string Walk(EResultsTable table, CResultsRows::CPut put) const {
        CResultsRows rows(table,
                          {.plate = m_hasSettings ? m_settings.GetRecordPlateProperty() : nullptr,
                           .analyzer = m_plate.NameSettings() ? m_settings.GetAnalyzerProperty() : nullptr,
                           .ticksPerSecond = m_view.ticksPerSecond},
                          std::move(put));
        return WalkChosen(m_path, m_view.choice, rows);
    }

    std::uint64_t CountRows(EResultsTable table) const {
        std::uint64_t count = 0;
        static_cast<void>(Walk(table, [&](auto /*row*/) { ++count; }));
        return count;
    }

    std::string m_path;
    std::string m_what = "responses";
    CTableForm m_form;
    CPlateOptions m_plate;
    CPlateView m_view;
    CISettingsReader m_settings;  ///< Those that are used.
    bool m_hasSettings = false;
};

}  // namespace

std::unique_ptr<CCommand> MakeTableCommand() { return std::make_unique<CTableCommand>(); }

}  // namespace vxfile
