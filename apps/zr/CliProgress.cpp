#include "CliProgress.h"

#include <algorithm>
#include <atomic>
#include <unistd.h>

namespace {

std::atomic<bool> g_shown{false};

/// A bar that cannot be written is no reason to stop.
void WriteToTerminal(const char* bytes, std::size_t count)
{
    const ssize_t written = ::write(STDERR_FILENO, bytes, count);
    static_cast<void>(written);
}

} // namespace

CliProgress::CliProgress(const QString& label)
    : m_label(label)
{
}

CliProgress::~CliProgress()
{
    EraseLine();
}

void CliProgress::UpdateProgress(int percent)
{
    percent = std::clamp(percent, 0, 100);
    if (percent == m_percent)
        return;
    m_percent = percent;
    if (!::isatty(STDERR_FILENO))
        return;
    constexpr int width = 40;
    const int filled = percent * width / 100;
    const QByteArray line = '\r' + m_label.toUtf8() + "  [" + QByteArray(filled, '#')
        + QByteArray(width - filled, '.') + "] " + QByteArray::number(percent).rightJustified(3) + " %";
    g_shown = true;
    WriteToTerminal(line.constData(), static_cast<std::size_t>(line.size()));
}

void CliProgress::EraseLine()
{
    constexpr char erase[] = "\r\033[K";
    if (g_shown.exchange(false))
        WriteToTerminal(erase, sizeof erase - 1);
}
