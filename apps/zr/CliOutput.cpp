#include "CliOutput.h"

#include "CliExit.h"
#include "CliMessages.h"
#include "CliSignals.h"

#include <QJsonDocument>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr int gatherSize = 64 * 1024;

} // namespace

CliOutput& CliOutput::Get()
{
    static CliOutput output;
    return output;
}

void CliOutput::ReserveStreams()
{
    // Opened for the other direction, so that using the stream still fails. The lowest free number is taken.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) < 0 && errno == EBADF)
            ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

bool CliOutput::Write(const char* bytes, std::size_t size)
{
    // In pieces, since the array counts in int.
    for (std::size_t at = 0; at < size && m_open;) {
        const std::size_t piece = std::min<std::size_t>(size - at, gatherSize);
        m_gathered.append(bytes + at, static_cast<int>(piece));
        at += piece;
        if (m_gathered.size() >= gatherSize)
            Flush();
    }
    return m_open;
}

bool CliOutput::Write(const QByteArray& bytes)
{
    return Write(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

bool CliOutput::Line(const QString& text)
{
    return Write(text.toUtf8() + '\n');
}

bool CliOutput::Json(const QJsonObject& object)
{
    return Write(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

bool CliOutput::IsTerminal()
{
    return ::isatty(STDOUT_FILENO) != 0;
}

bool CliOutput::Flush()
{
    const char* bytes = m_gathered.constData();
    std::size_t left = static_cast<std::size_t>(m_gathered.size());
    while (left > 0 && m_open && !cli::interrupted()) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes, left);
        if (written >= 0) {
            bytes += written;
            left -= static_cast<std::size_t>(written);
        } else if (errno == EAGAIN) {
            // A terminal that another program has switched to non-blocking.
            pollfd ready = {STDOUT_FILENO, POLLOUT, 0};
            ::poll(&ready, 1, 1000);
        } else if (errno != EINTR || cli::interrupted()) {
            m_errno = errno;
            m_open = false;
        }
    }
    m_gathered.clear();
    return m_open;
}

int CliOutput::Finish(int code)
{
    Flush();
    if (cli::interrupted())
        return cli::interrupt_code();
    if (m_open || m_errno == EPIPE)
        return code;
    return cli::fail(
        exBadOutput, QStringLiteral("standard output: ") + QString::fromLocal8Bit(std::strerror(m_errno)));
}
