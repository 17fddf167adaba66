#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/faults/SystemCalls.h"

/// @file
/// A disk that can lose power.

/// The content of a file at the last flush, and all later changes.
///
/// The system writes pages in any order, each in any of its states, and the size independently. So after a power cut,
/// each page has one of its contents since the last flush, a page that never reached the disk is zeros, and the size is
/// one that the file had, or the end of a page between two of them.
class CFileOnDisk {
 public:
    static constexpr std::size_t kPage = 4096;

    CFileOnDisk() : CFileOnDisk(std::string()) {}
    explicit CFileOnDisk(std::string bytes) : m_now(std::move(bytes)) { Flush(); }

    void Write(std::size_t offset, const std::string& bytes);
    void Resize(std::size_t size);
    void Flush();

    const std::string& Now() const { return m_now; }

    /// Calls `act` with contents that a power cut could leave: all of them if there are at most `most`, otherwise
    /// `most` random ones, the same in each run.
    void ForStates(std::size_t most, const std::function<void(const std::string&)>& act) const;

 private:
    using CPages = std::map<std::size_t, std::vector<std::string>>;

    void Keep(std::size_t begin, std::size_t end);
    std::string State(const std::function<std::size_t(std::size_t)>& choose) const;

    std::string m_now;
    std::string m_flushed;
    CPages m_pages;                    ///< The contents of changed pages since the last flush, by page.
    std::vector<std::size_t> m_sizes;  ///< The possible sizes.
};

/// The files of a run, as its recorded calls change them. A folder is flushed separately: until then, a name may belong
/// to the old file or to any file that had the name since.
class CDisk {
 public:
    /// Adds a file that was there before the run.
    void Add(const std::string& path, const std::string& bytes);

    void Apply(const CRecordedCall& call);

    /// Returns the files that could have a name after a power cut; null means that there may be none.
    std::set<const CFileOnDisk*> FilesOf(const std::string& path) const;

 private:
    /// The files that a name may belong to.
    struct CName {
        CFileOnDisk* now = nullptr;
        std::set<const CFileOnDisk*> possible = {nullptr};
    };

    void Name(const std::string& path, CFileOnDisk* file);
    CFileOnDisk* Make(std::string bytes);

    std::vector<std::unique_ptr<CFileOnDisk>> m_files;
    std::map<std::string, CName> m_names;
    std::map<int, std::string> m_paths;  ///< By handle.
    std::map<int, CFileOnDisk*> m_open;  ///< By handle; null for a folder.
};
