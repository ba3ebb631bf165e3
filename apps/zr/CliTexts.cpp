#include "CliTexts.h"

#include "CliExit.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliSignals.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/select.h>
#include <unistd.h>

namespace {

constexpr int blockSize = 64 * 1024;
constexpr int longestLine = 64 * 1024; ///< bytes; what is longer is no text for a person

int WorkOnArguments(const std::vector<std::string>& arguments, int together, const cli::TextWork& work)
{
    const int count = static_cast<int>(arguments.size());
    if (count % together != 0)
        return cli::fail(exUsage,
            QStringLiteral("The number of arguments must be a multiple of %1, not %2")
                .arg(together)
                .arg(count));
    int code = exDone;
    for (int at = 0; at < count && !cli::interrupted(); at += together) {
        cli::TextInput input;
        input.number = at + 1;
        for (int i = at; i < at + together; ++i)
            input.texts << QString::fromStdString(arguments[static_cast<std::size_t>(i)]);
        const QString error = work(input);
        if (!error.isEmpty()) {
            code = cli::fail(
                exUsage, QStringLiteral("\"%1\": %2").arg(input.texts.join(QLatin1String("\" \"")), error));
        }
    }
    return code;
}

/// The lines of standard input, as they come.
class LineReader
{
public:
    /// False at the end, after a failure, and when a signal has come.
    bool Next(QByteArray& line)
    {
        for (;;) {
            const int end = m_rest.indexOf('\n');
            if (end >= 0) {
                line = m_rest.left(end);
                m_rest.remove(0, end + 1);
                return true;
            }
            if (m_rest.size() > longestLine || m_ended) {
                line = m_rest;
                m_rest.clear();
                return !line.isEmpty() && !cli::interrupted();
            }
            ReadBlock();
        }
    }

    int Error() const { return m_errno; }

private:
    void ReadBlock()
    {
        // Who types the lines wants to see the answer to each.
        if (!CliOutput::Get().Flush() || !WaitForInput()) {
            m_ended = true;
            m_rest.clear();
            return;
        }
        char block[blockSize];
        const ssize_t got = ::read(STDIN_FILENO, block, sizeof block);
        if (got > 0) {
            m_rest.append(block, static_cast<int>(got));
        } else if (got == 0 || errno != EINTR) {
            m_errno = got < 0 ? errno : 0;
            m_ended = true;
        }
    }

    /// False after a signal. They are let through while it waits and at no other time, so that none comes
    /// between the question whether there was one and the waiting.
    static bool WaitForInput()
    {
        sigset_t signals;
        sigset_t before;
        ::sigemptyset(&signals);
        for (const int number : {SIGINT, SIGTERM, SIGHUP})
            ::sigaddset(&signals, number);
        ::pthread_sigmask(SIG_BLOCK, &signals, &before);
        if (!cli::interrupted()) {
            fd_set input;
            FD_ZERO(&input);
            FD_SET(STDIN_FILENO, &input);
            ::pselect(STDIN_FILENO + 1, &input, nullptr, nullptr, nullptr, &before);
        }
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
        return !cli::interrupted();
    }

    QByteArray m_rest;
    bool m_ended = false;
    int m_errno = 0;
};

int WorkOnLines(const cli::TextWork& work)
{
    int code = exDone;
    LineReader reader;
    QByteArray line;
    for (int number = 1; !cli::interrupted() && reader.Next(line); ++number) {
        const QString text = QString::fromUtf8(line).trimmed();
        if (text.isEmpty())
            continue;
        const QString error = work({{text}, number});
        if (!error.isEmpty())
            code = cli::fail(exBadInput, QStringLiteral("line %1: %2").arg(number).arg(error));
    }
    if (reader.Error() != 0) {
        return cli::fail(exBadInput,
            QStringLiteral("standard input: ") + QString::fromLocal8Bit(std::strerror(reader.Error())));
    }
    return code;
}

} // namespace

int cli::for_each_text(const std::vector<std::string>& arguments, int together, const TextWork& work)
{
    return arguments.empty() ? WorkOnLines(work) : WorkOnArguments(arguments, together, work);
}
