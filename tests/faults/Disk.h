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
/// A disk that loses power.

/// What a file held when it was last flushed, and what was done to it since.
///
/// The system writes pages in any order, each as it was at any moment, and the size by itself. So after a power cut,
/// each page has one of the contents it had since the last flush, a page that never reached the disk is zeros, and the
/// size is one that the file had, or ends with a page between two of them.
class CFileOnDisk {
 public:
    static constexpr std::size_t kPage = 4096;

    CFileOnDisk() : CFileOnDisk(std::string()) {}
    explicit CFileOnDisk(std::string bytes) : m_now(std::move(bytes)) { Flush(); }

    void Write(std::size_t offset, const std::string& bytes);
    void Resize(std::size_t size);
    void Flush();

    const std::string& Now() const { return m_now; }

    /// Calls `act` with contents that a power cut could leave: with all of them if there are at most `most`, else with
    /// `most` random ones, the same in each run.
    void ForStates(std::size_t most, const std::function<void(const std::string&)>& act) const;

 private:
    using CPages = std::map<std::size_t, std::vector<std::string>>;

    void Keep(std::size_t begin, std::size_t end);
    std::string State(const std::function<std::size_t(std::size_t)>& choose) const;

    std::string m_now;
    std::string m_flushed;
    CPages m_pages;                    ///< The contents that changed pages had since the last flush, by page.
    std::vector<std::size_t> m_sizes;  ///< The sizes that it could have.
};

/// The files of a run, as its recorded calls change them. A folder is flushed by itself: until then, each name is the
/// old file or any of those that had the name since.
class CDisk {
 public:
    /// Adds a file that was there before the run.
    void Add(const std::string& path, const std::string& bytes);

    void Apply(const CRecordedCall& call);

    /// Returns the files that could have a name after a power cut; null for none.
    std::set<const CFileOnDisk*> FilesOf(const std::string& path) const;

 private:
    /// What a name stands for.
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
