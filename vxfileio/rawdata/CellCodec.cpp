#include "vxfileio/rawdata/CellCodec.h"

namespace vxfileio::rawdata {

namespace {

constexpr helpers::CCharSet kSeparatorSet(kSeparators);

}  // namespace

std::string_view CellText(std::string_view cell) { return cell.substr(0, cell.find('\0')); }

CCellItems::CCellItems(std::string_view cell) : m_tokens(CellText(cell), kSeparatorSet) { m_tokens.Next(); }

std::string_view CellValue(std::string_view cell) { return CCellItems(cell).Next().value_or(std::string_view()); }

}  // namespace vxfileio::rawdata
