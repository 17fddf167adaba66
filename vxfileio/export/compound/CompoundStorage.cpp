#include "vxfileio/export/compound/CompoundStorage.h"

#include <algorithm>
#include <array>

#include "vxfileio/export/FieldVisitors.h"

using namespace vxfileio::compound;
using vxfileio::CBytes;

namespace {

using Sector = std::array<std::byte, kSectorSize>;

constexpr std::size_t Count(std::size_t bytes, std::size_t unit) { return (bytes + unit - 1) / unit; }

constexpr bool IsBig(std::size_t streamSize) { return streamSize >= kMiniStreamCutOff; }

// ---- Where the FAT stands -------------------------------------------------------------------------------------------

/// A sector of the FAT is the first of the sectors that it has the marks of.
constexpr std::uint32_t FatSector(std::size_t i) { return static_cast<std::uint32_t>(i * kMarksPerSector); }

/// The first FAT sector that a sector of the DIFAT lists.
constexpr std::size_t FirstFatListedBy(std::size_t difatSector) {
    return kDifatEntriesInHeader + difatSector * kDifatEntriesPerSector;
}

/// A sector of the DIFAT stands right behind the first FAT sector that it lists.
constexpr std::uint32_t DifatSector(std::size_t i) { return FatSector(FirstFatListedBy(i)) + 1; }

// ---- Bytes ----------------------------------------------------------------------------------------------------------

constexpr std::size_t SizeOf(const auto& object) {
    vxfileio::FieldSize size;
    object.Fields(size);
    return size.Size();
}

static_assert(SizeOf(StorageHeader()) == kSectorSize);

Sector BytesOf(const StorageHeader& header) {
    Sector bytes{};
    vxfileio::FieldStore store(bytes.data());
    header.Fields(store);
    return bytes;
}

Sector BytesOf(std::span<const std::uint32_t, kMarksPerSector> marks) {
    Sector bytes{};
    vxfileio::FieldStore store(bytes.data());
    store(marks);
    return bytes;
}

// ---- Paths ----------------------------------------------------------------------------------------------------------

struct CSplitPath {
    std::string_view storages;
    std::string_view name;
};

CSplitPath Split(std::string_view path) {
    const std::size_t end = path.rfind('\\');
    if (end == std::string_view::npos) return {{}, path};
    return {path.substr(0, end), path.substr(end + 1)};
}

bool IsName(std::string_view text) { return !text.empty() && text != "." && text != ".."; }

/// Goes the way of a path from `node` on. Where there is no storage of a name, `missing(node, name)` says how it goes
/// on; null ends the way.
DirectoryNode* Walk(DirectoryNode* node, std::string_view path, auto missing) {
    while (node != nullptr && !path.empty()) {
        const std::string_view name = path.substr(0, path.find('\\'));
        path.remove_prefix(std::min(path.size(), name.size() + 1));
        if (name == ".." && node->parent != nullptr) node = node->parent;
        if (!IsName(name)) continue;
        DirectoryNode* const child = node->FindChild(name);
        const bool isThere = child != nullptr && child->entry.Is(enEntryType::Storage);
        node = isThere ? child : missing(node, name);
    }
    return node;
}

DirectoryNode* Nowhere(DirectoryNode* /*node*/, std::string_view /*name*/) { return nullptr; }

}  // namespace

CompoundStorage::CompoundStorage() : m_fat([this] { ExtendFat(); }), m_miniFat([this] { ExtendMiniFat(); }) {}

bool CompoundStorage::Create(const std::string& path) {
    Close();
    m_isComplete = m_file.Create(path);
    m_header = StorageHeader();
    m_fat.AddSector();
    m_fat.Mark(FatSector(0), kFatSector);
    m_fat.Mark(m_header.firstDirectorySector, kEndOfChain);
    m_directory.Reset();
    m_current = m_directory.Root();
    WriteTables();
    return true;
}

