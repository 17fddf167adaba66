#include "vxfileio/export/SharedStrings.h"

#include <algorithm>
#include <functional>
#include <limits>

namespace YExcel {

namespace {

/// A free slot.
constexpr std::uint32_t kEmpty = std::numeric_limits<std::uint32_t>::max();

constexpr std::size_t kFirstSlots = 64;

SstString TextOf(const Cell& cell) {
    return cell.Type() == CellType::WideText ? SstString(cell.GetWideText()) : SstString(cell.GetText());
}

}  // namespace

std::uint32_t CSharedStrings::Add(const Cell& cell) {
    if (4 * m_table.strings.size() >= 3 * m_slots.size()) AddSlots();
    const SstString text = TextOf(cell);
    std::uint32_t& slot = SlotOf(text);
    if (slot == kEmpty) {
        slot = static_cast<std::uint32_t>(m_table.strings.size());
        m_table.strings.push_back(text);
    }
    ++m_table.total;
    m_uses.push_back(slot);
    return slot;
}

/// Returns the slot of a text, or the free slot for it.
std::uint32_t& CSharedStrings::SlotOf(const SstString& text) {
    const auto characters = text.Text();
    std::size_t place = std::hash<SstString::Characters>()(characters);
    while (true) {
        std::uint32_t& slot = m_slots[place % m_slots.size()];
        if (slot == kEmpty || m_table.strings[slot].Text() == characters) return slot;
        ++place;
    }
}

/// Doubles the number of slots. Frees the old ones first, since the new ones are filled from the texts.
void CSharedStrings::AddSlots() {
    const std::size_t count = std::max(kFirstSlots, 2 * m_slots.size());
    m_slots = std::vector<std::uint32_t>();
    m_slots.resize(count, kEmpty);
    for (std::uint32_t i = 0; i < m_table.strings.size(); ++i)
        SlotOf(m_table.strings[i]) = i;
}

}  // namespace YExcel
