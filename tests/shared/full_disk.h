// SPDX-License-Identifier: MIT
// A disk that takes no more than so many bytes of a file.
#pragma once

#include <csignal>

#include <sys/resource.h>

/// Files of this process may not grow beyond so many bytes while this lives.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN); // else the process ends
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit { bytes, m_before.rlim_max };
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit m_before {};
};
