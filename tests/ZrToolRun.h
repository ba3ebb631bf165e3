#pragma once

// What the tests of the command-line tool share: running it as a person does, and logs to run it on.

#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrLogFixture.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <memory>

inline QString S(const char* text)
{
    return QString::fromUtf8(text);
}

/// A size below 1 MiB as the tool prints it.
inline QString SizeText(int bytes)
{
    return bytes < 1024 ? S("%1 bytes").arg(bytes)
                        : S("%1 KiB (%2 bytes)").arg(bytes / 1024.0, 0, 'f', 1).arg(bytes);
}

/// How one call of the tool has ended.
struct ToolResult
{
    int code = -1; ///< exit code; -1 when it crashed or did not end
    QByteArray out;
    QByteArray err;

    /// The one JSON object on standard output; empty when that is something else.
    QJsonObject Json() const { return QJsonDocument::fromJson(out).object(); }

    /// The lines of standard output, without the line ends.
    QStringList Lines() const
    {
        QStringList lines = QString::fromUtf8(out).split(QLatin1Char('\n'));
        if (lines.last().isEmpty())
            lines.removeLast();
        return lines;
    }

    /// For failure messages.
    QByteArray Text() const
    {
        return "code " + QByteArray::number(code) + "\nout: " + out.left(2000) + "\nerr: " + err.left(2000);
    }
};

inline QString ToolPath()
{
    return QStringLiteral(ZR_BIN_DIR "/zr");
}

constexpr int toolPatience = 50000; ///< milliseconds

inline ToolResult Finish(QProcess& process)
{
    ToolResult result;
    const bool ended = process.state() == QProcess::NotRunning || process.waitForFinished(toolPatience);
    if (ended && process.error() != QProcess::FailedToStart && process.exitStatus() == QProcess::NormalExit)
        result.code = process.exitCode();
    process.kill();
    process.waitForFinished(toolPatience);
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

inline ToolResult RunTool(const QStringList& arguments)
{
    QProcess process;
    process.start(ToolPath(), arguments);
    return Finish(process);
}

/// `zr log` with \p arguments.
inline ToolResult RunLog(const QStringList& arguments)
{
    return RunTool(QStringList(QStringLiteral("log")) + arguments);
}

/// The tool while no file may grow beyond \p bytes (a multiple of 512).
inline ToolResult RunToolLimited(const QStringList& arguments, int bytes)
{
    QProcess process;
    process.start(QStringLiteral("/bin/sh"),
        QStringList{QStringLiteral("-c"), QStringLiteral("ulimit -f %1; exec \"$@\"").arg(bytes / 512),
            QStringLiteral("sh"), ToolPath()}
            + arguments);
    return Finish(process);
}

/// `zr log` with \p arguments, likewise.
inline ToolResult RunLogLimited(const QStringList& arguments, int bytes)
{
    return RunToolLimited(QStringList(QStringLiteral("log")) + arguments, bytes);
}

/// Everything in \p folder, hidden files too.
inline QStringList Names(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

/// Writes a log by the kit's writer: what real logs look like, with times of our own.
class TimedLog
{
public:
    explicit TimedLog(const QString& path, double created = 1614780309.0)
        : m_path(path)
        , m_ok(m_writer.Open(path, created))
    {
    }

    TimedLog& Add(quint16 type, quint16 sub, quint16 source, quint16 format, double time,
        const QByteArray& payload, bool compress = false)
    {
        m_starts << m_writer.Bytes();
        m_ok = m_writer.Write(CRecType(sub, type), source, format, time, compress, zr::bytes_of(payload))
            && m_ok;
        return *this;
    }

    bool Commit() { return m_writer.Commit() && m_ok; }

    u64 Start(int item) const { return m_starts.at(item); }

    QString StartText(int item) const { return QString::number(m_starts.at(item)); }

    u64 Size() const { return m_writer.Bytes(); }

private:
    ZrLogWriter m_writer;
    QString m_path;
    bool m_ok;
    QVector<u64> m_starts;
};

/// A log of \p count items of type 70 with \p size bytes of zeros each, which takes no room on the disk.
inline bool WriteSparseLog(const QString& path, int count, quint32 size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(FileHeader()) != 48)
        return false;
    Item item = MakeItem(70, QByteArray());
    QByteArray header = item.Header();
    QByteArray field;
    AppendLe<quint32>(field, size);
    header.replace(28, 4, field);
    header.replace(32, 4, field);
    qint64 pos = 48;
    for (int i = 0; i < count; ++i) {
        if (!file.seek(pos) || file.write(header) != 40)
            return false;
        pos += 40 + static_cast<qint64>(size);
    }
    return file.resize(pos);
}

/// A log of six items: a text, a position of the vehicle, a compressed and a plain record of an application,
/// a text of earlier time, an empty item.
struct Sample
{
    QString path;
    QVector<u64> starts; ///< of the items
    u64 size = 0;

    explicit Sample(const QString& file)
        : path(file)
    {
        TimedLog log(path);
        log.Add(2, 0, 0, 0, 1614780309.000, QByteArray("$GPGLL", 7));
        log.Add(16, 0, 1, 1, 1614780309.500, Navigation());
        log.Add(200, 1, 3, 9, 1614780310.125, QByteArray(1000, 'c'), true);
        log.Add(200, 2, 4, 9, 1614780310.250, QByteArray("\x01\x7F~ \0end", 8));
        log.Add(2, 0, 7, 0, 1614780310.000, QByteArray("$GPVTG", 7));
        log.Add(65535, 0, 0, 0, 1614783912.000, QByteArray());
        if (!log.Commit())
            qFatal("the sample log cannot be written");
        for (int i = 0; i < 6; ++i)
            starts << log.Start(i);
        size = log.Size();
    }

    static QByteArray Navigation()
    {
        ZrNavRecord nav;
        nav.latitude = 44.5;
        nav.longitude = -63.25;
        nav.depth = 12.5F;
        return nav.Encode();
    }
};

/// A folder of its own for each test function.
class ToolFolder
{
public:
    void Renew()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        if (!m_folder->isValid())
            qFatal("no temporary folder");
    }

    QString Path() const { return m_folder->path(); }

    QString Path(const char* name) const { return m_folder->filePath(S(name)); }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};
