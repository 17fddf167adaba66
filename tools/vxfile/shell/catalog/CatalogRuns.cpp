#include "tools/vxfile/shell/catalog/CatalogRuns.h"

#include <algorithm>
#include <filesystem>

#include "tools/vxfile/shell/FileKind.h"

namespace vxfile {

namespace {

constexpr std::array kKinds = {EFileKind::RawData, EFileKind::Settings, EFileKind::Results};

constexpr CColumn kColumns[] = {
    {"run_raw", EColumnType::Text, "", "The path of the raw data file of the same run, by Guid"},
    {"run_settings", EColumnType::Text, "", "The path of its settings file"},
    {"run_results", EColumnType::Text, "", "The path of its results file"},
};

/// The keys of a file in the maps.
struct CKeys {
    explicit CKeys(const CCatalogEntry& entry) {
        const std::filesystem::path path(entry.path);
        folder = entry.guid + '\n' + path.parent_path().string();
        name = folder + '\n' + path.stem().string();
    }

    std::string folder;
    std::string name;
};

}  // namespace

std::span<const CColumn> RunColumns() { return kColumns; }

void CCatalogRuns::Add(const CCatalogEntry& entry) {
    const auto* const kind = std::ranges::find(kKinds, entry.kind, WordOf);
    if (entry.guid.empty() || kind == kKinds.end()) return;
    const CKeys keys(entry);
    for (CRun* run : {&m_byGuid[entry.guid], &m_byFolder[keys.folder], &m_byName[keys.name]}) {
        const std::string*& path = run->at(static_cast<std::size_t>(kind - kKinds.begin()));
        if (path == nullptr) path = &entry.path;
    }
}

CCells CCatalogRuns::CellsOf(const CCatalogEntry& entry) const {
    CCells cells(kKinds.size());
    const CKeys keys(entry);
    const auto take = [&](const CRuns& runs, const std::string& key) {
        const auto run = runs.find(key);
        if (run == runs.end()) return;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (run->second[i] != nullptr) cells[i] = *run->second[i];
        }
    };
    take(m_byGuid, entry.guid);
    take(m_byFolder, keys.folder);
    take(m_byName, keys.name);
    return cells;
}

std::size_t CCatalogRuns::Whole() const {
    const auto isWhole = [](const auto& run) { return std::ranges::count(run.second, nullptr) == 0; };
    return static_cast<std::size_t>(std::ranges::count_if(m_byGuid, isWhole));
}

}  // namespace vxfile
