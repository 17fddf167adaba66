#include "vxfileio/export/Cell.h"

#include <memory>
#include <new>

namespace YExcel {

/// The new text may be part of the old one, so the old one is freed last.
template <class Character>
void Cell::SetCharacters(std::basic_string_view<Character> text, CellType type) {
    const auto kept = text.substr(0, text.find(Character{})).substr(0, kMostCharacters);
    if (kept.empty()) return Clear();
    const std::size_t size = (kept.size() + 1) * sizeof(Character);
    decltype(m_value) value{};
    const bool isAside = size > value.size();
    std::unique_ptr<std::byte[]> aside;
    if (isAside) aside = std::make_unique<std::byte[]>(size);
    std::memcpy(isAside ? aside.get() : value.data(), kept.data(), size - sizeof(Character));
    Clear();
    if (isAside) {
        Set(aside.release(), type);
    } else {
        Set(value, type);
    }
    m_isAside = isAside;
}

template <class Character>
std::basic_string_view<Character> Cell::GetCharacters(CellType type) const {
    if (m_type != type) return {};
    const std::byte* bytes = m_isAside ? Get<const std::byte*>() : m_value.data();
    return std::launder(reinterpret_cast<const Character*>(bytes));
}

template void Cell::SetCharacters(std::string_view text, CellType type);
template void Cell::SetCharacters(std::u16string_view text, CellType type);
template std::string_view Cell::GetCharacters(CellType type) const;
template std::u16string_view Cell::GetCharacters(CellType type) const;

std::int32_t Cell::GetInteger() const {
    if (m_type == CellType::Integer) return Get<std::int32_t>();
    return Truncate(GetDouble());
}

}  // namespace YExcel
