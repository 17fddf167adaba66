#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace gd_xml_stream {

/// The names of the open elements, innermost last, in one growing block.
class XmlNameStack {
 public:
    /// Whether no element is open.
    bool IsEmpty() const { return m_starts.empty(); }

    /// Adds a name as the innermost.
    void Push(std::string_view name) {
        m_starts.push_back(m_names.size());
        m_names += name;
    }

    /// Removes the innermost name.
    void Pop() {
        m_names.resize(m_starts.back());
        m_starts.pop_back();
    }

    /// Returns the number of names.
    std::size_t Size() const { return m_starts.size(); }

    /// Returns a name by its number, 0 being the outermost. Valid until the next change.
    std::string_view At(std::size_t number) const {
        const std::size_t start = m_starts[number];
        const std::size_t end = number + 1 < m_starts.size() ? m_starts[number + 1] : m_names.size();
        return std::string_view(m_names).substr(start, end - start);
    }

    /// The innermost name; it lives until the next change.
    std::string_view Top() const { return std::string_view(m_names).substr(m_starts.back()); }

 private:
    std::string m_names;
    std::vector<std::size_t> m_starts;
};

}  // namespace gd_xml_stream
