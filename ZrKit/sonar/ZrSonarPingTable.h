#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarPing.h"

#include <cstddef>
#include <utility>
#include <vector>

/// The pings of a log without their poses, in few bytes and without loss.
///
/// Times are kept as they are. The positions of the items of 256 pings are counted from the first one; ping
/// numbers that count up by one, and what the sides of many pings have in common (samples, range, frequency,
/// speed of sound, source), are kept once for these 256. That makes 17 bytes for a ping of most logs, some 40
/// where the speed of sound is another one in each. Values of a side that a float does not hold are rounded
/// to one; those of a log are floats.
///
/// \code
/// ZrSonarPingTable table;
/// table.Append(ping);
/// table.SetSide(0, sideStarboard, channel); // which came later
/// table.Squeeze();
/// \endcode
///
/// One thread at a time while it is made, then any.
class ZR_KIT_EXPORT ZrSonarPingTable
{
public:
    void Append(const ZrSonarPing& ping); ///< its pose is not kept

    /// Replaces a side of ping \p i.
    void SetSide(std::size_t i, eSonarSide side, const ZrSonarChannel& channel);

    /// Gives back memory that was kept ready, once all pings are there.
    void Squeeze();

    std::size_t Count() const { return m_count; }

    double Time(std::size_t i) const { return m_blocks[i / Block].times[i % Block]; }

    u32 Number(std::size_t i) const;

    ZrSonarChannel Side(std::size_t i, eSonarSide side) const;

    ZrSonarPing At(std::size_t i) const; ///< with an unknown pose

    u64 Bytes() const; ///< memory

private:
    static constexpr std::size_t Block = 256;

    /// What sides have in common.
    struct Kind
    {
        u32 sampleCount;
        float slantRange;
        float frequency;
        float soundSpeed;
    };

    /// `Block` pings. Of the vectors of numbers, kinds and sources each is empty when the value in front of
    /// it tells all: numbers count up from it, the others are all alike.
    struct Stretch
    {
        u64 pos = 0; ///< the first one; ways are counted from it
        u32 number = 0;
        u32 kind[2] = {0, 0}; ///< by side; of those that are there
        u16 source = 0;
        std::vector<double> times;
        std::vector<u32> ways; ///< two for each ping: 0 for a side that is not there, else 1 more than that
        std::vector<u32> numbers;
        std::vector<u32> kinds; ///< two for each ping
        std::vector<u16> sources;
        std::vector<std::pair<u32, u64>> far; ///< of ways that do not fit: which, and the position
    };

    u32 KindOf(const ZrSonarChannel& channel);
    void SetPos(Stretch& stretch, std::size_t at, u64 pos);
    static void Pack(Stretch& stretch);
    static void UnpackKinds(Stretch& stretch);

    std::vector<Stretch> m_blocks;
    std::vector<Kind> m_kinds;
    std::vector<u32> m_latest; ///< a few kinds, used last first
    std::size_t m_count = 0;
};
