#include "ZrKit/sonar/ZrSonarLog.h"

#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrUnpack.h"
#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrEndian.h"
#include "ZrUtil/ZrLogItem.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

/// The two sides of one ping are logged within this time, seconds.
constexpr double pairWithin = 0.5;
/// How many of the latest pings may still miss a side: half a second of a fast sonar.
constexpr std::size_t mostWaiting = 64;
/// Bytes of a compressed payload that give its first fields: a block of codes takes less than 400.
constexpr u32 compressedStart = 1024;

bool IsPing(const ZrLogItem& item)
{
    return item.type == ZrPingRecord::RecType && item.sub <= sideStarboard;
}

bool IsNav(const ZrLogItem& item)
{
    return item.type == ZrNavRecord::RecType && item.sub == 0;
}

/// Metres of slant range that a side-scan sonar can listen to; what lies outside is no measurement, and would
/// be what the scale of a picture is chosen by.
constexpr float leastRange = 0.1F;
constexpr float mostRange = 50000.0F;

bool IsSlantRange(float metres)
{
    return metres >= leastRange && metres <= mostRange;
}

/// Sonars that do not know a value say 0.
float Known(float value)
{
    return std::isfinite(value) && value > 0.0F ? value : std::numeric_limits<float>::quiet_NaN();
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
    m_file.close();
    m_fileSize = 0;
    Clear();
    m_skipped = 0;
    m_error.clear();
    m_damage.clear();
    m_damagePos = 0;

    ZrLogScan scan;
    scan.progress = progress;
    if (!scan.Open(path))
        return Fail(scan.Error());
    m_fileSize = scan.FileSize();
    // Without a buffer: what is read later is what stands in the file then.
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Fail(m_file.errorString());
    m_table = std::make_shared<ZrSonarPingTable>();
    m_nav = std::make_shared<ZrSonarNav>();
    if (!ReadTable(scan))
        return Fail(QStringLiteral("Cancelled"));
    if (scan.State() == ZrLogScan::Damaged) {
        m_damage = scan.Error();
        m_damagePos = scan.ErrorPos();
    }
    m_table->Squeeze();
    m_nav->Prepare();
    if (cancel)
        return Fail(QStringLiteral("Cancelled"));
    m_waiting.clear();
    m_pings = ZrSonarPings(m_table, m_nav);
    return true;
}

void ZrSonarLog::ShareNavigation(std::shared_ptr<const ZrSurveySeries> series)
{
    if (m_nav)
        m_nav->Share(std::move(series));
}

void ZrSonarLog::Clear()
{
    m_pings = ZrSonarPings();
    m_table.reset();
    m_nav.reset();
}

bool ZrSonarLog::OpenAs(const ZrSonarLog& other)
{
    if (this == &other)
        return m_file.isOpen();
    m_file.close();
    m_path = other.m_path;
    m_fileSize = other.m_fileSize;
    m_error.clear();
    m_damage = other.m_damage;
    m_damagePos = other.m_damagePos;
    Clear();
    m_file.setFileName(m_path);
    if (!other.m_file.isOpen())
        return Fail(QStringLiteral("No log is open"));
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Fail(m_file.errorString());
    m_pings = other.m_pings;
    m_skipped = other.m_skipped;
    return true;
}

bool ZrSonarLog::Fail(const QString& error)
{
    m_error = error;
    Clear();
    m_skipped = 0;
    m_file.close();
    return false;
}

/// All items up to the end or to damage; false when `cancel` was set.
bool ZrSonarLog::ReadTable(ZrLogScan& scan)
{
    ZrLogItem item;
    u64 pos = 0;
    m_waiting.clear();
    scan.cancel = cancel.load();
    while (scan.Next(item, pos)) {
        if (IsPing(item))
            AddPing(scan, item, pos);
        else if (IsNav(item))
            AddNav(scan, item);
        scan.cancel = cancel.load();
    }
    return scan.State() != ZrLogScan::Cancelled;
}

/// The first \p most bytes of the payload of \p item, fewer when it is shorter.
bool ZrSonarLog::ReadStart(ZrLogScan& scan, const ZrLogItem& item, u32 most, QByteArray& start) const
{
    const zr::span<u8> stored = scan.PayloadStart(item.compressed == 0 ? most : compressedStart);
    QString reason;
    return zr::unpack_start(item, stored, most, &start, &reason);
}

