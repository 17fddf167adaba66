#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "vxfileio/export/Cell.h"
#include "vxfileio/export/biff/GlobalRecords.h"

namespace YExcel {

/// The texts of a workbook, each once, in the order of their first use. Narrow and wide texts differ even with the same
/// characters. The characters remain in the cells, which must not change while this object is in use.
class CSharedStrings {
 public:
    /// Adds the text of a cell and returns its index.
    std::uint32_t Add(const Cell& cell);

    /// The indices that `Add` returned, in order. They make a search unnecessary when the cells are visited again.
    const std::deque<std::uint32_t>& Uses() const { return m_uses; }

    /// Returns the record of all texts.
    const SharedStringTable& Table() const { return m_table; }

 private:
    std::uint32_t& SlotOf(const SstString& text);
    void AddSlots();

    // A workbook can have hundreds of thousands of short texts, so a node for each would need most of the memory.
    SharedStringTable m_table;
    std::vector<std::uint32_t> m_slots;  ///< Indices of texts, by hash, with linear probing. Its size is a power of 2.
    std::deque<std::uint32_t> m_uses;
};

}  // namespace YExcel
