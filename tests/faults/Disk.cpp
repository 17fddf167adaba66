#include "tests/faults/Disk.h"

#include <algorithm>
#include <random>
#include <utility>

namespace {

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

}  // namespace

void CFileOnDisk::Write(std::size_t offset, const std::string& bytes) {
    const std::size_t before = m_now.size();
    const std::size_t end = offset + bytes.size();
    m_now.resize(std::max(before, end));
    m_now.replace(offset, bytes.size(), bytes);
    for (std::size_t size = (before / kPage + 1) * kPage; size < end; size += kPage)
        m_sizes.push_back(size);
    if (end > before) m_sizes.push_back(end);
    Keep(offset, end);
}

void CFileOnDisk::Resize(std::size_t size) {
    const std::size_t before = m_now.size();
    m_now.resize(size);
    m_sizes.push_back(size);
    Keep(std::min(before, size), std::max(before, size));
}

void CFileOnDisk::Flush() {
    m_flushed = m_now;
    m_pages.clear();
    m_sizes = {m_now.size()};
}

/// Saves the current content of the pages that hold these bytes.
void CFileOnDisk::Keep(std::size_t begin, std::size_t end) {
    for (std::size_t page = begin / kPage; page * kPage < end; ++page) {
        const auto pageOf = [page](const std::string& bytes) {
            std::string content = bytes.substr(std::min(bytes.size(), page * kPage), kPage);
            content.resize(kPage);
            return content;
        };
        std::vector<std::string>& contents = m_pages[page];
        if (contents.empty()) contents.push_back(pageOf(m_flushed));
        if (std::find(contents.begin(), contents.end(), pageOf(m_now)) == contents.end())
            contents.push_back(pageOf(m_now));
    }
}

/// Returns the state that `choose(n)` selects by a number below n for each page and the size.
std::string CFileOnDisk::State(const std::function<std::size_t(std::size_t)>& choose) const {
    const std::size_t size = m_sizes[choose(m_sizes.size())];
    std::string state = m_flushed;
    state.resize(std::max(size, m_flushed.size()));
    for (const auto& [page, contents] : m_pages) {
        const std::string& content = contents[choose(contents.size())];
        if (page * kPage < state.size()) state.replace(page * kPage, kPage, content);
    }
    state.resize(size);
    return state;
}

void CFileOnDisk::ForStates(std::size_t most, const std::function<void(const std::string&)>& act) const {
    std::size_t count = m_sizes.size();
    for (const auto& [page, contents] : m_pages)
        count = std::min(count * contents.size(), most + 1);
    std::mt19937 random(1);
    for (std::size_t i = 0; i < std::min(count, most); ++i) {
        std::size_t rest = i;
        act(State([&](std::size_t choices) {
            if (count > most) return random() % choices;
            return std::exchange(rest, rest / choices) % choices;
        }));
    }
}

void CDisk::Add(const std::string& path, const std::string& bytes) {
    CFileOnDisk* const file = Make(bytes);
    m_names[path] = {file, {file}};
}

void CDisk::Apply(const CRecordedCall& call) {
    if (call.name == "open") {
        if (call.isNew) Name(call.path, Make(""));
        const auto name = m_names.find(call.path);
        m_open[call.handle] = name == m_names.end() ? nullptr : name->second.now;
        m_paths[call.handle] = call.path;
    } else if (call.name == "pwritev") {
        m_open.at(call.handle)->Write(static_cast<std::size_t>(call.offset), call.bytes);
    } else if (call.name == "ftruncate") {
        m_open.at(call.handle)->Resize(static_cast<std::size_t>(call.offset));
    } else if (call.name == "fdatasync") {
        m_open.at(call.handle)->Flush();
    } else if (call.name == "fsync") {
        for (auto& [path, name] : m_names) {
            if (FolderOf(path) == FolderOf(m_paths.at(call.handle))) name.possible = {name.now};
        }
    } else if (call.name == "link") {
        Name(call.to, m_names.at(call.path).now);
    } else if (call.name == "rename") {
        Name(call.to, m_names.at(call.path).now);
        Name(call.path, nullptr);
    } else if (call.name == "unlink") {
        Name(call.path, nullptr);
    }
}

std::set<const CFileOnDisk*> CDisk::FilesOf(const std::string& path) const {
    const auto name = m_names.find(path);
    return name == m_names.end() ? std::set<const CFileOnDisk*>{nullptr} : name->second.possible;
}

void CDisk::Name(const std::string& path, CFileOnDisk* file) {
    CName& name = m_names[path];
    name.now = file;
    name.possible.insert(file);
}

CFileOnDisk* CDisk::Make(std::string bytes) {
    return m_files.emplace_back(std::make_unique<CFileOnDisk>(std::move(bytes))).get();
}
