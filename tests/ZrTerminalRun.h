#pragma once

#include "ZrToolRun.h"

#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

/// The tool with standard output, standard error or both on a terminal that the test reads.
class TerminalRun : public QProcess
{
public:
    TerminalRun(bool out, bool err)
        : m_out(out)
        , m_err(err)
        , m_master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0
            || ::fcntl(m_master, F_SETFL, O_NONBLOCK) != 0)
            qFatal("no terminal can be had");
        m_slave = ::ptsname(m_master);
        // Held open, or what was written would be lost when the tool ends.
        m_keep = ::open(m_slave, O_RDWR | O_NOCTTY | O_CLOEXEC);
    }

    ~TerminalRun() override
    {
        ::close(m_keep);
        ::close(m_master);
    }

    /// `zr log` with \p arguments.
    ToolResult Run(const QStringList& arguments) { return RunTool(QStringList{S("log")} + arguments); }

    ToolResult RunTool(const QStringList& arguments)
    {
        start(ToolPath(), arguments);
        while (state() != QProcess::NotRunning) {
            waitForFinished(10);
            Read();
        }
        const ToolResult result = Finish(*this);
        Read();
        return result;
    }

    QByteArray seen; ///< what the terminal got; each line feed has become CR LF

protected:
    void setupChildProcess() override
    {
        const int slave = ::open(m_slave, O_RDWR | O_NOCTTY);
        if (m_out)
            ::dup2(slave, STDOUT_FILENO);
        if (m_err)
            ::dup2(slave, STDERR_FILENO);
        ::close(slave);
    }

private:
    void Read()
    {
        char bytes[4096];
        ssize_t count = 0;
        while ((count = ::read(m_master, bytes, sizeof bytes)) > 0)
            seen.append(bytes, static_cast<int>(count));
    }

    bool m_out;
    bool m_err;
    int m_master;
    int m_keep = -1;
    const char* m_slave = nullptr;
};
