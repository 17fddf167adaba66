#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "vxfileio/export/compound/CompoundFormat.h"

namespace vxfileio::compound {

/// The FAT or the mini FAT: a mark for each sector, as many as fill the sectors that the table itself is stored in.
class CSectorTable {
 public:
    /// `extend` is called when no sector is free; it must call `AddSector`.
    explicit CSectorTable(std::function<void()> extend) : m_extend(std::move(extend)) {}

    /// Removes all marks.
    void Clear();
    /// Adds the marks of one more sector of the table, all free.
    void AddSector();
    /// Marks a sector that is no part of a chain.
    void Mark(std::uint32_t sector, std::uint32_t mark) { m_marks[sector] = mark; }

    /// Makes the chain from `first` on `count` sectors long, `first` being `kEndOfChain` if that is none. Sectors of
    /// the chain stay in their order, further ones are the first free ones, and those given up become free.
    void FitChain(std::uint32_t& first, std::size_t count);

    /// Returns the sector after this one in its chain, or `kEndOfChain`.
    std::uint32_t Next(std::uint32_t sector) const { return m_marks[sector]; }
    /// Returns how many sectors from this one on follow each other in their chain as they do in the file.
    std::uint32_t RunLength(std::uint32_t sector) const;

    /// Returns the number of marks.
    std::size_t Size() const { return m_marks.size(); }
    /// Returns the number of the sector after the last one that isn't free.
    std::size_t UsedSize() const;
    /// Returns the marks in one sector of the table.
    std::span<const std::uint32_t, kMarksPerSector> MarksOf(std::size_t tableSector) const;

 private:
    std::uint32_t Take();
    void Release(std::uint32_t first);

    std::vector<std::uint32_t> m_marks;
    std::size_t m_firstFree = 0;  ///< No sector in front of it is free.
    std::function<void()> m_extend;
};

}  // namespace vxfileio::compound
