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
    /// Copies the text up to its NUL; null means empty.
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

    /// Returns the text with a terminating NUL, valid until the string changes.
    operator const char*() const { return m_text.c_str(); }
    /// Returns the characters for changing them in place, valid until the string changes otherwise.
    char* GetBuffer() { return m_text.data(); }
    /// Returns the text as a standard string, valid as long as this object.
    const std::string& Text() const { return m_text; }

    /// Makes the string empty.
    void Empty() { m_text.clear(); }

    /// Returns up to `count` characters from `start` on; empty if `start` is beyond the end.
    CStdStr Mid(std::size_t start, std::size_t count = std::string::npos) const {
        return start < m_text.size() ? CStdStr(m_text.substr(start, count)) : CStdStr();
    }

    /// Removes every occurrence of `c`.
    void Remove(char c) { std::erase(m_text, c); }
    /// Replaces every `from` with `to`.
    void Replace(char from, char to) { std::replace(m_text.begin(), m_text.end(), from, to); }

 private:
    std::string m_text;
};

}  // namespace vxfileio::helpers
