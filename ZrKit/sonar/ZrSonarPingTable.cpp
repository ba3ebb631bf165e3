#include "ZrKit/sonar/ZrSonarPingTable.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

constexpr u32 farWay = std::numeric_limits<u32>::max(); ///< stands in `far`
constexpr std::size_t mostLatest = 8; ///< kinds that are looked through before one is taken for new

} // namespace

/// The kind of \p channel, one of the latest or a new one.
u32 ZrSonarPingTable::KindOf(const ZrSonarChannel& channel)
{
    const Kind kind{
        channel.sampleCount, static_cast<float>(channel.slantRange), channel.frequency, channel.soundSpeed};
    const auto isSame = [&](u32 i) { return std::memcmp(&m_kinds[i], &kind, sizeof kind) == 0; };
    auto found = std::find_if(m_latest.begin(), m_latest.end(), isSame);
    if (found == m_latest.end()) {
        if (m_latest.size() == mostLatest)
            m_latest.pop_back();
        found = m_latest.insert(m_latest.end(), static_cast<u32>(m_kinds.size()));
        m_kinds.push_back(kind);
    }
    std::rotate(m_latest.begin(), found, found + 1);
    return m_latest.front();
}

void ZrSonarPingTable::SetPos(Stretch& stretch, std::size_t at, u64 pos)
{
    const u32 slot = static_cast<u32>(at);
    const auto isOf = [slot](const std::pair<u32, u64>& entry) { return entry.first == slot; };
    stretch.far.erase(std::remove_if(stretch.far.begin(), stretch.far.end(), isOf), stretch.far.end());
    if (pos == 0) {
        stretch.ways[at] = 0;
    } else if (pos >= stretch.pos && pos - stretch.pos < farWay - 1) {
        stretch.ways[at] = static_cast<u32>(pos - stretch.pos + 1);
    } else {
        stretch.ways[at] = farWay;
        stretch.far.emplace_back(slot, pos);
    }
}

void ZrSonarPingTable::Append(const ZrSonarPing& ping)
{
    const std::size_t at = m_count % Block;
    if (at == 0) {
        if (!m_blocks.empty())
            Pack(m_blocks.back());
        m_blocks.emplace_back();
        Stretch& stretch = m_blocks.back();
        const ZrSonarChannel* const sides = ping.sides;
        stretch.pos = sides[sidePort].IsThere() ? sides[sidePort].pos : sides[sideStarboard].pos;
        stretch.number = ping.number;
        stretch.source = ping.source;
        stretch.times.reserve(Block);
        stretch.ways.reserve(2 * Block);
    }
    Stretch& stretch = m_blocks.back();
    ++m_count;
    stretch.times.push_back(ping.time);
    stretch.numbers.push_back(ping.number);
    stretch.sources.push_back(ping.source);
    for (const eSonarSide side : {sidePort, sideStarboard}) {
        stretch.ways.push_back(0);
        stretch.kinds.push_back(stretch.kind[side]);
        if (ping.sides[side].IsThere())
            SetSide(m_count - 1, side, ping.sides[side]);
    }
}

void ZrSonarPingTable::SetSide(std::size_t i, eSonarSide side, const ZrSonarChannel& channel)
{
    Stretch& stretch = m_blocks[i / Block];
    const std::size_t slot = 2 * (i % Block) + static_cast<std::size_t>(side);
    SetPos(stretch, slot, channel.pos);
    const u32 kind = KindOf(channel);
    if (stretch.kinds.empty()) {
        if (stretch.kind[side] == kind)
            return;
        UnpackKinds(stretch);
    }
    stretch.kinds[slot] = kind;
}

/// Each ping with kinds of its own again.
void ZrSonarPingTable::UnpackKinds(Stretch& stretch)
{
    for (std::size_t k = 0; k < stretch.times.size(); ++k) {
        stretch.kinds.push_back(stretch.kind[sidePort]);
        stretch.kinds.push_back(stretch.kind[sideStarboard]);
    }
}

