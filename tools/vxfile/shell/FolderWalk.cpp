#include "tools/vxfile/shell/FolderWalk.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Seal.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/system/Interrupt.h"
#include "vxfileio/base/FileExtensions.h"

namespace vxfile {

namespace {

namespace fs = std::filesystem;

bool HasOurExtension(const fs::path& path) {
    constexpr std::array<std::string_view, 4> kExtensions = {vxfileio::kRawDataExtension, vxfileio::kSettingsExtension,
                                                             vxfileio::kResultsExtension, ".xls"};
    return std::ranges::find(kExtensions, Lowered(path.extension().string())) != kExtensions.end();
}

bool IsToBeChecked(const fs::directory_entry& entry) {
    std::error_code none;
    if (HasOurExtension(entry.path())) return true;
    if (!entry.is_regular_file(none)) return false;
    bool isOurs = false;
    const std::string failure = FailureOf([&] { isOurs = IsOurs(FileKindOf(entry.path().string())); });
    return isOurs || !failure.empty();
}

/// Folders are kept in a list until they are searched, so their depth isn't limited.
class CFolderWalk {
 public:
    explicit CFolderWalk(const std::string& folder) : m_waiting{folder} {}

    CFolderContent Walk() {
        while (!m_waiting.empty()) {
            const fs::path folder = m_waiting.back();
            m_waiting.pop_back();
            LookInto(folder);
        }
        std::ranges::sort(m_content.entries, {}, &CFolderEntry::path);
        return std::move(m_content);
    }

 private:
    void LookInto(const fs::path& folder) {
        std::error_code error;
        for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
             entry.increment(error)) {
            CheckInterrupt();
            Take(*entry);
        }
        if (error)
            m_content.entries.push_back({folder.string(), "Can't look into the folder " + folder.string() + ": " +
                                                              error.message() + "; its files are left out."});
    }

    void Take(const fs::directory_entry& entry) {
        std::error_code none;
        if (!entry.is_symlink(none) && entry.is_directory(none)) {
            m_waiting.push_back(entry.path());
        } else if (entry.path().extension() == kSealExtension) {
            TakeSeal(entry.path());
        } else if (IsToBeChecked(entry)) {
            m_content.entries.push_back({entry.path().string()});
        } else {
            ++m_content.passedOver;
        }
    }

    /// The sealed file has its own entry, unless it is gone.
    void TakeSeal(const fs::path& seal) {
        std::error_code none;
        fs::path file = seal;
        file.replace_extension();
        if (!fs::exists(file, none))
            m_content.entries.push_back({file.string(), file.string() + " is gone, but was sealed in " + seal.string() +
                                                            "; take it from a copy."});
    }

    std::vector<fs::path> m_waiting;
    CFolderContent m_content;
};

}  // namespace

CFolderContent WalkFolder(const std::string& folder) { return CFolderWalk(folder).Walk(); }

}  // namespace vxfile
