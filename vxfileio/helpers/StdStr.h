#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace vxfileio::helpers {

/// A narrow string, the type that `CStringParser` and `CPath` work in. A value with deep copies.
class CStdStr {
 public:
    CStdStr() = default;
    /// Takes the text up to its NUL; null counts as empty.
    CStdStr(const char* text) : m_text(text == nullptr ? "" : text) {}
    CStdStr(std::string text) : m_text(std::move(text)) {}

    CStdStr& operator=(char c) {
        m_text.assign(1, c);
        return *this;
    }
    CStdStr& operator+=(char c) {
        m_text += c;
        return *this;
    }
    CStdStr& operator+=(const CStdStr& text) {
        m_text += text.m_text;
        return *this;
    }

    /// The text with a NUL after it, valid until the string changes.
    operator const char*() const { return m_text.c_str(); }
    /// The text for changing its characters in place, valid until the string changes otherwise.
    char* GetBuffer() { return m_text.data(); }
    /// The text as a standard string, valid as long as this object.
    const std::string& Text() const { return m_text; }

    /// Makes the string empty.
    void Empty() { m_text.clear(); }

    /// Returns up to `count` characters from `start` on; empty if `start` is beyond the end.
    CStdStr Mid(std::size_t start, std::size_t count = std::string::npos) const {
        return start < m_text.size() ? CStdStr(m_text.substr(start, count)) : CStdStr();
    }

    /// Removes every `c`.
    void Remove(char c) { std::erase(m_text, c); }
    /// Puts `to` in place of every `from`.
    void Replace(char from, char to) { std::replace(m_text.begin(), m_text.end(), from, to); }

 private:
    std::string m_text;
};

}  // namespace vxfileio::helpers
