#pragma once

// Side-scan lines made on the spot for the tests of the sonar kit. Positions are geodesics of GeographicLib,
// so that what the kit computes is held against somebody else's geodesy.

#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarLog.h"

#include <QString>

#include <GeographicLib/Geodesic.hpp>
#include <GeographicLib/UTMUPS.hpp>
#include <cmath>
#include <vector>

namespace sonarline {

constexpr double startTime = 1378847588.0; ///< 2013-09-10T21:13:08Z
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

struct Ping
{
    double time = startTime;
    double lat = unknown;
    double lng = unknown;
    double heading = unknown;
    double altitude = unknown;
    double slantRange = 20.0;
    std::vector<quint16> sides[2]; ///< port, starboard; nothing is written for an empty one
};

/// The point \p metres from another at a bearing.
inline ZrGeoPoint Away(ZrGeoPoint from, double bearing, double metres)
{
    ZrGeoPoint to;
    GeographicLib::Geodesic::WGS84().Direct(from.lat, from.lng, bearing, metres, to.lat, to.lng);
    return to;
}

inline double Apart(ZrGeoPoint a, ZrGeoPoint b)
{
    double metres = unknown;
    GeographicLib::Geodesic::WGS84().Inverse(a.lat, a.lng, b.lat, b.lng, metres);
    return metres;
}

inline double Bearing(ZrGeoPoint a, ZrGeoPoint b)
{
    double metres = unknown;
    double bearing = unknown;
    double back = unknown;
    GeographicLib::Geodesic::WGS84().Inverse(a.lat, a.lng, b.lat, b.lng, metres, bearing, back);
    return bearing < 0.0 ? bearing + 360.0 : bearing;
}

/// Easting and northing in a zone of UTM.
struct GridPoint
{
    double east = unknown;
    double north = unknown;
};

inline GridPoint ToGrid(ZrGeoPoint at, int zone, bool south)
{
    GridPoint point;
    bool isNorth = true;
    GeographicLib::UTMUPS::Forward(at.lat, at.lng, zone, isNorth, point.east, point.north, zone);
    if (isNorth && south)
        point.north += 1e7;
    else if (!isNorth && !south)
        point.north -= 1e7;
    return point;
}

/// How a straight line is made.
struct Plan
{
    ZrGeoPoint start;
    double heading = 0.0;
    int pings = 60;
    double step = 0.25; ///< metres
    double interval = 0.25; ///< seconds
    int samples = 200;
    double slantRange = 20.0;
    double altitude = 5.0;
    quint16 amplitude = 1000;
};

inline std::vector<Ping> Straight(const Plan& plan)
{
    std::vector<Ping> pings;
    for (int i = 0; i < plan.pings; ++i) {
        Ping ping;
        const ZrGeoPoint at = Away(plan.start, plan.heading, i * plan.step);
        ping.time = startTime + i * plan.interval;
        ping.lat = at.lat;
        ping.lng = at.lng;
        ping.heading = plan.heading;
        ping.altitude = plan.altitude;
        ping.slantRange = plan.slantRange;
        for (std::vector<quint16>& side : ping.sides)
            side.assign(static_cast<std::size_t>(plan.samples), plan.amplitude);
        pings.push_back(ping);
    }
    return pings;
}

inline QByteArray Samples(const std::vector<quint16>& values)
{
    QByteArray bytes;
    for (const quint16 value : values) {
        bytes.append(static_cast<char>(value & 0xFF));
        bytes.append(static_cast<char>(value >> 8));
    }
    return bytes;
}

/// Writes the pings as a log.
inline bool Write(const QString& path, const std::vector<Ping>& pings)
{
    ZrLogWriter log;
    bool ok = log.Open(path, startTime);
    quint32 number = 0;
    for (const Ping& ping : pings) {
        ZrNavRecord nav;
        nav.latitude = ping.lat;
        nav.longitude = ping.lng;
        nav.heading = static_cast<float>(ping.heading);
        nav.altitude = static_cast<float>(ping.altitude);
        const QByteArray navBytes = nav.Encode();
        ok = ok
            && log.Write(CRecType(0, ZrNavRecord::RecType), 1, ZrNavRecord::Format, ping.time, false,
                zr::bytes_of(navBytes));
        for (quint16 side = 0; side < 2; ++side) {
            if (ping.sides[side].empty())
                continue;
            ZrPingRecord record;
            record.pingNumber = number;
            record.side = static_cast<quint8>(side);
            record.slantRange = static_cast<float>(ping.slantRange);
            record.samples = Samples(ping.sides[side]);
            const QByteArray bytes = record.Encode();
            ok = ok
                && log.Write(CRecType(side, ZrPingRecord::RecType), 1, ZrPingRecord::Format, ping.time, false,
                    zr::bytes_of(bytes));
        }
        ++number;
    }
    return ok && log.Commit();
}

/// The altitudes that were recorded, as a bottom line.
inline ZrBottomLine RecordedBottom(const ZrSonarLog& log)
{
    std::vector<double> altitudes;
    for (const ZrSonarPing& ping : log.Pings())
        altitudes.push_back(ping.pose.altitude);
    ZrBottomLine bottom;
    bottom.SetFound(altitudes);
    return bottom;
}

} // namespace sonarline
