#pragma once

// Logs of a side-scan sonar for tests: straight lines of pings with their navigation, and single items.

#include "ZrKit/import/ZrImportSession.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/sonar/ZrSonarSide.h"
#include "ZrUtil/ZrEndian.h"

#include <QString>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <functional>

namespace sonar_test {

constexpr double startTime = 1614780309.0; ///< 2021-03-03T14:05:09Z
constexpr double radPerDeg = 3.14159265358979323846 / 180.0;

/// A line run straight ahead over a flat seabed, pinging to both sides.
struct SonarLine
{
    ZrGeoPoint start{44.0, -63.0};
    double heading = 90.0; ///< degrees, also the course
    double speed = 1.5; ///< m/s
    double interval = 0.1; ///< seconds between pings
    int pings = 100;
    double time = startTime; ///< of the first ping
    double altitude = 5.0; ///< metres
    double depth = 10.0; ///< metres
    double slantRange = 30.0; ///< metres
    u32 samples = 300; ///< a side
    u8 sampleWidth = 2; ///< bytes
    double frequency = 455.0; ///< kHz
    double soundSpeed = 1500.0; ///< m/s
    u32 firstNumber = 0;
    u16 source = 1;
    bool compress = false;

    /// Amplitude of a sample, 0 to 1; out of the whole width of the samples.
    std::function<double(int ping, eSonarSide side, u32 sample)> amplitude
        = [](int ping, eSonarSide side, u32 sample) {
              return static_cast<double>((sample + static_cast<u32>(ping) * 7 + side * 31U) % 256) / 255.0;
          };
    /// Whether a side of a ping was recorded.
    std::function<bool(int ping, eSonarSide side)> isThere = [](int, eSonarSide) { return true; };
    /// Whether a ping has a navigation record.
    std::function<bool(int ping)> hasNav = [](int) { return true; };
    /// Last changes to a navigation record.
    std::function<void(int ping, ZrNavRecord& nav)> change = [](int, ZrNavRecord&) {};

    double TimeOf(int ping) const { return time + ping * interval; }

    /// Metres from the start.
    double WayOf(int ping) const { return ping * interval * speed; }

    /// On a straight line of the plane around the start.
    ZrGeoPoint PositionOf(int ping) const
    {
        const double angle = heading * radPerDeg;
        return ZrLocalFrame(start).ToGeo({WayOf(ping) * std::sin(angle), WayOf(ping) * std::cos(angle)});
    }

    /// The amplitude as it stands in the log.
    u32 Stored(int ping, eSonarSide side, u32 sample) const
    {
        const double most = sampleWidth == 1 ? 255.0 : sampleWidth == 2 ? 65535.0 : 4294967295.0;
        return static_cast<u32>(std::floor(std::clamp(amplitude(ping, side, sample), 0.0, 1.0) * most));
    }

    /// The same as `ZrSonarLog` gives it.
    u16 Expected(int ping, eSonarSide side, u32 sample) const
    {
        const u32 stored = Stored(ping, side, sample);
        return static_cast<u16>(sampleWidth == 1 ? stored * 257 : sampleWidth == 2 ? stored : stored >> 16);
    }

    ZrNavRecord NavOf(int ping) const
    {
        const ZrGeoPoint at = PositionOf(ping);
        ZrNavRecord nav;
        nav.latitude = at.lat;
        nav.longitude = at.lng;
        nav.altitude = static_cast<float>(altitude);
        nav.depth = static_cast<float>(depth);
        nav.heading = static_cast<float>(heading);
        nav.pitch = 0.0F;
        nav.roll = 0.0F;
        change(ping, nav);
        return nav;
    }

    ZrPingRecord PingOf(int ping, eSonarSide side) const
    {
        ZrPingRecord record;
        record.pingNumber = firstNumber + static_cast<u32>(ping);
        record.side = static_cast<u8>(side);
        record.sampleWidth = sampleWidth;
        record.slantRange = static_cast<float>(slantRange);
        record.frequency = static_cast<float>(frequency);
        record.soundSpeed = static_cast<float>(soundSpeed);
        record.samples.resize(static_cast<int>(samples) * sampleWidth);
        auto* out = reinterpret_cast<u8*>(record.samples.data());
        for (u32 i = 0; i < samples; ++i) {
            u8 bytes[4];
            zr::store_le(bytes, Stored(ping, side, i));
            std::copy_n(bytes, sampleWidth, out + std::size_t(i) * sampleWidth);
        }
        return record;
    }
};

/// Writes a log item by item.
class Log
{
public:
    explicit Log(const QString& path)
        : m_ok(m_writer.Open(path, startTime))
    {
    }

    Log& Add(const SonarLine& line)
    {
        for (int i = 0; i < line.pings; ++i) {
            if (line.hasNav(i))
                AddNav(line.TimeOf(i), line.NavOf(i));
            for (const eSonarSide side : {sidePort, sideStarboard}) {
                if (line.isThere(i, side))
                    AddPing(line.TimeOf(i), line.PingOf(i, side), line.compress, line.source);
            }
        }
        return *this;
    }

    Log& AddNav(double time, const ZrNavRecord& nav)
    {
        return AddItem(ZrNavRecord::RecType, 0, ZrNavRecord::Format, time, nav.Encode());
    }

    Log& AddPing(double time, const ZrPingRecord& ping, bool compress = false, u16 source = 1)
    {
        return AddItem(
            ZrPingRecord::RecType, ping.side, ZrPingRecord::Format, time, ping.Encode(), compress, source);
    }

    Log& AddItem(int type, u16 sub, u16 format, double time, const QByteArray& payload, bool compress = false,
        u16 source = 1)
    {
        m_starts << m_writer.Bytes();
        m_ok = m_writer.Write(CRecType(sub, static_cast<u16>(type)), source, format, time, compress,
                   zr::bytes_of(payload))
            && m_ok;
        return *this;
    }

    /// Header and payload as they are to stand in the log.
    Log& AddRaw(const QByteArray& headerAndPayload)
    {
        m_starts << m_writer.Bytes();
        m_ok = m_writer.WriteRaw(zr::bytes_of(headerAndPayload)) && m_ok;
        return *this;
    }

    bool Commit() { return m_writer.Commit() && m_ok; }

    u64 Start(int item) const { return m_starts.at(item); } ///< position of an item's header

    int Items() const { return m_starts.size(); }

private:
    ZrLogWriter m_writer;
    bool m_ok;
    QVector<u64> m_starts;
};

inline bool WriteLine(const QString& path, const SonarLine& line)
{
    return Log(path).Add(line).Commit();
}

/// The real line of data/sidescan-xtf as a log: 300 pings of both sides, 1024 samples of 16 bits over 30 m.
inline bool ImportRealLine(const QString& path, bool compress = false)
{
    ZrImportSession session;
    session.compress = compress;
    return session.Run({QStringLiteral(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf")},
               path, nullptr)
        == ZrImportSession::Done;
}

} // namespace sonar_test
