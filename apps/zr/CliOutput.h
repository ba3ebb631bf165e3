#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// Standard output: gathered into blocks, every failure noticed.
///
/// When the reader has closed the pipe (`zr log items LOG | head`) the rest is dropped quietly.
class CliOutput
{
public:
    /// The one of the program.
    static CliOutput& Get();

    /// Occupies the numbers of standard streams that the caller has closed, lest a file that is opened later
    /// gets one of them and receives what is meant for the terminal. To be called first of all.
    static void ReserveStreams();

    /// Appends bytes as they are. False when nothing more can be written: the verb may stop early.
    bool Write(const char* bytes, std::size_t size);
    bool Write(const QByteArray& bytes);

    /// Appends \p text and a line feed, as UTF-8.
    bool Line(const QString& text);

    /// Appends \p object on a line of its own.
    bool Json(const QJsonObject& object);

    static bool IsTerminal();

    /// Hands on what was gathered; false when the output has failed.
    bool Flush();

    /// Writes what is left. Returns \p code, or the one for a failed output, after a message, or the one for
    /// an interrupt.
    int Finish(int code);

private:
    QByteArray m_gathered;
    bool m_open = true; ///< false after the first failure
    int m_errno = 0; ///< of the first failure
};
