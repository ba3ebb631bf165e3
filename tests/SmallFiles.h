#pragma once

#include <QtGlobal>

#include <csignal>
#include <sys/resource.h>

/// As long as it lives no file of this process can grow beyond so many bytes: writing on fails, as on a full
/// or broken disk.
class SmallFiles
{
public:
    explicit SmallFiles(qint64 bytes)
        : m_signal(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = static_cast<rlim_t>(bytes);
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;

    ~SmallFiles()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }

private:
    void (*m_signal)(int);
    rlimit m_before{};
};
