#pragma once

#include <optional>
#include <string_view>

namespace vxfileio {

/// Cuts a text into tokens, copying nothing.
///
/// Any one of the separator characters separates, and a run of them counts as one. A leading separator gives an empty
/// first token, a trailing one an empty last token; an empty text has no token.
class CTokenizer {
 public:
    CTokenizer(std::string_view text, std::string_view separators)
        : m_rest(text), m_separators(separators), m_emptyAtEnd(!text.empty() && IsSeparator(text.back())) {}

    /// Returns the next token, which points into the text, or nothing if there is none left.
    std::optional<std::string_view> Next() {
        if (m_rest.empty()) return NextAtEnd();
        const auto end = m_rest.find_first_of(m_separators);
        const auto token = m_rest.substr(0, end);
        const auto next = m_rest.find_first_not_of(m_separators, token.size());
        m_rest.remove_prefix(next == std::string_view::npos ? m_rest.size() : next);
        return token;
    }

 private:
    bool IsSeparator(char c) const { return m_separators.find(c) != std::string_view::npos; }

    std::optional<std::string_view> NextAtEnd() {
        if (!m_emptyAtEnd) return std::nullopt;
        m_emptyAtEnd = false;
        return std::string_view();
    }

    std::string_view m_rest;
    std::string_view m_separators;
    bool m_emptyAtEnd;
};

}  // namespace vxfileio
