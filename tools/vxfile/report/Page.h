#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Json.h"

namespace vxfile {

/// What is told about one file, put together once for people and for programs. Long texts are cut for people.
class CPage {
 public:
    /// Adds a line with a label, and the same as a member of the JSON object.
    void Add(std::string_view label, std::string_view key, const std::string& text) { Add(label, key, text, text); }
    void Add(std::string_view label, std::string_view key, const std::string& text, CJson value);
    /// Adds a line if there is a text; JSON has it in any case.
    void AddText(std::string_view label, std::string_view key, std::string_view bytes);

    /// A table for people: the heads of its columns, then its rows, all as long.
    using CRow = std::vector<std::string>;
    void SetTable(std::vector<CRow> rows);
    /// A remark for people, below all.
    void SetRemark(std::string remark) { m_remark = std::move(remark); }

    /// Says in a sentence that the file was cut or damaged, below all, and as a member of the JSON object. An empty one
    /// says nothing.
    void SetDamage(const std::string& sentence);
    bool IsDamaged() const { return !m_damage.empty(); }

    /// The object that goes into the document for programs; what only programs get is put right there.
    CJson& Json() { return m_json; }

    /// Prints what is for people.
    void Print() const;

 private:
    std::vector<std::pair<std::string, std::string>> m_lines;
    std::vector<CRow> m_table;
    std::string m_remark;
    std::string m_damage;
    CJson m_json = CJson::object();
};

}  // namespace vxfile
