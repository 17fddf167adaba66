// Makes a list of calls on a compound file, and compares with a model of its storages and streams. Afterwards a second
// reader reads the file and checks all its tables.
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "fuzz/Fuzz.h"
#include "tests/export/compound/CompoundReader.h"
#include "vxfileio/export/compound/CompoundStorage.h"
#include "vxfileio/helpers/Path.h"

using vxfileio::compound::CompoundStorage;
using vxfileio::helpers::CPath;

namespace {

using Names = std::vector<std::string>;

/// Names up to the maximum length, and one that is too long.
constexpr std::size_t kMostName = 31;

class CModel {
 public:
    /// Returns the names along a path from the root, with "." and ".." resolved. `make` adds missing storages.
    std::int32_t Walk(const Names& path, Names& at, bool make) {
        for (const std::string& name : path) {
            if (name == ".." && !at.empty()) at.pop_back();
            if (name.empty() || name == "." || name == "..") continue;
            at.push_back(name);
            if (m_storages.contains(at)) continue;
            if (!make) return CompoundStorage::kNoStorage;
            if (const std::int32_t refused = Refused(at); refused != CompoundStorage::kSuccess) return refused;
            m_storages.insert(at);
        }
        return CompoundStorage::kSuccess;
    }

    std::int32_t Make(Names path, Names at, bool isStream) {
        const std::string name = path.back();
        path.pop_back();
        if (name.empty() || name == "." || name == "..") return CompoundStorage::kNoName;
        const std::int32_t result = Walk(path, at, true);
        if (result != CompoundStorage::kSuccess) return result;
        at.push_back(name);
        if (const std::int32_t refused = Refused(at); refused != CompoundStorage::kSuccess) return refused;
        if (isStream) {
            m_streams[at] = "";
        } else {
            m_storages.insert(at);
        }
        return CompoundStorage::kSuccess;
    }

    /// Returns the content of a stream, or null.
    std::string* Find(Names path, Names at) {
        const std::string name = path.back();
        path.pop_back();
        if (Walk(path, at, false) != CompoundStorage::kSuccess) return nullptr;
        at.push_back(name);
        const auto found = m_streams.find(at);
        return found == m_streams.end() ? nullptr : &found->second;
    }

    /// Checks that the second reader finds exactly the content of this model.
    void Check(const std::string& path) const {
        const CompoundReader file(ReadBytes(path));
        std::map<std::string, std::string> streams;
        for (const auto& [names, content] : m_streams)
            streams[Joined(names)] = content;
        Require(file.streams == streams, "the streams of the file");
        Require(file.storages.size() == m_storages.size(), "the number of its storages");
        for (const std::string& storage : file.storages)
            Require(std::ranges::any_of(m_storages, [&](const Names& n) { return Joined(n) == storage; }), "each");
    }

 private:
    std::int32_t Refused(const Names& at) const {
        if (at.back().size() > kMostName) return CompoundStorage::kNameTooLong;
        const bool isThere = m_storages.contains(at) || m_streams.contains(at);
        return isThere ? CompoundStorage::kNameExists : CompoundStorage::kSuccess;
    }

    static std::string Joined(const Names& names) {
        std::string path;
        for (const std::string& name : names)
            path += (path.empty() ? "" : "/") + name;
        return path;
    }

    std::map<Names, std::string> m_streams;
    std::set<Names> m_storages;
};

/// Returns a path of up to four names, chosen by the bits of one number.
struct CPath {
    bool fromRoot;
    Names names;

    explicit CPath(std::uint64_t bits) : fromRoot((bits & 1U) != 0) {
        static const Names kNames = {"a", "b",       "A", "ab", ".", "..", "", std::string(kMostName + 1, 'x'),
                                     "b", "Workbook"};
        bits /= 2;
        for (std::uint64_t count = bits % 4 + 1; count > 0; --count) {
            bits /= 4;
            names.push_back(kNames[bits % kNames.size()]);
            bits /= 4;
        }
    }

    std::string Text() const {
        std::string text;
        for (const std::string& name : names)
            text += (fromRoot || &name != &names.front() ? "\\" : "") + name;
        return text;
    }
};

class CBothStorages {
 public:
    CBothStorages() { Require(m_storage.Create(m_path) && m_storage.IsOpen(), "the file can be made"); }

    void Call(CCalls& calls) {
        const std::uint8_t call = calls.Byte();
        const CPath path(calls.Number(3));
        const std::string text = path.Text();
        const bool startsAtRoot = text.starts_with('\\');
        const Names at = startsAtRoot ? Names() : m_current;
        switch (call % 4) {
            case 0:
                Require(m_storage.MakeFile(text) == m_model.Make(path.names, at, true), "making a stream");
                break;
            case 1:
                Require(m_storage.MakeDirectory(text) == m_model.Make(path.names, at, false), "making a storage");
                break;
            case 2: {
                Names target = at;
                const std::int32_t result =
                    text.empty() ? CompoundStorage::kNoName : m_model.Walk(path.names, target, false);
                Require(m_storage.ChangeDirectory(text) == result, "changing the storage");
                if (result == CompoundStorage::kSuccess) m_current = target;
                break;
            }
            default:
                Write(text, path.names, at, std::string(calls.Number(2) << calls.Byte() % 3U, static_cast<char>(call)));
        }
    }

    void Check() const {
        Require(m_storage.IsComplete(), "the disk accepted everything");
        m_model.Check(m_path);
    }

 private:
    void Write(const std::string& text, const Names& names, const Names& at, std::string content) {
        for (std::size_t i = 0; i < content.size(); i += 97)
            content[i] = static_cast<char>(i / 97);
        std::string* const stream = m_model.Find(names, at);
        const std::int32_t result = stream == nullptr ? CompoundStorage::kNoStream : CompoundStorage::kSuccess;
        Require(m_storage.WriteFile(text, std::as_bytes(std::span(content))) == result, "writing a stream");
        if (stream != nullptr) *stream = content;
    }

    std::string m_path = CFuzzFolder::Path("compound");
    CompoundStorage m_storage;
    CModel m_model;
    Names m_current;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int kMostCalls = 24;
    CCalls calls(Input(data, size));
    CBothStorages storages;
    for (int i = 0; i < kMostCalls && !calls.AtEnd(); ++i)
        storages.Call(calls);
    storages.Check();
    return 0;
}
