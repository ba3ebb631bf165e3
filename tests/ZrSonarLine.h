#pragma once

// Side-scan lines made up for tests: a vehicle that goes north over a flat seabed with things on it.

#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarPing.h"
#include "ZrUtil/ZrEndian.h"

#include <QString>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

struct SonarLine
{
    /// Metres of a degree of latitude at 45 degrees on WGS 84, where a second differs by less than 10^-5 of
    /// it.
    static constexpr double metresPerDegree = 111131.745;
    static constexpr double startLatitude = 45.0;
    static constexpr double startTime = 1614780309.0;

    struct Ping
    {
        double time = 0.0; ///< seconds from the start
        double north = 0.0; ///< metres from the start; NaN: no position
        double altitude = 10.0; ///< NaN: not known
        double range = 30.0;
        bool sides[2] = {true, true};
    };

    std::vector<Ping> pings;
    std::size_t samples = 600; ///< of a side

    /// Amplitude of the seabed \p across metres to starboard and \p north metres on.
    std::function<double(double across, double north)> seabed = [](double, double) { return 1000.0; };
    double water = 50.0;
    double pulse = 65535.0;
    double pulseLength = 0.5; ///< metres

    /// \p count pings, \p step metres and a tenth of a second apart.
    static SonarLine Steady(std::size_t count, double step)
    {
        SonarLine line;
        for (std::size_t i = 0; i < count; ++i) {
            Ping ping;
            ping.time = 0.1 * static_cast<double>(i);
            ping.north = step * static_cast<double>(i);
            line.pings.push_back(ping);
        }
        return line;
    }

    /// What `ZrSonarLog` would tell of the line.
    std::vector<ZrSonarPing> Table() const
    {
        std::vector<ZrSonarPing> table;
        for (const Ping& from : pings) {
            ZrSonarPing ping;
            ping.time = startTime + from.time;
            ping.number = static_cast<u32>(table.size());
            if (!std::isnan(from.north))
                ping.pose.position = {startLatitude + from.north / metresPerDegree, -63.0};
            ping.pose.heading = 0.0;
            ping.pose.altitude = from.altitude;
            for (int side = 0; side < 2; ++side) {
                if (!from.sides[side])
                    continue;
                ping.sides[side].pos = 48 + table.size();
                ping.sides[side].slantRange = from.range;
                ping.sides[side].sampleCount = static_cast<u32>(samples);
            }
            table.push_back(ping);
        }
        return table;
    }

    ZrBottomLine Bottom() const
    {
        std::vector<double> altitudes;
        for (const Ping& ping : pings)
            altitudes.push_back(ping.altitude);
        ZrBottomLine bottom;
        bottom.SetFound(altitudes);
        return bottom;
    }

    QByteArray Samples(const Ping& ping, int side) const
    {
        QByteArray bytes;
        const double height = std::isnan(ping.altitude) ? 0.0 : ping.altitude;
        for (std::size_t i = 0; i < samples; ++i) {
            const double slant = (static_cast<double>(i) + 0.5) * ping.range / static_cast<double>(samples);
            double value = water;
            if (slant >= height) {
                const double ground = std::sqrt(slant * slant - height * height);
                value = seabed(side == 0 ? -ground : ground, ping.north);
            }
            if (slant < pulseLength)
                value = pulse;
            u8 field[2];
            zr::store_le<u16>(field, static_cast<u16>(value));
            bytes.append(reinterpret_cast<const char*>(field), 2);
        }
        return bytes;
    }

    /// Writes the line as a log.
    bool Write(const QString& path) const
    {
        ZrLogWriter log;
        bool ok = log.Open(path, startTime);
        for (std::size_t i = 0; i < pings.size(); ++i) {
            const Ping& ping = pings[i];
            ZrNavRecord nav;
            if (!std::isnan(ping.north)) {
                nav.latitude = startLatitude + ping.north / metresPerDegree;
                nav.longitude = -63.0;
            }
            nav.heading = 0.0F;
            nav.altitude = static_cast<float>(ping.altitude);
            const double time = startTime + ping.time;
            ok = ok
                && log.Write(CRecType(0, krtNavigation), 1, ZrNavRecord::Format, time, false,
                    zr::bytes_of(nav.Encode()));
            for (int side = 0; side < 2; ++side) {
                if (!ping.sides[side])
                    continue;
                ZrPingRecord record;
                record.pingNumber = static_cast<u32>(i);
                record.side = static_cast<u8>(side);
                record.slantRange = static_cast<float>(ping.range);
                record.samples = Samples(ping, side);
                ok = ok
                    && log.Write(CRecType(static_cast<u16>(side), krtPing), 1, ZrPingRecord::Format, time,
                        false, zr::bytes_of(record.Encode()));
            }
        }
        return ok && log.Commit();
    }
};
