#pragma once

#include <QString>

#include <atomic>

/// Ctrl-C and its relatives (interrupt, terminate, hang-up).
///
/// A verb either asks `interrupted()` in its loop, or hands a flag to `CancelOnInterrupt`, and then ends with
/// `interrupt_code()`. Work that cannot be asked to stop is ended on the spot: while a `RemoveOnInterrupt`
/// lives, the signal removes its file and ends the process.
namespace cli {

/// Installs the handlers. Writing to a closed pipe or beyond a size limit becomes an ordinary write error.
void install_signals();

/// True once a signal has asked the program to stop.
bool interrupted();

/// Takes back what a signal has asked for: for a verb that a signal ends in the ordinary way.
void forget_interrupt();

/// The exit code after a signal: 128 plus its number.
int interrupt_code();

/// Sets a flag when a signal arrives, as long as the object lives. One at a time.
class CancelOnInterrupt
{
public:
    explicit CancelOnInterrupt(std::atomic<bool>& flag);
    ~CancelOnInterrupt();
    CancelOnInterrupt(const CancelOnInterrupt&) = delete;
    CancelOnInterrupt& operator=(const CancelOnInterrupt&) = delete;
};

/// Names the unfinished file that a signal removes before it ends the process. One at a time.
class RemoveOnInterrupt
{
public:
    explicit RemoveOnInterrupt(const QString& path);
    ~RemoveOnInterrupt();
    RemoveOnInterrupt(const RemoveOnInterrupt&) = delete;
    RemoveOnInterrupt& operator=(const RemoveOnInterrupt&) = delete;
};

/// Lets a signal end the process on the spot as long as the object lives: for work that cannot be asked to
/// stop and leaves nothing behind. Not while there is a `RemoveOnInterrupt`.
class EndOnInterrupt
{
public:
    EndOnInterrupt()
        : m_nothing(QString())
    {
    }

private:
    RemoveOnInterrupt m_nothing;
};

/// Holds signals back as long as the object lives, to be acted on behind it: for short work that has
/// temporary files of its own.
class HoldInterrupts
{
public:
    HoldInterrupts();
    ~HoldInterrupts();
    HoldInterrupts(const HoldInterrupts&) = delete;
    HoldInterrupts& operator=(const HoldInterrupts&) = delete;
};

} // namespace cli
