#include "vxfileio/export/Cell.h"

#include "vxfileio/export/biff/RkNumber.h"

namespace YExcel {

namespace {

/// The part of a text that a cell keeps.
template <class View>
View Kept(View text) {
    return text.substr(0, text.find(typename View::value_type{})).substr(0, Cell::kMostCharacters);
}

}  // namespace

void Cell::SetText(std::string_view text) {
    const auto kept = Kept(text);
    if (kept.empty()) return Clear();
    m_value = std::make_unique<const std::string>(kept);
}

void Cell::SetWideText(std::u16string_view text) {
    const auto kept = Kept(text);
    if (kept.empty()) return Clear();
    m_value = std::make_unique<const std::u16string>(kept);
}

std::int32_t Cell::GetInteger() const {
    if (const auto* value = std::get_if<std::int32_t>(&m_value)) return *value;
    if (const auto* value = std::get_if<double>(&m_value)) return Truncate(*value);
    return 0;
}

std::string_view Cell::GetText() const {
    const auto* text = std::get_if<std::unique_ptr<const std::string>>(&m_value);
    return text == nullptr ? std::string_view() : **text;
}

std::u16string_view Cell::GetWideText() const {
    const auto* text = std::get_if<std::unique_ptr<const std::u16string>>(&m_value);
    return text == nullptr ? std::u16string_view() : **text;
}

}  // namespace YExcel
