#include "CliMessages.h"

#include "CliOutput.h"
#include "CliProgress.h"

#include <cstdio>
#include <mutex>

namespace {

constexpr int mostKept = 100;

std::mutex g_mutex; ///< guards the two below
QStringList g_lines;
bool g_verbose = false;

void WriteLine(const QByteArray& line)
{
    CliProgress::EraseLine();
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
    std::fflush(stderr);
}

void Keep(QtMsgType, const QMessageLogContext&, const QString& text)
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    if (g_lines.size() >= mostKept)
        g_lines.removeFirst();
    g_lines << text;
    if (g_verbose)
        WriteLine("debug: " + text.toUtf8() + '\n');
}

} // namespace

void cli::install_message_handler(bool verbose)
{
    g_verbose = verbose;
    qInstallMessageHandler(Keep);
}

QStringList cli::take_debug_output()
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    QStringList lines;
    lines.swap(g_lines);
    return lines;
}

void cli::complain(const QString& text)
{
    // What was found so far stands above the complaint.
    CliOutput::Get().Flush();
    WriteLine("zr: " + text.toUtf8() + '\n');
}

int cli::fail(int code, const QString& text)
{
    complain(text);
    return code;
}
