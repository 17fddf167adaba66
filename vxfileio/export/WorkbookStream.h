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

/// @name Numbers of equal records among the globals
/// @{
inline constexpr int kFonts = 4;
inline constexpr int kFormats = 21;
inline constexpr int kStyles = 6;
/// @}

/// The sheets of a workbook, in order.
using Sheets = std::vector<std::unique_ptr<Sheet>>;

/// A sheet and the records that describe it elsewhere in the stream.
struct CSheetRecords {
    const Sheet* sheet = nullptr;
    BoundSheet name = {};
    Index index = {};
    Dimensions dimensions = {};
    Window2 window = {};
};

/// The stream of a workbook. The sheets must not change while this object is in use. The constructor computes the size;
/// the bytes are created piece by piece on request, so the whole stream is never in memory.
class CWorkbookStream {
 public:
    explicit CWorkbookStream(const Sheets& sheets);

    /// Returns the number of bytes.
    std::size_t Size() const { return m_size; }
    /// Passes all bytes to `take` in pieces of `CRecordStream::kPieceSize`; the last piece is smaller.
    void GiveTo(const CRecordStream::Take& take) const;

 private:
    std::vector<CSheetRecords> m_sheets;
    CSharedStrings m_strings;
    std::size_t m_size = 0;
};

}  // namespace YExcel
