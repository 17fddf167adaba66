#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "vxfileio/export/compound/CompoundFormat.h"

namespace vxfileio::compound {

/// The FAT or the mini FAT: the marks of sectors, as many as fit into the table's own sectors.
class CSectorTable {
 public:
    /// `extend` is called when no sector is free; it must call `AddSector`.
    explicit CSectorTable(std::function<void()> extend) : m_extend(std::move(extend)) {}

    /// Removes all marks.
    void Clear();
    /// Adds a sector to the table, with all marks free.
    void AddSector();
    /// Marks a sector that isn't part of a chain.
    void Mark(std::uint32_t sector, std::uint32_t mark) { m_marks[sector] = mark; }

    /// Changes the length of the chain from `first` to `count` sectors; `first` is `kEndOfChain` for an empty chain.
    /// Keeps the order of the chain, appends the first free sectors, and frees those no longer needed.
    void FitChain(std::uint32_t& first, std::size_t count);

    /// Returns the sector after this one in its chain, or `kEndOfChain`.
    std::uint32_t Next(std::uint32_t sector) const { return m_marks[sector]; }
    /// Returns the number of sectors from this one on that are contiguous in the file.
    std::uint32_t RunLength(std::uint32_t sector) const;

    /// Returns the number of marks.
    std::size_t Size() const { return m_marks.size(); }
    /// Returns the number of the last used sector + 1.
    std::size_t UsedSize() const;
    /// Returns the marks in one of the table's sectors.
    std::span<const std::uint32_t, kMarksPerSector> MarksOf(std::size_t tableSector) const;

 private:
    std::uint32_t Take();
    void Release(std::uint32_t first);

    std::vector<std::uint32_t> m_marks;
    std::size_t m_firstFree = 0;  ///< All sectors before this one are in use.
    std::function<void()> m_extend;
};

}  // namespace vxfileio::compound
