#include "vxfileio/rawdata/CellCodec.h"

namespace vxfileio::rawdata {

namespace {

/// A run of these counts as one, so a value read back stops at its first `=` or `:`. Cells without NUL end in CR LF.
constexpr helpers::CCharSet kSeparators("=:\r\n");

}  // namespace

std::string_view CellText(std::string_view cell) { return cell.substr(0, cell.find('\0')); }

CCellItems::CCellItems(std::string_view cell) : m_tokens(CellText(cell), kSeparators) { m_tokens.Next(); }

std::string_view CellValue(std::string_view cell) { return CCellItems(cell).Next().value_or(std::string_view()); }

}  // namespace vxfileio::rawdata