void CompoundStorage::Close() {
    m_file.Close();
    m_fat.Clear();
    m_miniFat.Clear();
    m_directory.Clear();
    m_current = nullptr;
    m_miniStream = {};
    m_isComplete = false;
}

// ---- Names ----------------------------------------------------------------------------------------------------------

std::int32_t CompoundStorage::MakeFile(const std::string& path) { return Make(path, enEntryType::Stream); }

std::int32_t CompoundStorage::MakeDirectory(const std::string& path) { return Make(path, enEntryType::Storage); }

std::int32_t CompoundStorage::ChangeDirectory(const std::string& path) {
    if (path.empty()) return kNoName;
    DirectoryNode* const target = Walk(StartOf(path), path, Nowhere);
    if (target == nullptr) return kNoStorage;
    m_current = target;
    return kSuccess;
}

DirectoryNode* CompoundStorage::StartOf(std::string_view path) const {
    return path.starts_with('\\') ? m_directory.Root() : m_current;
}

std::int32_t CompoundStorage::Make(std::string_view path, enEntryType type) {
    const auto [storages, name] = Split(path);
    if (!IsName(name)) return kNoName;
    if (m_current == nullptr) return kNoStorage;
    std::int32_t result = kSuccess;
    const auto add = [&](DirectoryNode* parent, std::string_view newName, enEntryType newType) -> DirectoryNode* {
        if (newName.size() >= kNameUnits) {
            result = kNameTooLong;
        } else if (parent->FindChild(newName) != nullptr) {
            result = kNameExists;
        } else {
            return m_directory.Add(parent, DirectoryEntry(newType, newName));
        }
        return nullptr;
    };
    const auto addStorage = [&](auto* parent, auto newName) { return add(parent, newName, enEntryType::Storage); };
    const std::size_t before = m_directory.Count();
    DirectoryNode* const parent = Walk(StartOf(path), storages, addStorage);
    if (parent != nullptr) add(parent, name, type);
    if (m_directory.Count() != before) WriteTables();
    return result;
}

// ---- Streams --------------------------------------------------------------------------------------------------------

std::int32_t CompoundStorage::WriteFile(const std::string& path, CBytes data) {
    const auto [storages, name] = Split(path);
    const DirectoryNode* const parent = Walk(StartOf(path), storages, Nowhere);
    DirectoryNode* const stream = parent == nullptr ? nullptr : parent->FindChild(name);
    if (stream == nullptr || !stream->entry.Is(enEntryType::Stream)) return kNoStream;
    if (data.size() > kMostStreamSize) return kTooLarge;
    DirectoryEntry& entry = stream->entry;
    const bool wasBig = IsBig(entry.streamSize);
    const bool isBig = IsBig(data.size());
    if (wasBig != isBig) StoreStream(entry, {}, wasBig);
    StoreStream(entry, data, isBig);
    WriteTables();
    return kSuccess;
}

void CompoundStorage::StoreStream(DirectoryEntry& entry, CBytes data, bool isBig) {
    isBig ? StoreBigStream(entry, data) : StoreMiniStream(entry, data);
    entry.streamSize = static_cast<std::uint32_t>(data.size());
}

void CompoundStorage::StoreBigStream(DirectoryEntry& entry, CBytes data) {
    m_fat.FitChain(entry.startSector, Count(data.size(), kSectorSize));
    WriteChain(entry.startSector, data);
}

/// The root's stream is the mini stream. Its first sector is taken before the mini FAT's, and any further ones after.
void CompoundStorage::StoreMiniStream(DirectoryEntry& entry, CBytes data) {
    DirectoryEntry& root = m_directory.Root()->entry;
    if (!data.empty() && root.startSector == kEndOfChain) m_fat.FitChain(root.startSector, 1);
    m_miniFat.FitChain(entry.startSector, Count(data.size(), kMiniSectorSize));
    m_miniStream.resize(m_miniFat.UsedSize() * kMiniSectorSize);
    CopyToMiniStream(entry.startSector, data);
    StoreStream(root, m_miniStream, true);
}

