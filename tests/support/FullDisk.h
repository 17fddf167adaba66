#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstddef>

/// Limits the size of files: the system refuses writes beyond it, or writes only the first part.
class CFullDisk {
 public:
    explicit CFullDisk(std::size_t size) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        m_signal = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{size, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~CFullDisk() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }
    CFullDisk(const CFullDisk&) = delete;
    CFullDisk& operator=(const CFullDisk&) = delete;

 private:
    rlimit m_before{};
    void (*m_signal)(int) = SIG_DFL;
};
