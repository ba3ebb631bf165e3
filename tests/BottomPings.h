#pragma once

// Side-scan pings over a known seabed for the tests of the bottom line, and logs of them.

#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/sonar/ZrSonarSide.h"
#include "ZrLogFixture.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace bottom {

constexpr double firstTime = 1614780309.25; ///< of the first ping
constexpr double perPing = 0.125; ///< seconds

/// What one side of a ping is made of. Amplitudes are spread like those of speckle.
struct Scene
{
    double altitude = 10.0; ///< metres; NaN: no seabed
    double range = 30.0; ///< metres
    std::size_t samples = 1024;
    double noise = 120.0; ///< mean amplitude of the water column
    double seabed = 3000.0; ///< and of the seabed
    double pulse = 0.25; ///< metres of 65535 at the beginning
    double fishFrom = 0.0; ///< metres
    double fishTo = 0.0;
    double fish = 20000.0;
    double shadowFrom = 0.0; ///< metres; as dark as the water
    double shadowTo = 0.0;
    double behind = 0.0; ///< mean amplitude behind the shadow; 0: that of the seabed
};

class Pings
{
public:
    explicit Pings(unsigned seed = 1)
        : m_random(seed)
    {
    }

    std::vector<u16> Side(const Scene& scene)
    {
        std::vector<u16> out(scene.samples);
        const double length = scene.range / static_cast<double>(scene.samples);
        for (std::size_t i = 0; i < out.size(); ++i) {
            const double at = (static_cast<double>(i) + 0.5) * length;
            double mean = at < scene.altitude || std::isnan(scene.altitude) ? scene.noise : scene.seabed;
            if (at >= scene.fishFrom && at < scene.fishTo)
                mean = scene.fish;
            if (at >= scene.shadowFrom && at < scene.shadowTo)
                mean = scene.noise;
            else if (at >= scene.shadowFrom && scene.behind > 0.0)
                mean = scene.behind;
            const double value = at < scene.pulse ? 65535.0 : mean * Speckle();
            out[i] = static_cast<u16>(std::min(value, 65535.0));
        }
        return out;
    }

private:
    /// A Rayleigh number of mean 1.
    double Speckle()
    {
        // Made by hand: the distributions of the library differ from one to the other.
        const double uniform = (static_cast<double>(m_random()) + 1.0) / 4294967297.0;
        return std::sqrt(-2.0 * std::log(uniform)) / 1.2533141373155;
    }

    std::mt19937 m_random;
};

/// A log of pings, in memory.
class Log
{
public:
    /// Adds the next ping. An empty side is left out; an altitude that is NaN gives no navigation.
    Log& Add(const std::vector<u16>& port, const std::vector<u16>& starboard, double range = 30.0,
        float recorded = std::nanf(""))
    {
        const double time = firstTime + perPing * m_count;
        if (!std::isnan(recorded)) {
            ZrNavRecord nav;
            nav.altitude = recorded;
            AddItem(static_cast<quint16>(krtNavigation), 0, time, nav.Encode());
        }
        const std::vector<u16>* sides[] = {&port, &starboard};
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            if (sides[side]->empty())
                continue;
            ZrPingRecord record;
            record.pingNumber = static_cast<u32>(m_count);
            record.side = static_cast<u8>(side);
            record.slantRange = static_cast<float>(range);
            for (const u16 sample : *sides[side])
                AppendLe<quint16>(record.samples, sample);
            AddItem(static_cast<quint16>(krtPing), static_cast<quint16>(side), time, record.Encode());
        }
        ++m_count;
        return *this;
    }

    bool Write(const QString& path) const
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(m_log.Bytes()) == m_log.Bytes().size();
    }

private:
    void AddItem(quint16 type, quint16 sub, double time, const QByteArray& payload)
    {
        Item item = MakeItem(type, payload, 1);
        item.sub = sub;
        item.format = 1;
        item.time = time;
        m_log.Add(item);
    }

    LogBytes m_log;
    int m_count = 0;
};

} // namespace bottom
