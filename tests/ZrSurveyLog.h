#pragma once

// Logs with navigation, events and plans for the tests of datasets, and what their files beside them look
// like, written from the file layouts with none of the library's own writers.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QDataStream>
#include <QDir>
#include <QUuid>

#include <cmath>
#include <memory>

namespace survey {

constexpr double startTime = 1614780309.0; ///< 2021-03-03T14:05:09Z

inline QString S(const char* text)
{
    return QString::fromUtf8(text);
}

/// What each test function begins with: an empty folder with the name of a log in it, and the debug output
/// caught.
class LogFolder
{
protected:
    void Begin()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_log = m_folder->filePath(S("dive äß.log"));
        m_messages = std::make_unique<MessageCatcher>();
    }

    void End() { m_messages.reset(); }

    /// Everything beside the log.
    QStringList Names() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_log;
    std::unique_ptr<MessageCatcher> m_messages; ///< what the library says on the debug output
};

/// The numbers of a navigation payload; what is not given is not known.
struct Nav
{
    double latitude = std::nan("");
    double longitude = std::nan("");
    float altitude = std::nanf("");
    float depth = std::nanf("");
    float heading = std::nanf("");
    float pitch = std::nanf("");
    float roll = std::nanf("");
    quint32 flags = 0;

    QByteArray Bytes() const
    {
        QByteArray bytes;
        AppendLe(bytes, latitude);
        AppendLe(bytes, longitude);
        for (const float value : {altitude, depth, heading, pitch, roll}) {
            quint32 bits;
            std::memcpy(&bits, &value, sizeof bits);
            AppendLe<quint32>(bytes, bits);
        }
        AppendLe<quint32>(bytes, flags);
        return bytes;
    }
};

inline Item TimedItem(quint16 type, quint16 sub, double time, const QByteArray& payload)
{
    Item item = MakeItem(type, payload, 1);
    item.sub = sub;
    item.format = type >= 16 && type < 32 ? 1 : 0;
    item.time = time;
    return item;
}

inline Item NavItem(double time, const Nav& nav)
{
    return TimedItem(16, 0, time, nav.Bytes());
}

/// A navigation item that differs from that of every other \p number.
inline Item NavItem(int number)
{
    Nav nav;
    nav.latitude = 44.0 + number * 0.001;
    nav.longitude = -63.0 - number * 0.001;
    nav.altitude = 5.0f;
    nav.depth = 10.0f + static_cast<float>(number);
    nav.heading = static_cast<float>(number);
    return NavItem(startTime + number, nav);
}

struct Event
{
    double time = startTime;
    QString text;
    QUuid uid;
    QString detail = QString();
    qint32 src = 2;
    qint16 code = 0;

    void WriteTo(QDataStream& stream) const { stream << code << time << src << text << detail << uid; }

    QByteArray Bytes() const
    {
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream.setVersion(QDataStream::Qt_5_15);
        WriteTo(stream);
        return bytes;
    }
};

inline Item EventItem(const Event& event)
{
    return TimedItem(3, 0, event.time, event.Bytes());
}

/// A uid that is told apart by \p number.
inline QUuid Uid(int number)
{
    return QUuid(0x12345678, 0x1234, 0x4321, 0x80, 0, 0, 0, 0, 0, 0, static_cast<uchar>(number));
}

inline QByteArray EventFile(const QVector<Event>& events)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << static_cast<qint32>(events.size());
    for (const Event& event : events)
        event.WriteTo(stream);
    return bytes;
}

/// The texts of the events in the file beside \p logPath, in order; "damaged" at the end when it is not
/// whole.
inline QStringList EventTexts(const QString& logPath)
{
    const QByteArray bytes = ReadWhole(logPath + QStringLiteral(".evt"));
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_5_15);
    qint32 count = 0;
    stream >> count;
    QStringList texts;
    for (qint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        qint16 code = 0;
        double time = 0.0;
        qint32 src = 0;
        QString text;
        QString detail;
        QUuid uid;
        stream >> code >> time >> src >> text >> detail >> uid;
        texts << text;
    }
    if (stream.status() != QDataStream::Ok || !stream.atEnd())
        texts << QStringLiteral("damaged");
    return texts;
}

/// A log of \p count navigation items with a fix before each third one.
inline LogBytes SurveyLog(int count)
{
    LogBytes log;
    for (int i = 0; i < count; ++i) {
        if (i % 3 == 0)
            log.Add(TimedItem(18, 0, startTime + i, QByteArray(28, '\0')));
        log.Add(NavItem(i));
    }
    return log;
}

/// The payload of a mission plan with \p note in it.
inline QByteArray PlanText(const char* note)
{
    ZrXmlStore store(true);
    QString text = S(note);
    store.AddSet(S("Missions"))->AddObj(S("Bay"), S("Mission"))->Item(S("Note"), text);
    QByteArray bytes;
    store.Save(bytes);
    return bytes;
}

/// The names in the folder of \p path, hidden ones too.
inline QStringList NamesBeside(const QString& path)
{
    return QFileInfo(path).dir().entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

inline QStringList LogFolder::Names() const
{
    return NamesBeside(m_log);
}

} // namespace survey
