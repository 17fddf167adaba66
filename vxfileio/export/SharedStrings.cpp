#include "vxfileio/export/SharedStrings.h"

namespace YExcel {

template <class View>
std::uint32_t SharedStrings::AddTo(IndexOf<View>& indices, View text) {
    const auto next = static_cast<std::uint32_t>(m_table.strings.size());
    const auto [place, isNew] = indices.try_emplace(text, next);
    if (isNew) m_table.strings.emplace_back(text);
    return place->second;
}

std::uint32_t SharedStrings::Add(const Cell& cell) {
    const bool isWide = cell.Type() == CellType::WideText;
    ++m_table.total;
    m_uses.push_back(isWide ? AddTo(m_wide, cell.GetWideText()) : AddTo(m_narrow, cell.GetText()));
    return m_uses.back();
}

}  // namespace YExcel
