#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vxfileio/export/Cell.h"
#include "vxfileio/export/biff/GlobalRecords.h"

namespace YExcel {

/// The texts of a workbook, each once, in the order of their first use. Narrow and wide ones with the same characters
/// are different. The characters stay in the cells, which must not change as long as this object is in use.
class SharedStrings {
 public:
    /// Takes in the text of a cell and returns its index.
    std::uint32_t Add(const Cell& cell);

    /// The indices that `Add` returned, in the order of its calls: going over the same cells again needs no search.
    const std::vector<std::uint32_t>& Uses() const { return m_uses; }

    /// The record of all texts.
    const SharedStringTable& Table() const { return m_table; }

 private:
    template <class View>
    using IndexOf = std::unordered_map<View, std::uint32_t>;

    template <class View>
    std::uint32_t AddTo(IndexOf<View>& indices, View text);

    IndexOf<std::string_view> m_narrow;
    IndexOf<std::u16string_view> m_wide;
    SharedStringTable m_table;
    std::vector<std::uint32_t> m_uses;
};

}  // namespace YExcel
