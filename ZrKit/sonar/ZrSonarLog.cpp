#include "ZrKit/sonar/ZrSonarLog.h"

#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrUnpack.h"
#include "ZrKit/sonar/ZrSonarNav.h"
#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrEndian.h"
#include "ZrUtil/ZrLogItem.h"

#include <algorithm>
#include <cmath>

namespace {

/// The two sides of one ping are logged within this time, seconds.
constexpr double pairWithin = 0.5;
/// How many of the latest pings may still miss a side.
constexpr std::size_t pairAmong = 4;

bool IsPing(const ZrLogItem& item)
{
    return item.type == ZrPingRecord::RecType && item.sub <= sideStarboard;
}

bool IsNav(const ZrLogItem& item)
{
    return item.type == ZrNavRecord::RecType && item.sub == 0;
}

void Widen(const QByteArray& bytes, u8 width, std::vector<u16>& samples)
{
    const auto* in = reinterpret_cast<const u8*>(bytes.constData());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (width == 1)
            samples[i] = static_cast<u16>(in[i] * 257);
        else if (width == 2)
            samples[i] = zr::load_le<u16>(in + 2 * i);
        else
            samples[i] = static_cast<u16>(zr::load_le<u32>(in + 4 * i) >> 16);
    }
}

} // namespace

bool ZrSonarLog::Open(const QString& path)
{
    m_path = path;
    m_pings.clear();
    m_skipped = 0;
    m_error.clear();
    m_damage.clear();
    m_file.close();

    ZrLogScan scan;
    scan.progress = progress;
    if (!scan.Open(path)) {
        m_error = scan.Error();
        return false;
    }
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly)) {
        m_error = m_file.errorString();
        return false;
    }
    ZrSonarNav nav;
    ZrLogItem item;
    u64 pos = 0;
    QByteArray payload;
    while (scan.Next(item, pos)) {
        scan.cancel = cancel.load();
        if (IsPing(item)) {
            AddPing(item, pos);
        } else if (IsNav(item)) {
            ZrNavRecord record;
            if (item.format == ZrNavRecord::Format && ReadPayload(pos, item, ZrNavRecord::Size, payload)
                && ZrNavRecord::Decode(zr::bytes_of(payload), record))
                nav.Add(item.time, record);
            else
                ++m_skipped;
        }
    }
    if (scan.State() == ZrLogScan::Cancelled) {
        m_error = QStringLiteral("Cancelled");
        m_pings.clear();
        return false;
    }
    if (scan.State() == ZrLogScan::Damaged)
        m_damage = QStringLiteral("%1, at byte %2").arg(scan.Error()).arg(scan.ErrorPos());
    nav.Prepare();
    for (ZrSonarPing& ping : m_pings)
        ping.pose = nav.At(ping.time);
    return true;
}

/// The first \p most bytes of the payload of \p item, fewer when it is shorter; all of a compressed one.
bool ZrSonarLog::ReadPayload(u64 pos, const ZrLogItem& item, u64 most, QByteArray& payload)
{
    if (!m_file.seek(static_cast<qint64>(pos + ZrLogItem::Size)))
        return false;
    const u64 wanted = item.compressed == 0 ? std::min<u64>(most, item.storedSize) : item.storedSize;
    const QByteArray stored = m_file.read(static_cast<qint64>(wanted));
    if (static_cast<u64>(stored.size()) != wanted)
        return false;
    if (item.compressed == 0) {
        payload = stored;
        return true;
    }
    QString reason;
    return zr::unpack_payload(item, zr::bytes_of(stored), &payload, &reason);
}

void ZrSonarLog::AddPing(const ZrLogItem& item, u64 pos)
{
    QByteArray start;
    ZrPingRecord record;
    if (item.format != ZrPingRecord::Format || !std::isfinite(item.time)
        || !ReadPayload(pos, item, ZrPingRecord::Size, start)) {
        ++m_skipped;
        return;
    }
    const u64 payloadSize = item.compressed == 0 ? item.storedSize : static_cast<u64>(start.size());
    if (!ZrPingRecord::DecodeFields(zr::bytes_of(start), payloadSize, record) || !(record.slantRange > 0.0F)
        || !std::isfinite(record.slantRange)) {
        ++m_skipped;
        return;
    }
    ZrSonarChannel channel;
    channel.pos = pos;
    channel.slantRange = static_cast<double>(record.slantRange);
    channel.sampleCount = record.sampleCount;
    channel.frequency = record.frequency;
    channel.soundSpeed = record.soundSpeed;
    for (std::size_t back = 1; back <= std::min(pairAmong, m_pings.size()); ++back) {
        ZrSonarPing& ping = m_pings[m_pings.size() - back];
        if (ping.number == record.pingNumber && !ping.sides[item.sub].IsThere()
            && std::fabs(ping.time - item.time) < pairWithin) {
            ping.sides[item.sub] = channel;
            return;
        }
    }
    ZrSonarPing ping;
    ping.time = item.time;
    ping.number = record.pingNumber;
    ping.sides[item.sub] = channel;
    m_pings.push_back(ping);
}

bool ZrSonarLog::ReadSamples(std::size_t ping, eSonarSide side, std::vector<u16>& samples)
{
    samples.clear();
    if (ping >= m_pings.size() || (side != sidePort && side != sideStarboard))
        return false;
    const ZrSonarChannel& channel = m_pings[ping].sides[side];
    if (!channel.IsThere() || !m_file.seek(static_cast<qint64>(channel.pos)))
        return false;
    const QByteArray header = m_file.read(ZrLogItem::Size);
    if (header.size() != ZrLogItem::Size)
        return false;
    const ZrLogItem item = ZrLogItem::Decode(reinterpret_cast<const u8*>(header.constData()));
    QByteArray payload;
    ZrPingRecord record;
    if (item.magic != ZrLogItem::Magic || !IsPing(item)
        || !ReadPayload(channel.pos, item, item.storedSize, payload)
        || !ZrPingRecord::Decode(zr::bytes_of(payload), record) || record.sampleCount != channel.sampleCount)
        return false;
    samples.resize(record.sampleCount);
    Widen(record.samples, record.sampleWidth, samples);
    return true;
}
