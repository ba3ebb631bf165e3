#pragma once

// Long logs of a vehicle with side-scan sonar, written in seconds, and what the process does with them.

#include "ThreadTime.h"
#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrUtil/ZrEndian.h"

#include <QElapsedTimer>
#include <QFile>
#include <QString>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace long_log {

constexpr double startTime = 1614780309.0; ///< 2021-03-03T14:05:09Z
constexpr double interval = 0.1; ///< seconds between lines
constexpr qint64 headerSize = 40; ///< bytes of an item

struct Shape
{
    qint64 lines = 0; ///< each with three records: navigation, port, starboard
    int samples = 100; ///< of a side
    u8 width = 1; ///< bytes of a sample

    qint64 PingBytes() const { return headerSize + ZrPingRecord::Size + qint64(samples) * width; }

    qint64 LineBytes() const { return headerSize + ZrNavRecord::Size + 2 * PingBytes(); }
};

/// The vehicle runs in a wide circle over a flat bottom, as fast everywhere, so that a window holds as many
/// lines everywhere; the samples of all pings are alike.
inline bool Write(const QString& path, const Shape& shape)
{
    ZrLogWriter log;
    bool ok = log.Open(path, startTime);
    ZrPingRecord ping;
    ping.sampleWidth = shape.width;
    ping.slantRange = 50.0F;
    ping.frequency = 455.0F;
    ping.soundSpeed = 1500.0F;
    ping.samples.resize(shape.samples * shape.width);
    for (int i = 0; i < ping.samples.size(); ++i)
        ping.samples[i] = static_cast<char>((i * 37 + i / 7) & 0x7F);
    QByteArray sides[2];
    for (u8 side = 0; side < 2; ++side) {
        ping.side = side;
        sides[side] = ping.Encode();
    }
    ZrNavRecord nav;
    nav.altitude = 10.0F;
    for (qint64 i = 0; i < shape.lines && ok; ++i) {
        const auto at = static_cast<double>(i);
        const double time = startTime + at * interval;
        nav.latitude = 48.4 + 0.01 * std::sin(at * 1e-4);
        nav.longitude = -68.8 + 0.01 * std::cos(at * 1e-4) / std::cos(48.4 * 3.14159265358979 / 180.0);
        nav.depth = static_cast<float>(20.0 + 5.0 * std::sin(at * 1e-3));
        nav.heading = static_cast<float>(std::fmod(at * 0.01, 360.0));
        nav.pitch = static_cast<float>(std::sin(at * 0.02));
        nav.roll = static_cast<float>(2.0 * std::sin(at * 0.03));
        ok = log.Write(
            zr::rec_type(krtNavigation), 1, ZrNavRecord::Format, time, false, zr::bytes_of(nav.Encode()));
        for (u16 side = 0; side < 2 && ok; ++side) {
            zr::store_le(reinterpret_cast<u8*>(sides[side].data()), static_cast<u32>(i));
            ok = log.Write(
                zr::rec_type(krtPing, side), 1, ZrPingRecord::Format, time, false, zr::bytes_of(sides[side]));
        }
    }
    return ok && log.Commit();
}

/// A number that the system tells of this process, for instance "VmHWM:" in "/proc/self/status"; -1 when it
/// does not.
inline qint64 OfProcess(const char* file, const QByteArray& key)
{
    QFile proc(QString::fromLatin1(file));
    if (!proc.open(QIODevice::ReadOnly))
        return -1;
    const auto lines = proc.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(key))
            return line.mid(key.size()).trimmed().split(' ').front().toLongLong();
    }
    return -1;
}

inline qint64 BytesRead()
{
    return OfProcess("/proc/self/io", "rchar:");
}

/// Milliseconds of work between two turns of the event loop that are felt as a pause.
constexpr double mostWork = 200.0;

/// Counts turns of the event loop, the longest time without one, and the most work of the thread in between.
class Turns : public QObject
{
public:
    Turns()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            ++m_count;
            const qint64 now = m_clock.elapsed();
            if (now - m_last > m_longest) {
                m_longest = now - m_last;
                m_longestEnd = now;
            }
            m_last = now;
            const double busy = ThreadMs();
            m_busiest = std::max(m_busiest, busy - m_lastBusy);
            m_lastBusy = busy;
        });
    }

    void Begin()
    {
        m_count = 0;
        m_longest = m_longestEnd = m_last = 0;
        m_busiest = 0.0;
        m_lastBusy = ThreadMs();
        m_clock.start();
        m_timer.start(5);
    }

    void End() { m_timer.stop(); }

    int Count() const { return m_count; }

    qint64 Longest() const { return m_longest; } ///< milliseconds

    qint64 LongestEnd() const { return m_longestEnd; } ///< when that was over, milliseconds from `Begin`

    /// Milliseconds of processor that the thread took between two turns, at most: what would freeze the
    /// screen on a machine with nothing else to do.
    double Busiest() const { return m_busiest; }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    int m_count = 0;
    qint64 m_longest = 0;
    qint64 m_longestEnd = 0;
    qint64 m_last = 0;
    double m_busiest = 0.0;
    double m_lastBusy = 0.0;
};

} // namespace long_log
