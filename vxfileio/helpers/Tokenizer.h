#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace vxfileio::helpers {

/// A set of characters with a lookup in constant time.
class CCharSet {
 public:
    constexpr explicit CCharSet(std::string_view members) {
        for (const char c : members)
            m_has[static_cast<unsigned char>(c)] = true;
    }

    constexpr bool Has(char c) const { return m_has[static_cast<unsigned char>(c)]; }

 private:
    std::array<bool, 256> m_has{};
};

/// Splits a text into tokens without copying.
///
/// Any one of the separator characters separates, and a run of them counts as one. A leading separator makes an empty
/// first token, a trailing one an empty last token; an empty text has no token.
class CTokenizer {
 public:
    /// The caller owns text and separators, which must outlive this object.
    CTokenizer(std::string_view text, const CCharSet& separators)
        : m_rest(text), m_separators(separators), m_emptyAtEnd(!text.empty() && separators.Has(text.back())) {}

    /// Returns the next token, which points into the text, or nothing if there is none left.
    std::optional<std::string_view> Next() {
        if (m_rest.empty()) return NextAtEnd();
        const auto isSeparator = [this](char c) { return m_separators.Has(c); };
        const auto* const end = std::find_if(m_rest.begin(), m_rest.end(), isSeparator);
        const auto* const next = std::find_if_not(end, m_rest.end(), isSeparator);
        const std::string_view token(m_rest.begin(), end);
        m_rest = {next, m_rest.end()};
        return token;
    }

 private:
    std::optional<std::string_view> NextAtEnd() {
        if (!m_emptyAtEnd) return std::nullopt;
        m_emptyAtEnd = false;
        return std::string_view();
    }

    std::string_view m_rest;
    const CCharSet& m_separators;
    bool m_emptyAtEnd;
};

}  // namespace vxfileio::helpers
