#include "tools/vxfile/report/Table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "tools/vxfile/report/Json.h"
#include "tools/vxfile/report/Text.h"
#include "verify/Failure.h"

namespace vxfile {

namespace {

constexpr std::array<std::string_view, 5> kTypeWords = {"text", "whole", "whole", "real", "flag"};

void AddNumber(std::string& text, auto number) {
    std::array<char, 32> digits{};
    text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

/// Appends a number in a form that is a real even if it is whole.
void AddReal(std::string& text, double number) {
    if (std::isnan(number)) {
        text += "nan";
        return;
    }
    const std::size_t start = text.size();
    AddNumber(text, number);
    if (text.find_first_of(".en", start) == std::string::npos) text += ".0";
}

/// Writes a line of text per row.
class CLines : public CTableWriter {
 public:
    explicit CLines(const CTarget& target) : m_output(target) {}

 protected:
    void WriteLine(std::string& line) {
        line += '\n';
        m_output.Write(line);
        line.clear();
    }

 private:
    void Finish(std::vector<COutput*>& outputs) override {
        m_output.Finish();
        outputs.push_back(&m_output);
    }

    COutput m_output;
};

/// Writes a line of names, then fields with a separator.
class CDelimited : public CLines {
 public:
    CDelimited(const CTarget& target, std::span<const CColumn> columns, char separator)
        : CLines(target), m_separator(separator) {
        for (const auto& column : columns)
            Separate().append(column.name);
        WriteLine(m_line);
    }

    void Put(std::span<const CCell> row) override {
        bool isFirst = true;
        for (const CCell& cell : row) {
            if (!isFirst) m_line += m_separator;
            isFirst = false;
            std::visit([this](const auto& value) { Add(value); }, cell);
        }
        WriteLine(m_line);
    }

 private:
    std::string& Separate() {
        if (!m_line.empty()) m_line += m_separator;
        return m_line;
    }

    template <class Value>
    void Add(const Value& value) {
        if constexpr (std::is_same_v<Value, std::string_view>) {
            m_line += DelimitedField(std::string(value), m_separator);
        } else if constexpr (std::is_same_v<Value, double>) {
            AddReal(m_line, value);
        } else if constexpr (std::is_same_v<Value, bool>) {
            m_line += value ? "true" : "false";
        } else if constexpr (!std::is_same_v<Value, std::monostate>) {
            AddNumber(m_line, value);
        }
    }

    char m_separator;
    std::string m_line;
};

/// Writes a JSON object per row.
class CJsonLines : public CLines {
 public:
    CJsonLines(const CTarget& target, std::span<const CColumn> columns) : CLines(target) {
        for (const auto& column : columns)
            m_keys.push_back((m_keys.empty() ? "{" : ",") + CJson(column.name).dump() + ':');
    }

    void Put(std::span<const CCell> row) override {
        for (std::size_t i = 0; i < row.size(); ++i) {
            m_line += m_keys[i];
            std::visit([this](const auto& value) { Add(value); }, row[i]);
        }
        m_line += '}';
        WriteLine(m_line);
    }

 private:
    template <class Value>
    void Add(const Value& value) {
        if constexpr (std::is_same_v<Value, std::string_view>) {
            m_line += CJson(value).dump(-1, ' ', false, CJson::error_handler_t::replace);
        } else if constexpr (std::is_same_v<Value, bool>) {
            m_line += value ? "true" : "false";
        } else if constexpr (std::is_same_v<Value, std::monostate>) {
            m_line += "null";
        } else if constexpr (std::is_same_v<Value, double>) {
            if (std::isfinite(value)) return AddReal(m_line, value);
            m_line += "null";
        } else {
            AddNumber(m_line, value);
        }
    }

    std::vector<std::string> m_keys;  ///< With the text before them.
    std::string m_line;
};

/// Writes an item of a structured array per row.
class CItems : public CTableWriter {
 public:
    CItems(const CTarget& target, std::span<const CColumn> columns, const std::function<std::uint64_t()>& countAhead)
        : m_columns(columns), m_file(target, Type(columns), countAhead) {}

    void Put(std::span<const CCell> row) override {
        m_item.clear();
        for (std::size_t i = 0; i < row.size(); ++i)
            AddCell(m_columns[i], row[i]);
        m_file.Put(std::as_bytes(std::span(m_item)), 1);
    }

 private:
    static std::string Type(std::span<const CColumn> columns) {
        constexpr std::array<std::string_view, 5> kTypes = {"|S", "<i8", "<u8", "<f8", "|b1"};
        std::string type;
        for (const auto& column : columns) {
            type.append(type.empty() ? "[('" : ",('").append(column.name).append("','");
            type += kTypes[static_cast<std::size_t>(column.type)];
            if (column.type == EColumnType::Text) type += std::to_string(column.room);
            type += "')";
        }
        return type + ']';
    }

    void AddCell(const CColumn& column, const CCell& cell) {
        switch (column.type) {
            case EColumnType::Text:
                return AddText(column, ValueOr(cell, std::string_view()));
            case EColumnType::Whole:
                return AddValue(ValueOr(cell, std::numeric_limits<std::int64_t>::min()));
            case EColumnType::Count:
                return AddValue(ValueOr(cell, std::uint64_t{0}));
            case EColumnType::Real:
                return AddValue(ValueOr(cell, std::numeric_limits<double>::quiet_NaN()));
            case EColumnType::Flag:
                return AddValue(ValueOr(cell, false));
        }
    }

    template <class Value>
    static Value ValueOr(const CCell& cell, Value missing) {
        return std::holds_alternative<std::monostate>(cell) ? missing : std::get<Value>(cell);
    }

    void AddText(const CColumn& column, std::string_view text) {
        if (text.size() > column.room)
            throw CFailure("An array has " + std::to_string(column.room) + " bytes for a " + std::string(column.name) +
                           ", too few for " + Quoted(text) + "; choose --csv, --tsv or --jsonl.");
        m_item.append(text).append(column.room - text.size(), '\0');
    }

    void Finish(std::vector<COutput*>& outputs) override { m_file.Finish(outputs); }

    void AddValue(const auto& value) {
        const std::size_t start = m_item.size();
        m_item.resize(start + sizeof value);
        std::memcpy(m_item.data() + start, &value, sizeof value);
    }

    std::span<const CColumn> m_columns;
    std::string m_item;
    CNpyFile m_file;
};

}  // namespace

void CTableWriter::Commit() {
    std::vector<COutput*> outputs;
    Finish(outputs);
    COutput::Commit(outputs);
}

std::unique_ptr<CTableWriter> MakeTableWriter(ETableForm form, const CTarget& target, std::span<const CColumn> columns,
                                              const std::function<std::uint64_t()>& countAhead) {
    switch (form) {
        case ETableForm::Npy:
            return std::make_unique<CItems>(target, columns, countAhead);
        case ETableForm::JsonLines:
            return std::make_unique<CJsonLines>(target, columns);
        case ETableForm::Tsv:
            return std::make_unique<CDelimited>(target, columns, '\t');
        case ETableForm::Csv:
            break;
    }
    return std::make_unique<CDelimited>(target, columns, ',');
}

void WriteColumns(ETableForm form, const CTarget& target, std::span<const CColumn> columns) {
    static constexpr CColumn kColumns[] = {{"name", EColumnType::Text, "", ""},
                                           {"type", EColumnType::Text, "", ""},
                                           {"unit", EColumnType::Text, "", ""},
                                           {"meaning", EColumnType::Text, "", "", 128}};
    const auto writer = MakeTableWriter(form, target, kColumns, [&] { return columns.size(); });
    for (const auto& column : columns) {
        const CCell row[] = {column.name, kTypeWords[static_cast<std::size_t>(column.type)], column.unit,
                             column.meaning};
        writer->Put(row);
    }
    writer->Commit();
}

std::string DelimitedField(std::string text, char separator) {
    if (text.find_first_of("=+-@") == 0) text.insert(0, 1, '\'');
    if (text.find_first_of(std::string("\"\r\n") + separator) == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}

}  // namespace vxfile
