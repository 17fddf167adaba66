#include "vxfileio/export/compound/CompoundStorage.h"

#include <algorithm>
#include <array>

#include "vxfileio/helpers/FieldVisitors.h"

namespace vxfileio::compound {

using helpers::CBytes;

namespace {

using Sector = CBlockWrites::Block;

constexpr std::size_t Count(std::size_t bytes, std::size_t unit) { return (bytes + unit - 1) / unit; }

constexpr bool IsBig(std::size_t streamSize) { return streamSize >= kMiniStreamCutOff; }

// ---- Where the FAT is -----------------------------------------------------------------------------------------------

/// Each FAT sector is the first of the sectors that it has marks for.
constexpr std::uint32_t FatSector(std::size_t i) { return static_cast<std::uint32_t>(i * kMarksPerSector); }

/// Returns the first FAT sector that a DIFAT sector lists.
constexpr std::size_t FirstFatListedBy(std::size_t difatSector) {
    return kDifatEntriesInHeader + difatSector * kDifatEntriesPerSector;
}

/// Each DIFAT sector follows the first FAT sector that it lists.
constexpr std::uint32_t DifatSector(std::size_t i) { return FatSector(FirstFatListedBy(i)) + 1; }

/// The header is block 0, so sector 0 is block 1.
constexpr std::uint32_t BlockOf(std::uint32_t sector) { return sector + 1; }

// ---- Bytes ----------------------------------------------------------------------------------------------------------

constexpr std::size_t SizeOf(const auto& object) {
    helpers::CFieldSize size;
    size(object);
    return size.Size();
}

static_assert(SizeOf(StorageHeader()) == kSectorSize);

Sector BytesOf(const StorageHeader& header) {
    Sector bytes{};
    helpers::CFieldStore store(bytes.data());
    store(header);
    return bytes;
}

Sector BytesOf(std::span<const std::uint32_t, kMarksPerSector> marks) {
    Sector bytes{};
    helpers::CFieldStore store(bytes.data());
    store(marks);
    return bytes;
}

void AddSector(CBlockWrites& writes, std::uint32_t sector, std::span<const std::uint32_t, kMarksPerSector> marks) {
    writes.AddCopy(BlockOf(sector), BytesOf(marks));
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

/// Follows a path from `node`. Where a storage is missing, continues with the result of `missing(node, name)`; null
/// ends the walk.
DirectoryNode* Walk(DirectoryNode* node, std::string_view path, auto missing) {
    while (node != nullptr && !path.empty()) {
        const std::string_view name = path.substr(0, path.find('\\'));
        path.remove_prefix(std::min(path.size(), name.size() + 1));
        if (name == ".." && node->parent != nullptr) node = node->parent;
        if (!IsName(name)) continue;
        DirectoryNode* const child = node->FindChild(name);
        const bool isThere = child != nullptr && child->entry.Is(EEntryType::Storage);
        node = isThere ? child : missing(node, name);
    }
    return node;
}

DirectoryNode* Nowhere(DirectoryNode* /*node*/, std::string_view /*name*/) { return nullptr; }

}  // namespace

CompoundStorage::CompoundStorage() : m_fat([this] { ExtendFat(); }), m_miniFat([this] { ExtendMiniFat(); }) {}

bool CompoundStorage::Create(const std::string& path) {
    Close();
    Begin(m_file.Create(path));
    return true;
}

void CompoundStorage::CreateIn(helpers::CFile& file) {
    Close();
    m_file.Use(file);
    Begin(file.IsOpen());
}

void CompoundStorage::Begin(bool isOpen) {
    m_isComplete = isOpen;
    m_header = StorageHeader();
    m_fat.AddSector();
    m_fat.Mark(FatSector(0), kFatSector);
    m_fat.Mark(m_header.firstDirectorySector, kEndOfChain);
    m_directory.Reset();
    m_current = m_directory.Root();
    WriteTables();
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

std::int32_t CompoundStorage::MakeFile(const std::string& path) { return Make(path, EEntryType::Stream); }

std::int32_t CompoundStorage::MakeDirectory(const std::string& path) { return Make(path, EEntryType::Storage); }

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

std::int32_t CompoundStorage::Make(std::string_view path, EEntryType type) {
    const auto [storages, name] = Split(path);
    if (!IsName(name)) return kNoName;
    if (m_current == nullptr) return kNoStorage;
    std::int32_t result = kSuccess;
    const auto add = [&](DirectoryNode* parent, std::string_view newName, EEntryType newType) -> DirectoryNode* {
        if (newName.size() >= kNameUnits) {
            result = kNameTooLong;
        } else if (parent->FindChild(newName) != nullptr) {
            result = kNameExists;
        } else {
            return m_directory.Add(parent, DirectoryEntry(newType, newName));
        }
        return nullptr;
    };
    const auto addStorage = [&](auto* parent, auto newName) { return add(parent, newName, EEntryType::Storage); };
    const std::size_t before = m_directory.Count();
    DirectoryNode* const parent = Walk(StartOf(path), storages, addStorage);
    if (parent != nullptr) add(parent, name, type);
    if (m_directory.Count() != before) WriteTables();
    return result;
}

// ---- Streams --------------------------------------------------------------------------------------------------------

std::int32_t CompoundStorage::WriteFile(const std::string& path, CBytes data) {
    return WriteFile(path, data.size(), [data](const TakePiece& take) { take(data); });
}

std::int32_t CompoundStorage::WriteFile(const std::string& path, std::size_t size,
                                        const std::function<void(const TakePiece& take)>& give) {
    const auto [storages, name] = Split(path);
    const DirectoryNode* const parent = Walk(StartOf(path), storages, Nowhere);
    DirectoryNode* const stream = parent == nullptr ? nullptr : parent->FindChild(name);
    if (stream == nullptr || !stream->entry.Is(EEntryType::Stream)) return kNoStream;
    if (size > kMostStreamSize) return kTooLarge;
    DirectoryEntry& entry = stream->entry;
    const bool wasBig = IsBig(entry.streamSize);
    const bool isBig = IsBig(size);
    if (wasBig != isBig) FitStream(entry, 0, wasBig);
    FitStream(entry, size, isBig);

    CBlockWrites writes;
    AddTables(writes);
    std::uint32_t sector = entry.startSector;
    give([&](CBytes piece) {
        piece = piece.first(std::min(piece.size(), size));
        size -= piece.size();
        sector = isBig ? WritePiece(writes, sector, piece) : CopyToMiniStream(sector, piece);
    });
    if (size > 0) m_isComplete = false;
    if (!isBig || !wasBig) AddChain(writes, m_directory.Root()->entry.startSector, m_miniStream);
    Write(writes);
    return kSuccess;
}

/// Sets the size first: it determines which table has the chain, even if memory runs out before the chain is complete.
void CompoundStorage::FitStream(DirectoryEntry& entry, std::size_t size, bool isBig) {
    entry.streamSize = static_cast<std::uint32_t>(size);
    if (isBig) {
        m_fat.FitChain(entry.startSector, Count(size, kSectorSize));
    } else {
        FitMiniStream(entry, size);
    }
}

/// The root's stream is the mini stream. Its first sector is allocated before the mini FAT's, the others after it.
void CompoundStorage::FitMiniStream(DirectoryEntry& entry, std::size_t size) {
    DirectoryEntry& root = m_directory.Root()->entry;
    if (size > 0 && root.startSector == kEndOfChain) m_fat.FitChain(root.startSector, 1);
    m_miniFat.FitChain(entry.startSector, Count(size, kMiniSectorSize));
    m_miniStream.resize(m_miniFat.UsedSize() * kMiniSectorSize);
    FitStream(root, m_miniStream.size(), true);
}

std::uint32_t CompoundStorage::CopyToMiniStream(std::uint32_t miniSector, CBytes data) {
    while (!data.empty() && miniSector != kEndOfChain) {
        const auto part = data.first(std::min(data.size(), kMiniSectorSize));
        const auto sector = std::span(m_miniStream).subspan(miniSector * kMiniSectorSize, kMiniSectorSize);
        std::fill(std::copy(part.begin(), part.end(), sector.begin()), sector.end(), std::byte{0});
        data = data.subspan(part.size());
        miniSector = m_miniFat.Next(miniSector);
    }
    return miniSector;
}

// ---- Room for more sectors ------------------------------------------------------------------------------------------

// Sectors of a table are counted only once their marks exist, since creating those can run out of memory.

/// Adds a FAT sector to the file, and a DIFAT sector if no other has room to list it.
void CompoundStorage::ExtendFat() {
    m_fat.AddSector();
    const std::uint32_t fatSector = m_header.fatSectors++;
    m_fat.Mark(FatSector(fatSector), kFatSector);
    if (fatSector < kDifatEntriesInHeader) {
        m_header.difat[fatSector] = FatSector(fatSector);
    } else if (fatSector == FirstFatListedBy(m_header.difatSectors)) {
        m_fat.Mark(DifatSector(m_header.difatSectors++), kDifatSector);
        m_header.firstDifatSector = DifatSector(0);
    }
}

void CompoundStorage::ExtendMiniFat() {
    m_fat.FitChain(m_header.firstMiniFatSector, m_header.miniFatSectors + 1);
    m_miniFat.AddSector();
    ++m_header.miniFatSectors;
}

// ---- Writing --------------------------------------------------------------------------------------------------------

void CompoundStorage::Write(CBlockWrites& writes) {
    if (!writes.WriteTo(m_file)) m_isComplete = false;
}

void CompoundStorage::WriteTables() {
    CBlockWrites writes;
    AddTables(writes);
    Write(writes);
}

/// Writes a piece of a stream to its chain from this sector on, and the tables before it. Returns the sector for the
/// next piece.
std::uint32_t CompoundStorage::WritePiece(CBlockWrites& writes, std::uint32_t sector, CBytes piece) {
    sector = AddChain(writes, sector, piece);
    if (!writes.WriteLentTo(m_file)) m_isComplete = false;
    return sector;
}

/// Adds everything except the streams.
void CompoundStorage::AddTables(CBlockWrites& writes) {
    const std::vector<std::byte> directory = m_directory.Encode();
    m_fat.FitChain(m_header.firstDirectorySector, Count(directory.size(), kSectorSize));  // changes header and FAT
    writes.AddCopy(0, BytesOf(m_header));
    AddFat(writes);
    AddDifat(writes);
    AddMiniFat(writes);
    std::uint32_t sector = m_header.firstDirectorySector;
    for (CBytes rest = directory; !rest.empty(); rest = rest.subspan(kSectorSize), sector = m_fat.Next(sector))
        writes.AddCopy(BlockOf(sector), rest.first<kSectorSize>());
}

void CompoundStorage::AddFat(CBlockWrites& writes) const {
    for (std::uint32_t i = 0; i < m_header.fatSectors; ++i)
        AddSector(writes, FatSector(i), m_fat.MarksOf(i));
}

void CompoundStorage::AddDifat(CBlockWrites& writes) const {
    for (std::uint32_t i = 0; i < m_header.difatSectors; ++i) {
        std::array<std::uint32_t, kMarksPerSector> sectors{};
        sectors.fill(kFree);
        const std::size_t first = FirstFatListedBy(i);
        const std::size_t end = std::min<std::size_t>(FirstFatListedBy(i + 1), m_header.fatSectors);
        std::generate_n(sectors.begin(), end - first, [fat = first]() mutable { return FatSector(fat++); });
        sectors.back() = i + 1 < m_header.difatSectors ? DifatSector(i + 1) : kEndOfChain;
        AddSector(writes, DifatSector(i), sectors);
    }
}

void CompoundStorage::AddMiniFat(CBlockWrites& writes) const {
    std::uint32_t sector = m_header.firstMiniFatSector;
    for (std::uint32_t i = 0; i < m_header.miniFatSectors; ++i, sector = m_fat.Next(sector))
        AddSector(writes, sector, m_miniFat.MarksOf(i));
}

/// Adds bytes for a chain from this sector on. Returns the sector after them.
std::uint32_t CompoundStorage::AddChain(CBlockWrites& writes, std::uint32_t sector, CBytes bytes) const {
    while (!bytes.empty() && sector != kEndOfChain) {
        const std::uint32_t length = m_fat.RunLength(sector);
        const auto run = bytes.first(std::min(bytes.size(), length * kSectorSize));
        writes.Add(BlockOf(sector), run);
        bytes = bytes.subspan(run.size());
        sector = m_fat.Next(sector + static_cast<std::uint32_t>(Count(run.size(), kSectorSize)) - 1);
    }
    return sector;
}

}  // namespace vxfileio::compound
