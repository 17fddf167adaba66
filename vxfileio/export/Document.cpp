#include "vxfileio/export/Document.h"

#include <algorithm>
#include <cstddef>
#include <memory>

using vxfileio::helpers::CReplacingFile;

namespace YExcel {

void Document::CreateSheets(std::int32_t count) {
    m_sheets.clear();
    for (std::int32_t i = 0; i < std::max(count, 1); ++i)
        AddDefaultSheet();
}

Sheet* Document::AddSheet(const std::string& name, std::int32_t position) {
    if (FindSheet(name) != nullptr) return nullptr;
    const auto end = static_cast<std::ptrdiff_t>(m_sheets.size());
    const std::ptrdiff_t place = position < 0 || position > end ? end : position;
    return m_sheets.insert(m_sheets.begin() + place, std::make_unique<Sheet>(name))->get();
}

Sheet* Document::AddDefaultSheet(std::int32_t position) {
    Sheet* sheet = nullptr;
    for (std::size_t number = m_sheets.size() + 1; sheet == nullptr; ++number)
        sheet = AddSheet("Sheet" + std::to_string(number), position);
    return sheet;
}

bool Document::RenameSheet(const std::string& oldName, const std::string& newName) {
    Sheet* const sheet = FindSheet(oldName);
    if (sheet == nullptr || FindSheet(newName) != nullptr) return false;
    sheet->Rename(newName);
    return true;
}

Sheet* Document::FindSheet(const std::string& name) {
    const auto hasName = [&](const auto& sheet) { return sheet->Name() == name; };
    const auto found = std::find_if(m_sheets.begin(), m_sheets.end(), hasName);
    return found == m_sheets.end() ? nullptr : found->get();
}

bool Document::SaveToFile(const std::string& path) {
    CReplacingFile file;
    return file.Create(path) && WriteTo(file) && file.Commit();
}

bool Document::WriteTo(CReplacingFile& file) { return m_file.Write(Stream(), file.File()) && file.Finish(); }

}  // namespace YExcel
