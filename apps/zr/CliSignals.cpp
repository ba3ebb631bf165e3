#include "CliSignals.h"

#include "CliProgress.h"

#include <QFile>

#include <climits>
#include <csignal>
#include <cstring>
#include <unistd.h>

namespace {

// All that the handler touches: lock-free atomics, and a path that is complete before it is armed.
std::atomic<int> g_signal{0};
std::atomic<std::atomic<bool>*> g_cancel{nullptr};
std::atomic<bool> g_armed{false};
char g_path[PATH_MAX + 1];
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free
    && std::atomic<std::atomic<bool>*>::is_always_lock_free);

extern "C" void OnSignal(int number)
{
    g_signal = number;
    if (g_armed) {
        CliProgress::EraseLine();
        ::unlink(g_path);
        ::_exit(128 + number);
    }
    if (std::atomic<bool>* flag = g_cancel)
        *flag = true;
}

void Handle(int number, void (*handler)(int))
{
    struct sigaction before = {};
    ::sigaction(number, nullptr, &before);
    // Whoever started the program with the signal ignored (nohup) wants it to stay so.
    if (before.sa_handler == SIG_IGN)
        return;
    // System calls are not resumed: a write to a full pipe must come back for the program to stop.
    struct sigaction action = {};
    action.sa_handler = handler;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(number, &action, nullptr);
}

constexpr int interrupts[] = {SIGINT, SIGTERM, SIGHUP};

void Mask(int how)
{
    sigset_t set;
    ::sigemptyset(&set);
    for (const int number : interrupts)
        ::sigaddset(&set, number);
    ::pthread_sigmask(how, &set, nullptr);
}

} // namespace

void cli::install_signals()
{
    for (const int number : interrupts)
        Handle(number, OnSignal);
    for (const int number : {SIGPIPE, SIGXFSZ})
        Handle(number, SIG_IGN);
}

bool cli::interrupted()
{
    return g_signal != 0;
}

void cli::forget_interrupt()
{
    g_signal = 0;
}

int cli::interrupt_code()
{
    return 128 + g_signal;
}

cli::CancelOnInterrupt::CancelOnInterrupt(std::atomic<bool>& flag)
{
    g_cancel = &flag;
    if (interrupted())
        flag = true;
}

cli::CancelOnInterrupt::~CancelOnInterrupt()
{
    g_cancel = nullptr;
}

cli::RemoveOnInterrupt::RemoveOnInterrupt(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    if (static_cast<std::size_t>(name.size()) >= sizeof g_path)
        return; // no file can have such a name
    std::memcpy(g_path, name.constData(), static_cast<std::size_t>(name.size()) + 1);
    g_armed = true;
}

cli::RemoveOnInterrupt::~RemoveOnInterrupt()
{
    g_armed = false;
}

cli::HoldInterrupts::HoldInterrupts()
{
    Mask(SIG_BLOCK);
}

cli::HoldInterrupts::~HoldInterrupts()
{
    Mask(SIG_UNBLOCK);
}
