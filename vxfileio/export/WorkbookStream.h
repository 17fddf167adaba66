#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "vxfileio/export/SharedStrings.h"
#include "vxfileio/export/Sheet.h"
#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/RecordStream.h"
#include "vxfileio/export/biff/SheetRecords.h"

namespace YExcel {

/// @name The number of equal records of each kind among the globals
/// @{
inline constexpr int kFonts = 4;
inline constexpr int kFormats = 21;
inline constexpr int kStyles = 6;
/// @}

/// The sheets of a workbook, in their order.
using Sheets = std::vector<std::unique_ptr<Sheet>>;

/// A sheet, and the records that describe its cells elsewhere in the stream.
struct CSheetRecords {
    const Sheet* sheet = nullptr;
    BoundSheet name = {};
    Index index = {};
    Dimensions dimensions = {};
    Window2 window = {};
};

/// The stream that stands for a workbook of sheets, which must stay as they are as long as this object is in use. It is
/// counted at once, and comes piece by piece when asked for, so that it is never in memory whole.
class CWorkbookStream {
 public:
    explicit CWorkbookStream(const Sheets& sheets);

    /// Returns the number of bytes.
    std::size_t Size() const { return m_size; }
    /// Gives out all bytes, in pieces of `CRecordStream::kPieceSize` and a last one of what is left.
    void GiveTo(const CRecordStream::Take& take) const;

 private:
    std::vector<CSheetRecords> m_sheets;
    CSharedStrings m_strings;
    std::size_t m_size = 0;
};

}  // namespace YExcel
