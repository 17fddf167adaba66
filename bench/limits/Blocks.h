#pragma once

// Writes and reads documents of a known form: formats numbers with std::to_chars into blocks of 64 KiB, and parses them
// with std::from_chars from such blocks. A document is described once, for both directions.

#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

inline constexpr std::size_t kBlock = 65536;

class CWriting {
 public:
    explicit CWriting(const char* path) : m_file(open(path, O_WRONLY | O_CREAT | O_TRUNC, 0666)) {}
    ~CWriting() {
        Flush();
        close(m_file);
    }
    void Text(std::string_view text) {
        if (m_at + text.size() > kBlock) Flush();
        std::memcpy(m_block + m_at, text.data(), text.size());
        m_at += text.size();
    }
    void Number(const auto& value, auto... form) {
        if (m_at + 64 > kBlock) Flush();
        m_at = static_cast<std::size_t>(std::to_chars(m_block + m_at, m_block + kBlock, value, form...).ptr - m_block);
    }
    void Sample(double value) { Number(value, std::chars_format::general, 6); }
    void Real(double value) {
        if (m_at + 64 > kBlock) Flush();
        const std::size_t start = m_at;
        Number(value, std::chars_format::fixed);
        if (std::memchr(m_block + start, '.', m_at - start) == nullptr) Text(".");
    }
    void Label(const std::string& label) { Text(label); }
    void Word(int& value, const auto& words, auto /*valueOf*/) { Text(words[value]); }

 private:
    void Flush() {
        if (write(m_file, m_block, m_at) != static_cast<ssize_t>(m_at)) std::exit(1);
        m_at = 0;
    }

    int m_file;
    std::size_t m_at = 0;
    char m_block[kBlock];
};

class CReading {
 public:
    explicit CReading(const char* path) : m_file(open(path, O_RDONLY)) {}
    ~CReading() { close(m_file); }
    void Text(std::string_view text) {
        Fill();
        m_at += text.size();
    }
    void Number(auto& value) {
        Fill();
        m_at = static_cast<std::size_t>(std::from_chars(m_block + m_at, m_block + m_end, value).ptr - m_block);
    }
    void Sample(double& value) { Number(value); }
    void Real(double& value) {
        Number(value);
        if (m_block[m_at] == '.') ++m_at;
    }
    void Label(std::string& label) { label = Rest(); }
    void Word(int& value, const auto& /*words*/, auto valueOf) { value = valueOf(Rest()); }

 private:
    /// Ensures that no text or number is split between blocks: none is longer than 4 KiB.
    void Fill() {
        if (m_end - m_at > 4096 || m_ended) return;
        std::memmove(m_block, m_block + m_at, m_end - m_at);
        m_end -= m_at;
        m_at = 0;
        const ssize_t got = read(m_file, m_block + m_end, kBlock - m_end);
        m_end += got > 0 ? static_cast<std::size_t>(got) : 0;
        m_ended = m_end < kBlock;
    }
    std::string_view Rest() {
        Fill();
        const std::string_view all(m_block + m_at, m_end - m_at);
        const std::string_view rest = all.substr(0, all.find('<'));
        m_at += rest.size();
        return rest;
    }

    int m_file;
    bool m_ended = false;
    std::size_t m_at = 0, m_end = 0;
    char m_block[kBlock];
};

/// The number of entries of a list, and the text around it.
template <class Way, class List>
void Size(Way& way, std::string_view ahead, List& list) {
    std::size_t size = list.size();
    way.Text(ahead);
    way.Number(size);
    way.Text("\">");
    if constexpr (requires { list.resize(size); }) list.resize(size);
}
