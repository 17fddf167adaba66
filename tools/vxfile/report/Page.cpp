#include "tools/vxfile/report/Page.h"

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <string>

#include "tools/vxfile/report/Style.h"
#include "tools/vxfile/report/Text.h"

namespace vxfile {

namespace {

/// As many rows as fit on a screen together with everything else.
constexpr std::size_t kMostRows = 16;

/// Returns a text of a file, which may have any length, cut to fit the page.
std::string Shortened(const std::string& text) {
    constexpr std::size_t kMostCharacters = 160;
    const std::string_view shown = Cut(text, kMostCharacters);
    return std::string(shown) + (shown.size() < text.size() ? "..." : "");
}

std::string Filled(const std::string& text, std::size_t width) {
    return text + std::string(width - std::min(width, Width(text)), ' ');
}

std::vector<std::size_t> WidthsOf(const std::vector<CPage::CRow>& table) {
    std::vector<std::size_t> widths(table.front().size());
    for (const auto& row : table) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], Width(row[i]));
    }
    return widths;
}

std::string LineOf(const CPage::CRow& row, const std::vector<std::size_t>& widths) {
    std::string line = "  ";
    for (std::size_t i = 0; i + 1 < row.size(); ++i)
        line += Filled(row[i], widths[i] + 2);
    return line + row.back();
}

void PrintTable(const std::vector<CPage::CRow>& table) {
    const auto widths = WidthsOf(table);
    std::cout << '\n' << Bold(LineOf(table.front(), widths)) << '\n';
    const std::size_t rows = table.size() - 1;
    const std::size_t shown = rows <= kMostRows ? rows : kMostRows - 2;
    for (std::size_t i = 1; i <= shown; ++i)
        std::cout << LineOf(table[i], widths) << '\n';
    if (shown == rows) return;
    // The last row belongs to an unfinished recording, so it is never left out.
    std::cout << "  " << rows - shown - 1 << " more; --json lists them\n" << LineOf(table.back(), widths) << '\n';
}

}  // namespace

void CPage::Add(std::string_view label, std::string_view key, const std::string& text, CJson value) {
    m_lines.emplace_back(label, Shortened(text));
    m_json[std::string(key)] = std::move(value);
}

void CPage::AddText(std::string_view label, std::string_view key, std::string_view bytes) {
    const std::string text = Readable(bytes);
    if (!text.empty()) m_lines.emplace_back(label, Shortened(text));
    m_json[std::string(key)] = text;
}

void CPage::SetTable(std::vector<CRow> rows) {
    m_table = std::move(rows);
    for (auto& row : m_table)
        std::ranges::transform(row, row.begin(), Shortened);
}

void CPage::SetDamage(const std::string& sentence) {
    m_damage = sentence;
    if (IsDamaged()) m_json["damage"] = sentence;
}

void CPage::Print() const {
    std::size_t width = 0;
    for (const auto& [label, text] : m_lines)
        width = std::max(width, Width(label));
    for (const auto& [label, text] : m_lines)
        std::cout << "  " << Filled(label, width + 2) << text << '\n';
    if (m_table.size() > 1) PrintTable(m_table);
    for (const auto& text : {m_damage, m_remark}) {
        if (!text.empty()) std::cout << "\n  " << text << '\n';
    }
}

}  // namespace vxfile