void ZrSonarLog::AddNav(ZrLogScan& scan, const ZrLogItem& item)
{
    QByteArray payload;
    ZrNavRecord record;
    if (item.format == ZrNavRecord::Format && std::isfinite(item.time)
        && ReadStart(scan, item, ZrNavRecord::Size, payload)
        && ZrNavRecord::Decode(zr::bytes_of(payload), record))
        m_nav->Add(item.time, record);
    else
        ++m_skipped;
}

void ZrSonarLog::AddPing(ZrLogScan& scan, const ZrLogItem& item, u64 pos)
{
    QByteArray start;
    ZrPingRecord record;
    const u64 payloadSize = item.compressed == 0 ? item.storedSize : item.dataSize;
    if (item.format != ZrPingRecord::Format || !std::isfinite(item.time)
        || !ReadStart(scan, item, ZrPingRecord::Size, start)
        || !ZrPingRecord::DecodeFields(zr::bytes_of(start), payloadSize, record)
        || !IsSlantRange(record.slantRange)) {
        ++m_skipped;
        return;
    }
    ZrSonarChannel channel;
    channel.pos = pos;
    channel.slantRange = static_cast<double>(record.slantRange);
    channel.sampleCount = record.sampleCount;
    channel.frequency = Known(record.frequency);
    channel.soundSpeed = Known(record.soundSpeed);
    if (Complete(record.pingNumber, item, channel))
        return;
    ZrSonarPing ping;
    ping.time = item.time;
    ping.number = record.pingNumber;
    ping.source = item.source;
    ping.sides[item.sub] = channel;
    if (m_waiting.size() == mostWaiting)
        m_waiting.erase(m_waiting.begin());
    m_waiting.push_back(m_table->Count());
    m_table->Append(ping);
}

/// Gives \p channel to the latest ping that misses it; that waits no longer. False when there is none.
bool ZrSonarLog::Complete(u32 number, const ZrLogItem& item, const ZrSonarChannel& channel)
{
    for (auto it = m_waiting.rbegin(); it != m_waiting.rend(); ++it) {
        if (m_table->Number(*it) != number)
            continue;
        const ZrSonarPing ping = m_table->At(*it);
        if (ping.source != item.source || ping.sides[item.sub].IsThere()
            || !(std::fabs(ping.time - item.time) < pairWithin))
            continue;
        m_table->SetSide(*it, static_cast<eSonarSide>(item.sub), channel);
        m_waiting.erase(std::next(it).base());
        return true;
    }
    return false;
}

QString ZrSonarLog::Damage() const
{
    return m_damage.isEmpty()
        ? QString()
        : QCoreApplication::translate("ZrSonarLog", "%1 (at position %2)").arg(m_damage).arg(m_damagePos);
}

/// Header and payload of the item that starts at \p pos.
bool ZrSonarLog::ReadItem(u64 pos, ZrLogItem& item, QByteArray& payload)
{
    if (!m_file.seek(static_cast<qint64>(pos)))
        return false;
    u8 header[ZrLogItem::Size];
    if (m_file.read(reinterpret_cast<char*>(header), ZrLogItem::Size) != ZrLogItem::Size)
        return false;
    item = ZrLogItem::Decode(header);
    // The size is believed only when the file holds as much: it is what gets allocated.
    const u64 end = pos + ZrLogItem::Size + item.storedSize;
    if (item.magic != ZrLogItem::Magic || end > static_cast<u64>(std::max<qint64>(m_file.size(), 0)))
        return false;
    const QByteArray stored = m_file.read(static_cast<qint64>(item.storedSize));
    QString reason;
    return static_cast<u64>(stored.size()) == item.storedSize
        && zr::unpack_payload(item, zr::bytes_of(stored), &payload, &reason);
}

bool ZrSonarLog::ReadSamples(std::size_t ping, eSonarSide side, std::vector<u16>& samples)
{
    samples.clear();
    if (ping >= m_pings.size() || (side != sidePort && side != sideStarboard))
        return false;
    const ZrSonarChannel channel = m_pings.Side(ping, side);
    ZrLogItem item;
    QByteArray payload;
    ZrPingRecord record;
    if (!channel.IsThere() || !ReadItem(channel.pos, item, payload) || !IsPing(item) || item.sub != side
        || item.format != ZrPingRecord::Format || !ZrPingRecord::Decode(zr::bytes_of(payload), record)
        || record.pingNumber != m_pings.Number(ping) || record.sampleCount != channel.sampleCount)
        return false;
    samples.resize(record.sampleCount);
    Widen(record.samples, record.sampleWidth, samples);
    return true;
}
