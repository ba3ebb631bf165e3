#pragma once

// What the tests of the data log share. Logs are assembled here byte by byte from the file layout, with none
// of the library's own writers, so that writer and reader are each held against the same third party.

#include "ZrSanitizer.h"
#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrPlayer.h"

#include <QByteArray>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>
#include <QtEndian>
#include <QtTest/QtTest>

#include <cstring>
#include <functional>
#include <limits>
#include <mutex>

#ifdef Q_OS_UNIX
#include <sys/wait.h>
#include <unistd.h>
#endif

/// Collects the lines of the Qt debug stream, of all threads, while it lives.
class MessageCatcher
{
public:
    MessageCatcher()
        : m_before(s_current)
    {
        s_current = this;
        m_handlerBefore = qInstallMessageHandler(&MessageCatcher::Handle);
    }

    ~MessageCatcher()
    {
        qInstallMessageHandler(m_handlerBefore);
        s_current = m_before;
    }

    MessageCatcher(const MessageCatcher&) = delete;
    MessageCatcher& operator=(const MessageCatcher&) = delete;

    /// The lines so far; they are forgotten.
    QStringList Take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        QStringList lines;
        lines.swap(m_lines);
        return lines;
    }

    /// Called with each line, on the thread that wrote it.
    std::function<void(const QString&)> onMessage;

private:
    static void Handle(QtMsgType, const QMessageLogContext&, const QString& text)
    {
        MessageCatcher& self = *s_current;
        {
            const std::lock_guard<std::mutex> lock(self.m_mutex);
            self.m_lines << text;
        }
        if (self.onMessage)
            self.onMessage(text);
    }

    static inline MessageCatcher* s_current = nullptr;

    MessageCatcher* m_before;
    QtMessageHandler m_handlerBefore = nullptr;
    std::mutex m_mutex;
    QStringList m_lines;
};

/// How the debug stream shows two texts side by side: the second one quoted.
inline QString Line(const char* text, const QString& quoted)
{
    return QLatin1String(text) + QStringLiteral(" \"") + quoted + QLatin1Char('"');
}

template <class T> void AppendLe(QByteArray& bytes, T value)
{
    const T little = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
}

inline void AppendLe(QByteArray& bytes, double value)
{
    quint64 bits;
    static_assert(sizeof bits == sizeof value);
    std::memcpy(&bits, &value, sizeof bits);
    AppendLe<quint64>(bytes, bits);
}

template <class T> T LeAt(const QByteArray& bytes, int offset)
{
    return qFromLittleEndian<T>(bytes.constData() + offset);
}

