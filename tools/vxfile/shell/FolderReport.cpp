#include "tools/vxfile/shell/FolderReport.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <span>
#include <system_error>

#include "tools/vxfile/page/IndexPage.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/FolderWalk.h"
#include "tools/vxfile/shell/PlateReport.h"
#include "tools/vxfile/system/ExitStatus.h"
#include "tools/vxfile/system/Hex.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/Output.h"
#include "tools/vxfile/system/Xxh3.h"
#include "verify/Failure.h"
#include "verify/WholeText.h"
#include "vxfileio/base/FileExtensions.h"

namespace vxfile {

namespace {

namespace fs = std::filesystem;

/// Returns a checksum of everything that a page depends on: the program and the files with their names.
std::string ChecksumOf(const CRunPaths& paths) {
    CXxh3 sum;
    const auto add = [&](const std::string& bytes) {
        const std::string size = std::to_string(bytes.size()) + ' ';
        sum.Add(std::as_bytes(std::span(size)));
        sum.Add(std::as_bytes(std::span(bytes)));
    };
    add(VXFILE_VERSION);
    for (const std::string& path : {paths.results, paths.settings, paths.recording}) {
        CheckInterrupt();
        add(fs::path(path).filename().string());
        if (!path.empty()) add(ReadWholeText(path));
    }
    return HexOf(sum.Take());
}

/// The folder of an index.
class CFolderReport {
 public:
    /// Requires: `results` outlives this object.
    CFolderReport(const std::vector<std::string>& results, std::string folder, bool replace)
        : m_results(results), m_folder(std::move(folder)), m_replace(replace) {
        std::error_code error;
        fs::create_directories(m_folder, error);
        if (error) throw CFailure("Can't make the folder " + m_folder + ": " + error.message() + '.');
        const auto isHere = [&](const std::string& path) {
            std::error_code none;
            return fs::equivalent(fs::canonical(path, none).parent_path(), m_folder, none);
        };
        std::ranges::copy_if(results, std::back_inserter(m_resultsHere), isHere);
        if (!fs::exists(PathOf(kIndex), error)) return;
        for (const page::CIndexedPlate& entry : page::EntriesOf(ReadWholeText(PathOf(kIndex))))
            m_earlier[entry.page] = entry;
        RefusePlace(PathOf(kIndex), m_replace || !m_earlier.empty());  // before any page is made
    }

    void Add(const std::string& results) {
        page::CIndexedPlate entry;
        const std::string name = FreeName(fs::path(results).stem().string());
        const std::string failure = FailureOf([&] { entry = EntryOf(results, name); });
        if (!failure.empty()) {
            Complain(failure);
            m_status = kTrouble;
            entry.results = Readable(fs::path(results).filename().string());
            entry.state = Readable(failure);
            entry.isSound = false;
        }
        m_entries.push_back(entry);
    }

    /// Writes the index and returns the exit status.
    int Finish() {
        Write(kIndex, page::IndexPage(m_entries), !m_earlier.empty());
        std::cout << PathOf(kIndex) << ": " << Counted(m_entries.size(), "plate") << ", " << Counted(m_made, "page")
                  << " made\n";
        return m_status;
    }

 private:
    static constexpr const char* kIndex = "index.html";

    std::string PathOf(const std::string& name) const { return (fs::path(m_folder) / name).string(); }

    /// Returns a name for a page that no other page of this run has, not even with other case in ASCII letters.
    std::string FreeName(const std::string& stem) {
        std::string name = stem + ".html";
        for (int number = 2; !m_names.insert(Lowered(name)).second; ++number)
            name = stem + '-' + std::to_string(number) + ".html";
        return name;
    }

    page::CIndexedPlate EntryOf(const std::string& results, const std::string& name) {
        const CRunPaths paths = WithNeighbours({results});
        const std::string inputs = ChecksumOf(paths);
        const auto earlier = m_earlier.find(name);
        std::error_code ignored;
        const bool isKept = earlier != m_earlier.end() && earlier->second.inputs == inputs;
        if (isKept && fs::is_regular_file(PathOf(name), ignored)) {
            Judge(earlier->second.isSound);
            return earlier->second;
        }
        CPlateReport report = MakePlateReport(paths);
        Write(name, report.page, earlier != m_earlier.end());
        ++m_made;
        Judge(report.entry.isSound);
        std::ranges::for_each(report.notes, Complain);
        report.entry.page = name;
        report.entry.inputs = inputs;
        return report.entry;
    }

    /// Writes a file of this folder.
    void Write(const std::string& name, const std::string& text, bool isOurs) const {
        const bool replace = m_replace || isOurs;
        COutput output({.path = PathOf(name), .sources = SourcesFor(PathOf(name)), .replace = replace});
        output.Write(text);
        output.Finish();
        COutput* const finished = &output;
        COutput::Commit({&finished, 1});
    }

    /// Returns the results that a file of this folder may be. A symbolic link may lead to any of them.
    const std::vector<std::string>& SourcesFor(const std::string& path) const {
        std::error_code none;
        return fs::is_symlink(fs::symlink_status(path, none)) ? m_results : m_resultsHere;
    }

    void Judge(bool isSound) {
        if (!isSound) m_status = std::max<int>(m_status, kFindings);
    }

    const std::vector<std::string>& m_results;
    std::string m_folder;
    bool m_replace;
    std::vector<std::string> m_resultsHere;                ///< Results may have any name, also that of a page.
    std::map<std::string, page::CIndexedPlate> m_earlier;  ///< The entries of the existing index, by page.
    std::set<std::string> m_names = {kIndex};              ///< Of all files of this run, in small letters.
    std::vector<page::CIndexedPlate> m_entries;
    std::size_t m_made = 0;
    int m_status = kSound;
};

}  // namespace

std::vector<std::string> ResultsIn(const std::vector<std::string>& paths) {
    std::vector<std::string> results;
    std::set<fs::path> known;
    std::error_code ignored;
    const auto add = [&](const std::string& path) {
        std::error_code failure;
        const fs::path whole = fs::weakly_canonical(path, failure);
        if (known.insert(failure ? fs::path(path) : whole).second) results.push_back(path);
    };
    for (const std::string& path : paths) {
        if (!fs::is_directory(path, ignored)) {
            add(path);
            continue;
        }
        for (const CFolderEntry& entry : WalkFolder(path).entries) {
            EFileKind kind = EFileKind::Unknown;
            const std::string failure =
                entry.failure.empty() ? FailureOf([&] { kind = FileKindOf(entry.path); }) : entry.failure;
            const bool hasName = Lowered(fs::path(entry.path).extension().string()) == vxfileio::kResultsExtension;
            if (kind == EFileKind::Results || (hasName && failure.empty())) add(entry.path);
            if (!failure.empty()) Complain(failure);
        }
    }
    return results;
}

int ReportOnFolder(const std::vector<std::string>& results, const std::string& folder, bool replace) {
    CFolderReport report(results, folder, replace);
    for (const std::string& path : results)
        report.Add(path);
    return report.Finish();
}

}  // namespace vxfile
