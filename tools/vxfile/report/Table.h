#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "tools/vxfile/report/NpyFile.h"
#include "tools/vxfile/system/Output.h"
#include "vxfileio/helpers/TableColumn.h"

/// @file
/// Tables, and a writer for each form.

namespace vxfile {

using vxfileio::helpers::CCell;
using vxfileio::helpers::CColumn;
using vxfileio::helpers::EColumnType;
using vxfileio::helpers::kDoseTextColumn;

/// The form of a table in a file.
enum class ETableForm { Csv, Tsv, JsonLines, Npy };

/// Writes a table row by row. Memory holds one row and one block.
class CTableWriter {
 public:
    CTableWriter() = default;
    virtual ~CTableWriter() = default;
    CTableWriter(const CTableWriter&) = delete;
    CTableWriter& operator=(const CTableWriter&) = delete;

    /// Appends a row. Requires: a cell for each column, in order. Throws `CFailure` if the output fails or the form
    /// can't store a value.
    virtual void Put(std::span<const CCell> row) = 0;

    /// Completes the table. A file appears only now.
    void Commit();

 private:
    virtual void Finish(std::vector<COutput*>& outputs) = 0;
};

/// Returns a writer. `columns` must outlive it. `countAhead` is that of `CNpyFile`.
///
/// | Type    | CSV, TSV                                        | JSON lines     | NPY                       |
/// |---------|-------------------------------------------------|----------------|---------------------------|
/// | Text    | a field, see `DelimitedField`                   | a string       | `S` and its room          |
/// | Whole   | digits                                          | a number       | `<i8`                     |
/// | Count   | digits                                          | a number       | `<u8`                     |
/// | Real    | the shortest decimal that reads back, `nan`, `inf` | the same, `null` for nan and infinities | `<f8` |
/// | Flag    | `true`, `false`                                 | the same       | `|b1`                     |
/// | missing | an empty field                                  | `null`         | empty, the least number, 0, nan,
/// false |
[[nodiscard]] std::unique_ptr<CTableWriter> MakeTableWriter(ETableForm form, const CTarget& target,
                                                            std::span<const CColumn> columns,
                                                            const std::function<std::uint64_t()>& countAhead);

/// Writes a description of the columns as a table: their names, types, units and meanings.
void WriteColumns(ETableForm form, const CTarget& target, std::span<const CColumn> columns);

/// Returns a text as one field of CSV or TSV. Adds an apostrophe if a spreadsheet would otherwise run it as a formula,
/// and quotation marks if it would otherwise be more than one field.
std::string DelimitedField(std::string text, char separator);

}  // namespace vxfile