void CompoundStorage::CopyToMiniStream(std::uint32_t miniSector, CBytes data) {
    while (!data.empty()) {
        const auto part = data.first(std::min(data.size(), kMiniSectorSize));
        const auto sector = std::span(m_miniStream).subspan(miniSector * kMiniSectorSize, kMiniSectorSize);
        std::fill(std::copy(part.begin(), part.end(), sector.begin()), sector.end(), std::byte{0});
        data = data.subspan(part.size());
        miniSector = m_miniFat.Next(miniSector);
    }
}

// ---- Room for more sectors ------------------------------------------------------------------------------------------

/// The file grows by a sector of the FAT, and by one of the DIFAT if no other has room to list that.
void CompoundStorage::ExtendFat() {
    const std::uint32_t fatSector = m_header.fatSectors++;
    m_fat.AddSector();
    m_fat.Mark(FatSector(fatSector), kFatSector);
    if (fatSector < kDifatEntriesInHeader) {
        m_header.difat[fatSector] = FatSector(fatSector);
    } else if (fatSector == FirstFatListedBy(m_header.difatSectors)) {
        m_fat.Mark(DifatSector(m_header.difatSectors++), kDifatSector);
        m_header.firstDifatSector = DifatSector(0);
    }
}

void CompoundStorage::ExtendMiniFat() {
    m_fat.FitChain(m_header.firstMiniFatSector, ++m_header.miniFatSectors);
    m_miniFat.AddSector();
}

// ---- Writing --------------------------------------------------------------------------------------------------------

void CompoundStorage::WriteTables() {
    const std::vector<std::byte> directory = m_directory.Encode();
    m_fat.FitChain(m_header.firstDirectorySector, Count(directory.size(), kSectorSize));  // changes header and FAT
    WriteBlocks(0, BytesOf(m_header));
    WriteFat();
    WriteDifat();
    WriteMiniFat();
    WriteChain(m_header.firstDirectorySector, directory);
}

void CompoundStorage::WriteFat() {
    for (std::uint32_t i = 0; i < m_header.fatSectors; ++i)
        WriteSectors(FatSector(i), BytesOf(m_fat.MarksOf(i)));
}

void CompoundStorage::WriteDifat() {
    for (std::uint32_t i = 0; i < m_header.difatSectors; ++i) {
        std::array<std::uint32_t, kMarksPerSector> sectors{};
        sectors.fill(kFree);
        const std::size_t first = FirstFatListedBy(i);
        const std::size_t end = std::min<std::size_t>(FirstFatListedBy(i + 1), m_header.fatSectors);
        std::generate_n(sectors.begin(), end - first, [fat = first]() mutable { return FatSector(fat++); });
        sectors.back() = i + 1 < m_header.difatSectors ? DifatSector(i + 1) : kEndOfChain;
        WriteSectors(DifatSector(i), BytesOf(sectors));
    }
}

void CompoundStorage::WriteMiniFat() {
    std::uint32_t sector = m_header.firstMiniFatSector;
    for (std::uint32_t i = 0; i < m_header.miniFatSectors; ++i, sector = m_fat.Next(sector))
        WriteSectors(sector, BytesOf(m_miniFat.MarksOf(i)));
}

/// Sectors that stand side by side go to disk at once.
void CompoundStorage::WriteChain(std::uint32_t first, CBytes bytes) {
    while (!bytes.empty()) {
        const std::uint32_t length = m_fat.RunLength(first);
        const auto run = bytes.first(std::min(bytes.size(), length * kSectorSize));
        WriteSectors(first, run);
        bytes = bytes.subspan(run.size());
        first = m_fat.Next(first + length - 1);
    }
}

/// The header is block 0, so sectors count from block 1.
void CompoundStorage::WriteSectors(std::uint32_t first, CBytes bytes) { WriteBlocks(first + 1, bytes); }

void CompoundStorage::WriteBlocks(std::uint32_t first, CBytes bytes) {
    if (!m_file.WriteRun(first, bytes)) m_isComplete = false;
}