inline double DoubleAt(const QByteArray& bytes, int offset)
{
    const quint64 bits = LeAt<quint64>(bytes, offset);
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// The 48 bytes at the start of a log.
inline QByteArray FileHeader(double created = 0.0)
{
    QByteArray bytes;
    AppendLe<quint32>(bytes, 0x11223344);
    AppendLe<quint32>(bytes, 48);
    bytes += QByteArray("ZrLogHeaderxxxx", 16);
    AppendLe<quint32>(bytes, 1);
    bytes += QByteArray(4, '\0');
    AppendLe<quint64>(bytes, 0);
    AppendLe(bytes, created);
    return bytes;
}

/// One item of a log as the caller of the writer sees it.
struct Item
{
    quint16 type = 0;
    quint16 sub = 0;
    quint16 source = 0;
    quint16 format = 0;
    double time = 0.0;
    QByteArray payload; ///< as stored
    bool compressed = false;
    quint32 dataSize = 0; ///< of a compressed item; a plain one has as many as are stored

    /// The 40 bytes before the payload.
    QByteArray Header() const
    {
        const quint32 stored = static_cast<quint32>(payload.size());
        QByteArray bytes;
        AppendLe<quint32>(bytes, 0xAABBCCDD);
        AppendLe<quint32>(bytes, 40);
        AppendLe<quint16>(bytes, type);
        AppendLe<quint16>(bytes, format);
        AppendLe<quint16>(bytes, sub);
        AppendLe<quint16>(bytes, 0);
        AppendLe(bytes, time);
        AppendLe<quint16>(bytes, compressed ? 1 : 0);
        AppendLe<quint16>(bytes, source);
        AppendLe<quint32>(bytes, compressed ? dataSize : stored);
        AppendLe<quint32>(bytes, stored);
        AppendLe<quint32>(bytes, 0);
        return bytes;
    }

    QByteArray Bytes() const { return Header() + payload; }
};

/// An item with the fields that most tests care about.
inline Item MakeItem(quint16 type, const QByteArray& payload, quint16 source = 0)
{
    Item item;
    item.type = type;
    item.payload = payload;
    item.source = source;
    return item;
}

/// A log in memory that remembers where its items start.
class LogBytes
{
public:
    LogBytes& Add(const Item& item)
    {
        m_starts << static_cast<quint64>(m_bytes.size());
        m_bytes += item.Bytes();
        return *this;
    }

    const QByteArray& Bytes() const { return m_bytes; }

    quint64 Size() const { return static_cast<quint64>(m_bytes.size()); }

    /// Position of the header of item \p index, counted from 0.
    quint64 Start(int index) const { return m_starts.at(index); }

private:
    QByteArray m_bytes = FileHeader(1234.5);
    QVector<quint64> m_starts;
};

/// The bytes of a text such as "44 33 22 11"; blanks, line ends and everything behind a '#' do not count.
inline QByteArray FromHex(const QByteArray& text)
{
    QByteArray digits;
    for (const QByteArray& line : text.split('\n'))
        digits += line.split('#').first();
    return QByteArray::fromHex(digits);
}

/// A fresh file of these bytes. One that exists is removed first: closing a file that was truncated may wait
/// for the disk.
inline bool WriteWhole(const QString& path, const QByteArray& bytes)
{
    QFile::remove(path);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

/// The content of a file; a null array when it cannot be read.
inline QByteArray ReadWhole(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool AppendTo(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Append) && file.write(bytes) == bytes.size();
}

/// \p bytes with \p patch in the place of what stands at \p offset.
inline QByteArray Patched(QByteArray bytes, int offset, const QByteArray& patch)
{
    return bytes.replace(offset, patch.size(), patch);
}

inline QByteArray Flipped(QByteArray bytes, int offset, int mask)
{
    bytes[offset] = static_cast<char>(bytes.at(offset) ^ mask);
    return bytes;
}

inline zr::span<u8> Span(const QByteArray& bytes)
{
    return zr::span<u8>(
        reinterpret_cast<u8*>(const_cast<char*>(bytes.constData())), static_cast<std::size_t>(bytes.size()));
}

inline QByteArray Bytes(zr::span<u8> span)
{
    return QByteArray(reinterpret_cast<const char*>(span.data()), static_cast<int>(span.size()));
}

/// One line for an item that was handed on, whichever signal brought it.
inline QString ItemText(
    const CRecType& type, quint16 source, quint16 format, double time, const QByteArray& payload)
{
    return QStringLiteral("type %1.%2 source %3 format %4 time %5 bytes %6")
        .arg(type.type)
        .arg(type.sub)
        .arg(source)
        .arg(format)
        .arg(time)
        .arg(QString::fromLatin1(payload.toHex()));
}

inline QString ItemText(const Item& item)
{
    return ItemText(CRecType(item.sub, item.type), item.source, item.format, item.time, item.payload);
}

/// The lines that a player's signals for \p item at \p pos leave in a `SignalLog`.
inline QStringList DeliveryLines(const Item& item, quint64 pos, bool announced)
{
    QStringList lines;
    if (announced)
        lines << QStringLiteral("SeekLog %1").arg(pos);
    lines << QStringLiteral("NewPayload ") + ItemText(item);
    lines << QStringLiteral("NewPayloadPos ") + ItemText(item) + QStringLiteral(" pos %1").arg(pos);
    return lines;
}

/// Writes every signal of a player down as a line of text, in the order of arrival.
///
/// With \p messages the lines of the debug stream stand among them, as "message …".
class SignalLog
{
public:
    explicit SignalLog(ZrPlayer& player, MessageCatcher* messages = nullptr)
        : m_messages(messages)
    {
        if (m_messages)
            m_messages->onMessage
                = [this](const QString& text) { lines << QStringLiteral("message ") + text; };
        QObject::connect(&player, &ZrPlayer::SeekLog, &m_context,
            [this](u64 pos) { lines << QStringLiteral("SeekLog %1").arg(pos); });
        QObject::connect(&player, &ZrPlayer::NewPayload, &m_context,
            [this](const ZrLogItemInf& inf, zr::span<u8> payload) {
                lines << QStringLiteral("NewPayload ") + Text(inf, payload);
            });
        QObject::connect(&player, &ZrPlayer::NewPayloadPos, &m_context,
            [this](const ZrLogItemInf& inf, zr::span<u8> payload, u64 pos) {
                lines << QStringLiteral("NewPayloadPos ") + Text(inf, payload)
                        + QStringLiteral(" pos %1").arg(pos);
            });
        QObject::connect(&player, &ZrPlayer::EndOfFile, &m_context, [this, &player] {
            lines << (player.file.isOpen() ? QStringLiteral("EndOfFile, open")
                                           : QStringLiteral("EndOfFile, closed"));
        });
    }

    ~SignalLog()
    {
        if (m_messages)
            m_messages->onMessage = nullptr;
    }

    SignalLog(const SignalLog&) = delete;
    SignalLog& operator=(const SignalLog&) = delete;

    QStringList Take()
    {
        QStringList taken;
        taken.swap(lines);
        return taken;
    }

    QStringList lines;

private:
    static QString Text(const ZrLogItemInf& inf, zr::span<u8> payload)
    {
        return ItemText(inf, inf.source, inf.format, inf.time, Bytes(payload));
    }

    MessageCatcher* m_messages;
    QObject m_context;
};

/// Remembers every percentage it is told.
class ProgressList final : public IZrProgress
{
public:
    void UpdateProgress(int percent) override { values << percent; }

    int GetProgress() override { return values.isEmpty() ? 0 : values.last(); }

    QVector<int> values;
};

#ifdef Q_OS_UNIX
/// Runs \p body in a child process that is killed after \p seconds; its result, or -1 when a signal ended it.
///
/// For what would spoil this process: resource limits, deadlocks.
inline int RunInChild(const std::function<int()>& body, unsigned seconds = 30)
{
    const pid_t child = fork();
    if (child == 0) {
        alarm(seconds);
        _exit(body());
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
#endif
