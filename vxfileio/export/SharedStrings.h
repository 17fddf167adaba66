#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "vxfileio/export/Cell.h"
#include "vxfileio/export/biff/GlobalRecords.h"

namespace YExcel {

/// The texts of a workbook, each once, in the order of their first use. Narrow and wide ones with the same characters
/// are different. The characters stay in the cells, which must not change as long as this object is in use.
class CSharedStrings {
 public:
    /// Takes in the text of a cell and returns its index.
    std::uint32_t Add(const Cell& cell);

    /// The indices that `Add` returned, in the order of its calls: going over the same cells again needs no search.
    const std::deque<std::uint32_t>& Uses() const { return m_uses; }

    /// The record of all texts.
    const SharedStringTable& Table() const { return m_table; }

 private:
    std::uint32_t& SlotOf(const SstString& text);
    void AddSlots();

    // A workbook may have hundreds of thousands of short texts, so that a node for each would be most of its memory.
    SharedStringTable m_table;
    std::vector<std::uint32_t> m_slots;  ///< Indices of texts, by their hash, or the next free slot; a power of 2.
    std::deque<std::uint32_t> m_uses;
};

}  // namespace YExcel
