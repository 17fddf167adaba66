#include <algorithm>
#include <cstddef>
#include <deque>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/Table.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FolderWalk.h"
#include "tools/vxfile/shell/TableForm.h"
#include "tools/vxfile/shell/catalog/CatalogEntry.h"
#include "tools/vxfile/shell/catalog/CatalogRuns.h"
#include "tools/vxfile/shell/catalog/CatalogStore.h"
#include "tools/vxfile/shell/catalog/InOrder.h"
#include "verify/Failure.h"

namespace vxfile {

namespace {

namespace fs = std::filesystem;

constexpr CCommandText kCatalogText = {
    .name = "catalog",
    .purpose = "List all files below folders, with what their headers say",
    .details =
        "Prints one row per file, sorted by path: kind, size, time, Guid, plate, compound and state; with --recordings "
        "one row per recording. Only headers are read. The files of one run have the same Guid. With --sqlite the rows "
        "go into a database, and a later run reads only files that changed. --columns describes the columns.",
    .example = "vxfile catalog /data/plates --sqlite plates.db",
    .statuses =
        "  0  all files are finished or unfinished\n"
        "  1  some are damaged\n"
        "  2  some files or folders can't be read, or there are none",
};

/// Returns whether this is a file, which has a stamp, or may be one, as the system refuses to say what it is.
bool MayBeFile(const std::string& path, const CStamp& stamp) {
    std::error_code none;
    return !stamp.modified.empty() || fs::status(path, none).type() == fs::file_type::none;
}

class CCatalogCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kCatalogText; }

    std::vector<COption> Options() override {
        const std::vector<COption> own = {
            {.names = "FOLDER", .target = &m_arguments, .text = "Folders, or files", .isRequired = true},
            {.names = "--recordings", .target = &m_hasRecordings, .text = "One row per recording instead of per file"},
        };
        return Together(
            Together(own, m_form.Options(false)),
            {{.names = "--sqlite",
              .target = &m_database,
              .text = "Create or update this database, which has both tables",
              .value = "FILE",
              .excludes = {"--csv", "--tsv", "--jsonl", "--output", "--force", "--recordings", "--columns"}},
             {.names = "-j,--jobs",
              .target = &m_threads,
              .text = "Read this many files at once; by default one per processor",
              .wanted = "a number of files from 1",
              .least = 1}});
    }

    int Run() override {
        if (m_form.Describes()) {
            WriteColumns(m_form.Form(), m_form.Target(), Columns());
            return kSound;
        }
        ListFiles();
        if (m_database.empty()) {
            Write();
        } else {
            Update();
        }
        PrintSummary();
        return CountOf(kUnreadable) != 0 ? kTrouble : CountOf(kDamaged) != 0 ? kFindings : kSound;
    }

 private:
    std::vector<CColumn> Columns() const {
        std::vector<CColumn> columns(FileColumns().begin(), FileColumns().end());
        if (m_hasRecordings) columns.insert(columns.end(), RecordingColumns().begin(), RecordingColumns().end());
        columns.insert(columns.end(), RunColumns().begin(), RunColumns().end());
        return columns;
    }

    /// Finds the files. A database gets absolute paths, since it outlives the current folder.
    void ListFiles() {
        std::error_code none;
        for (const auto& argument : m_arguments) {
            fs::path path = m_database.empty() ? fs::path(argument) : fs::absolute(argument).lexically_normal();
            if (!path.has_filename() && path.has_relative_path()) path = path.parent_path();
            if (fs::exists(path, none) && !fs::is_directory(path, none)) {
                m_paths.push_back(path.string());
                continue;
            }
            m_folders.push_back(path.string());
            for (auto& entry : WalkFolder(path.string()).entries) {
                if (!entry.failure.empty()) Complain(entry.failure);
                (entry.failure.empty() ? m_paths : m_unreadable).push_back(entry.path);
            }
        }
        std::ranges::sort(m_paths);
        m_paths.erase(std::unique(m_paths.begin(), m_paths.end()), m_paths.end());
        m_states[std::string(kUnreadable)] = m_unreadable.size();
        if (m_paths.empty() && m_unreadable.empty())
            throw CFailure(m_arguments.front() + " has no file of a known kind.");
    }