/// Gives up what one value tells.
void ZrSonarPingTable::Pack(Stretch& stretch)
{
    const std::size_t count = stretch.times.size();
    bool countsUp = true;
    for (std::size_t k = 0; k < stretch.numbers.size(); ++k)
        countsUp = countsUp && stretch.numbers[k] == stretch.number + static_cast<u32>(k);
    if (countsUp)
        stretch.numbers = std::vector<u32>();
    if (std::all_of(stretch.sources.begin(), stretch.sources.end(),
            [&](u16 source) { return source == stretch.source; }))
        stretch.sources = std::vector<u16>();
    bool isAlike = !stretch.kinds.empty();
    for (std::size_t side = 0; side < 2 && isAlike; ++side) {
        bool any = false;
        u32 kind = stretch.kind[side];
        for (std::size_t slot = side; slot < 2 * count && isAlike; slot += 2) {
            if (stretch.ways[slot] == 0)
                continue;
            isAlike = !any || stretch.kinds[slot] == kind;
            kind = stretch.kinds[slot];
            any = true;
        }
        if (isAlike)
            stretch.kind[side] = kind;
    }
    if (isAlike)
        stretch.kinds = std::vector<u32>();
    stretch.times.shrink_to_fit();
    stretch.ways.shrink_to_fit();
    stretch.numbers.shrink_to_fit();
    stretch.kinds.shrink_to_fit();
    stretch.sources.shrink_to_fit();
    stretch.far.shrink_to_fit();
}

void ZrSonarPingTable::Squeeze()
{
    for (Stretch& stretch : m_blocks)
        Pack(stretch);
    m_blocks.shrink_to_fit();
    m_kinds.shrink_to_fit();
}

u32 ZrSonarPingTable::Number(std::size_t i) const
{
    const Stretch& stretch = m_blocks[i / Block];
    const std::size_t at = i % Block;
    return stretch.numbers.empty() ? stretch.number + static_cast<u32>(at) : stretch.numbers[at];
}

ZrSonarChannel ZrSonarPingTable::Side(std::size_t i, eSonarSide side) const
{
    const Stretch& stretch = m_blocks[i / Block];
    const std::size_t slot = 2 * (i % Block) + static_cast<std::size_t>(side);
    ZrSonarChannel channel;
    const u32 way = stretch.ways[slot];
    if (way == 0)
        return channel;
    channel.pos = stretch.pos + way - 1;
    if (way == farWay) {
        const auto isOf = [slot](const std::pair<u32, u64>& entry) { return entry.first == slot; };
        channel.pos = std::find_if(stretch.far.begin(), stretch.far.end(), isOf)->second;
    }
    const Kind& kind = m_kinds[stretch.kinds.empty() ? stretch.kind[side] : stretch.kinds[slot]];
    channel.sampleCount = kind.sampleCount;
    channel.slantRange = static_cast<double>(kind.slantRange);
    channel.frequency = kind.frequency;
    channel.soundSpeed = kind.soundSpeed;
    return channel;
}

ZrSonarPing ZrSonarPingTable::At(std::size_t i) const
{
    const Stretch& stretch = m_blocks[i / Block];
    const std::size_t at = i % Block;
    ZrSonarPing ping;
    ping.time = stretch.times[at];
    ping.number = Number(i);
    ping.source = stretch.sources.empty() ? stretch.source : stretch.sources[at];
    for (const eSonarSide side : {sidePort, sideStarboard})
        ping.sides[side] = Side(i, side);
    return ping;
}

u64 ZrSonarPingTable::Bytes() const
{
    u64 bytes = m_blocks.capacity() * sizeof(Stretch) + m_kinds.capacity() * sizeof(Kind);
    for (const Stretch& stretch : m_blocks) {
        bytes += stretch.times.capacity() * sizeof(double) + stretch.sources.capacity() * sizeof(u16)
            + stretch.far.capacity() * sizeof(std::pair<u32, u64>)
            + (stretch.ways.capacity() + stretch.numbers.capacity() + stretch.kinds.capacity()) * sizeof(u32);
    }
    return bytes;
}
