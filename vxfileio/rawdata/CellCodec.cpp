#include "vxfileio/rawdata/CellCodec.h"

#include <algorithm>

#include "vxfileio/rawdata/RawDataFormat.h"

namespace vxfileio::rawdata {

namespace {

/// A run of these counts as one, so a value read back stops at its first `=` or `:`. Cells without NUL end in CR LF.
constexpr CCharSet kSeparators("=:\r\n");

}  // namespace

CCellWriter::CCellWriter(std::span<char> cell, std::string_view key) : m_room(cell.first(cell.size() - kCellEndSize)) {
    std::fill(cell.begin(), cell.end(), '\0');
    cell[cell.size() - 2] = '\r';
    cell[cell.size() - 1] = '\n';
    PutBare(key);
}

void CCellWriter::PutBare(std::string_view text) {
    if (text.size() > m_room.size()) {
        m_fits = false;
        return;
    }
    std::copy(text.begin(), text.end(), m_room.begin());
    m_room = m_room.subspan(text.size());
}

void CCellWriter::PutItem(std::string_view item) {
    PutBare(m_hasItem ? ":" : "=");
    PutBare(item);
    m_hasItem = true;
}

void CCellWriter::PutValue(std::string_view value) {
    if (!value.empty()) PutItem(value);
}

std::string_view CellText(std::string_view cell) { return cell.substr(0, cell.find('\0')); }

CCellItems::CCellItems(std::string_view cell) : m_tokens(CellText(cell), kSeparators) { m_tokens.Next(); }

std::string_view CellValue(std::string_view cell) { return CCellItems(cell).Next().value_or(std::string_view()); }

}  // namespace vxfileio::rawdata