    /// Scans files, and calls `put` with each that is still there.
    template <class Put>
    void Scan(const std::vector<std::string>& paths, Put put) {
        CProgress progress("Reading headers", static_cast<std::int64_t>(paths.size()));
        const std::size_t processors = std::max(std::thread::hardware_concurrency(), 1U);
        const auto threads = static_cast<std::size_t>(std::clamp<std::int64_t>(m_threads, 0, kMostThreads));
        ForEachInOrder(
            paths.size(), threads == 0 ? processors : threads, [&](std::size_t i) { return ScanFile(paths[i]); },
            [&](std::size_t i, CCatalogEntry entry) {
                progress.Reach(static_cast<std::int64_t>(i));
                if (MayBeFile(paths[i], entry.stamp)) put(entry);
            });
    }

    /// Writes all rows once all files are known, since each has the other files of its run.
    void Write() {
        std::error_code none;
        if (m_form.Target().path != "-" && fs::exists(m_form.Target().path, none)) {
            for (const auto& path : m_paths)
                RefuseTarget(m_form.Target().path, path);
        }
        const std::vector<CColumn> columns = Columns();
        const auto writer = MakeTableWriter(m_form.Form(), m_form.Target(), columns, {});
        std::deque<CCatalogEntry> entries;
        Scan(m_paths, [&](CCatalogEntry& entry) {
            ++m_states[std::string(entry.state)];
            m_runs.Add(entries.emplace_back(std::move(entry)));
        });
        for (const CCatalogEntry& entry : entries)
            WriteRows(*writer, entry);
        writer->Commit();
    }

    void WriteRows(CTableWriter& writer, const CCatalogEntry& entry) const {
        const CCells file = CellsOf(entry);
        const CCells run = m_runs.CellsOf(entry);
        std::string doseText;
        const auto write = [&](const CCatalogRecording* recording) {
            CCells row = file;
            const CCells cells = m_hasRecordings ? CellsOf(recording, doseText) : CCells();
            row.insert(row.end(), cells.begin(), cells.end());
            row.insert(row.end(), run.begin(), run.end());
            writer.Put(row);
        };
        if (!m_hasRecordings) return write(nullptr);
        if (entry.recordings.empty()) write(nullptr);
        for (const auto& recording : entry.recordings)
            write(&recording);
    }

    void Update() {
        const auto store = OpenCatalogStore(m_database);
        for (const auto& folder : m_unreadable)
            store->KeepBelow(PathText(folder));
        std::vector<std::string> changed;
        for (auto& path : m_paths) {
            const CStamp stamp = StampOf(path);
            if (MayBeFile(path, stamp) && !store->IsKnown(PathText(path), stamp)) changed.push_back(std::move(path));
        }
        std::uint64_t put = 0;
        Scan(changed, [&](const CCatalogEntry& entry) {
            store->Put(entry);
            ++put;
        });
        for (const auto& folder : m_folders)
            store->RemoveOthersBelow(PathText(folder));
        for (const auto& [state, count] : store->States())
            m_states[state] += count;
        store->Commit();
        m_note = ", " + std::to_string(put) + " of them read now";
    }

    std::uint64_t CountOf(std::string_view state) { return m_states[std::string(state)]; }

    void PrintSummary() {
        std::uint64_t files = 0;
        for (const auto& [state, count] : m_states)
            files += count;
        std::cerr << Counted(files, "file") << m_note << ": ";
        for (const auto state : {kFinished, kUnfinished, kDamaged})
            std::cerr << CountOf(state) << ' ' << state << ", ";
        std::cerr << CountOf(kUnreadable) << ' ' << kUnreadable << '\n';
        if (m_runs.Count() == 0) return;
        std::cerr << Counted(m_runs.Count(), "run") << " by Guid, " << m_runs.Whole()
                  << " of them with recording, settings and results\n";
    }

    static constexpr std::int64_t kMostThreads = 64;

    std::vector<std::string> m_arguments;
    bool m_hasRecordings = false;
    CTableForm m_form;
    std::string m_database;
    std::int64_t m_threads = 0;
    std::vector<std::string> m_paths;       ///< The files.
    std::vector<std::string> m_folders;     ///< Where they were searched.
    std::vector<std::string> m_unreadable;  ///< Folders.
    std::map<std::string, std::uint64_t> m_states;
    CCatalogRuns m_runs;
    std::string m_note;
};

}  // namespace

std::unique_ptr<CCommand> MakeCatalogCommand() { return std::make_unique<CCatalogCommand>(); }

}  // namespace vxfile
