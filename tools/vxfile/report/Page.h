#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Json.h"

namespace vxfile {

/// The description of a file, made once for people and for programs. Long texts are cut for people.
class CPage {
 public:
    /// Adds a line with a label, and the same as a member of the JSON object.
    void Add(std::string_view label, std::string_view key, const std::string& text) { Add(label, key, text, text); }
    void Add(std::string_view label, std::string_view key, const std::string& text, CJson value);
    /// Adds a line if the text isn't empty. JSON always has it.
    void AddText(std::string_view label, std::string_view key, std::string_view bytes);

    /// A table for people: its headings, then its rows, all of the same length.
    using CRow = std::vector<std::string>;
    void SetTable(std::vector<CRow> rows);
    /// Sets a remark for people at the end.
    void SetRemark(std::string remark) { m_remark = std::move(remark); }

    /// Sets a sentence about damage at the end, which is also a member of the JSON object. Empty means none.
    void SetDamage(const std::string& sentence);
    bool IsDamaged() const { return !m_damage.empty(); }

    /// The JSON object for programs. What only programs need is added to it directly.
    CJson& Json() { return m_json; }

    /// Prints the text for people.
    void Print() const;

 private:
    std::vector<std::pair<std::string, std::string>> m_lines;
    std::vector<CRow> m_table;
    std::string m_remark;
    std::string m_damage;
    CJson m_json = CJson::object();
};

}  // namespace vxfile
