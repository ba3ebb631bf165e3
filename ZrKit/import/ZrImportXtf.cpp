#include "ZrKit/import/ZrImportXtf.h"

#include "ZrKit/import/ZrImportTime.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrUtil/ZrEndian.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr u8 FileFormat = 0x7B;
constexpr u16 PacketMagic = 0xFACE;
constexpr u8 PingPacket = 0;
constexpr u16 UnitDegrees = 3;
constexpr u8 PortChannel = 1;
constexpr u8 StarboardChannel = 2;

constexpr u32 HeaderBlock = 1024;
constexpr u32 ChannelInfo = 128;
constexpr u32 FirstChannelInfo = 256;
constexpr u32 ChannelsInFirstBlock = 6;
constexpr u32 ChannelsPerBlock = HeaderBlock / ChannelInfo;
constexpr u32 PacketHeader = 14;
constexpr u32 PingHeader = 256;
constexpr u32 ChannelHeader = 64;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

/// Channels that the file header announces, of all kinds.
u32 channelCount(const u8* header)
{
    return u32(zr::load_le<u16>(header + 166)) + zr::load_le<u16>(header + 168) + header[170] + header[171]
        + zr::load_le<u16>(header + 172) + header[174];
}

u32 headerSizeFor(u32 channels)
{
    if (channels <= ChannelsInFirstBlock)
        return HeaderBlock;
    const u32 beyond = channels - ChannelsInFirstBlock;
    return HeaderBlock * (1 + (beyond + ChannelsPerBlock - 1) / ChannelsPerBlock);
}

bool isSampleWidth(u16 width)
{
    return width == 1 || width == 2 || width == 4;
}

double pingTime(const u8* ping)
{
    const double second = ping[20] + ping[21] / 100.0;
    return ping[21] > 99
        ? NaN
        : zr::utc_seconds(zr::load_le<u16>(ping + 14), ping[16], ping[17], ping[18], ping[19], second);
}

QString dateText(const u8* ping)
{
    return QStringLiteral("%1-%2-%3 %4:%5:%6.%7")
        .arg(zr::load_le<u16>(ping + 14))
        .arg(ping[16])
        .arg(ping[17])
        .arg(ping[18])
        .arg(ping[19])
        .arg(ping[20])
        .arg(ping[21]);
}

/// The value at \p at when it is a finite number, else NaN.
float finite(const u8* at)
{
    const float value = zr::load_le<float>(at);
    return std::isfinite(value) ? value : std::numeric_limits<float>::quiet_NaN();
}

float positive(const u8* at)
{
    const float value = finite(at);
    return value > 0.0f ? value : std::numeric_limits<float>::quiet_NaN();
}

/// \p count samples of type \p T, the nearest one first, as amplitudes.
template <class T> void copySamples(const u8* in, u32 count, bool outermostFirst, bool isSigned, u8* out)
{
    constexpr T Largest = std::numeric_limits<T>::max() / 2;
    for (u32 i = 0; i < count; ++i) {
        const std::size_t from = outermostFirst ? count - 1 - i : i;
        T sample = zr::load_le<T>(in + from * sizeof(T));
        if (isSigned && sample > Largest)
            sample = static_cast<T>(T(0) - sample);
        zr::store_le<T>(out + std::size_t(i) * sizeof(T), sample);
    }
}

} // namespace

bool ZrImportXtf::Fits(const QByteArray& head)
{
    if (head.size() < int(HeaderBlock))
        return false;
    const u8* header = reinterpret_cast<const u8*>(head.constData());
    // A text may begin with the same character, but it holds no zero bytes.
    if (header[0] != FileFormat || !std::memchr(header, 0, HeaderBlock))
        return false;
    for (u32 i = 0; i < ChannelsInFirstBlock; ++i) {
        const u8* info = header + FirstChannelInfo + std::size_t(i) * ChannelInfo;
        if (isSampleWidth(zr::load_le<u16>(info + 6)))
            return true;
    }
    for (int at = int(HeaderBlock); at + 2 <= head.size(); at += int(HeaderBlock)) {
        if (zr::load_le<u16>(header + at) == PacketMagic)
            return true;
    }
    return false;
}

bool ZrImportXtf::Open(const QString& path, const ZrImportOptions& options, QString* error)
{
    m_report.path = path;
    m_report.format = QStringLiteral("xtf");
    m_report.byLine = false;
    m_source = options.source;
    if (!m_file.Open(path, error))
        return false;
    const u8* header = m_file.At(0, HeaderBlock);
    if (!header || header[0] != FileFormat) {
        *error = QCoreApplication::translate("ZrImportXtf", "%1: has no XTF file header").arg(path);
        return false;
    }
    m_degrees = zr::load_le<u16>(header + 164) == UnitDegrees;
    m_at = HeaderSize(header);
    ReadChannels(m_at);
    m_report.bytes = m_at;
    return true;
}

/// Where the packets begin. The numbers of channels are not trusted alone: the first packet must stand there.
u64 ZrImportXtf::HeaderSize(const u8* header)
{
    const u64 announced = headerSizeFor(channelCount(header));
    if (HasMagicAt(announced))
        return announced;
    for (u64 size = HeaderBlock; size < announced; size += HeaderBlock) {
        if (HasMagicAt(size))
            return size;
    }
    return HeaderBlock;
}

void ZrImportXtf::ReadChannels(u64 headerSize)
{
    u8 info[ChannelInfo];
    for (u64 at = FirstChannelInfo; at + ChannelInfo <= headerSize; at += ChannelInfo) {
        if (!m_file.Peek(at, info, ChannelInfo))
            return;
        Channel channel;
        channel.type = info[0];
        const u16 width = zr::load_le<u16>(info + 6);
        channel.width = isSampleWidth(width) ? static_cast<u8>(width) : u8(0);
        channel.isSigned = zr::load_le<u16>(info + 4) == 0;
        channel.isFloat = info[74] == 1 || info[74] == 5;
        channel.frequency = zr::load_le<float>(info + 32);
        m_channels.push_back(channel);
    }
}

bool ZrImportXtf::ReadMore()
{
    if (m_at >= m_file.Length())
        return false;
    Packet packet;
    if (!PacketAt(m_at, packet)) {
        const u64 rest = m_file.Length() - m_at;
        m_report.AddIssue(m_at,
            rest < PacketHeader
                ? QCoreApplication::translate("ZrImportXtf", "the last %1 bytes are no packet").arg(rest)
                : QCoreApplication::translate("ZrImportXtf", "the file cannot be read any further"));
        m_at = m_file.Length();
        m_report.bytes = m_at;
        return false;
    }
    QString fault = FaultOf(packet, m_at);
    u64 content = PacketHeader;
    if (fault.isEmpty()) {
        ++m_report.records;
        if (packet.type == PingPacket)
            content = PingContent(packet, m_at, fault);
        else
            Ignore(QCoreApplication::translate("ZrImportXtf", "XTF packet %1").arg(packet.type));
    }
    if (fault.isEmpty() && packet.type == PingPacket)
        TakePing(packet, fault);
    if (fault.isEmpty())
        StepOver(packet, content);
    else
        SkipDamage(fault);
    m_report.bytes = m_at;
    return true;
}

bool ZrImportXtf::HasMagicAt(u64 offset)
{
    u8 bytes[2];
    return m_file.Peek(offset, bytes, sizeof bytes) && zr::load_le<u16>(bytes) == PacketMagic;
}

bool ZrImportXtf::PacketAt(u64 offset, Packet& packet)
{
    u8 bytes[PacketHeader];
    if (!m_file.Peek(offset, bytes, PacketHeader))
        return false;
    packet.magic = zr::load_le<u16>(bytes);
    packet.type = bytes[2];
    packet.channels = zr::load_le<u16>(bytes + 4);
    packet.size = zr::load_le<u32>(bytes + 10);
    return true;
}

/// What the header of the packet at \p offset gives away; empty when it may be sound.
QString ZrImportXtf::FaultOf(const Packet& packet, u64 offset) const
{
    const u64 rest = m_file.Length() - offset;
    if (packet.magic != PacketMagic)
        return QCoreApplication::translate("ZrImportXtf", "no packet begins here");
    if (packet.size < (packet.type == PingPacket ? PingHeader : PacketHeader))
        return QCoreApplication::translate("ZrImportXtf", "a packet announces only %1 bytes")
            .arg(packet.size);
    if (packet.size > rest)
        return QCoreApplication::translate(
            "ZrImportXtf", "a packet announces %1 bytes, the file holds only %2 more")
            .arg(packet.size)
            .arg(rest);
    if (packet.type == PingPacket && packet.size > MaxPing)
        return QCoreApplication::translate("ZrImportXtf", "a ping announces %1 bytes").arg(packet.size);
    if (packet.type == PingPacket && packet.channels > MaxChannels)
        return QCoreApplication::translate("ZrImportXtf", "a ping announces %1 channels")
            .arg(packet.channels);
    return QString();
}

/// Bytes of the ping at \p offset up to the end of its last channel; \p fault says why they do not fit.
u64 ZrImportXtf::PingContent(const Packet& packet, u64 offset, QString& fault)
{
    u64 at = PingHeader;
    for (u16 i = 0; i < packet.channels; ++i) {
        u8 header[ChannelHeader];
        if (packet.size - at < ChannelHeader || !m_file.Peek(offset + at, header, ChannelHeader)) {
            fault = QCoreApplication::translate("ZrImportXtf", "the ping ends before its channel %1").arg(i);
            return at;
        }
        const u16 number = zr::load_le<u16>(header);
        const u8 width = number < m_channels.size() ? m_channels[number].width : u8(0);
        if (width == 0) {
            fault = QCoreApplication::translate(
                "ZrImportXtf", "the file header does not describe channel %1 of a ping")
                        .arg(number);
            return at;
        }
        at += ChannelHeader;
        const u32 count = zr::load_le<u32>(header + 42);
        if (count > (packet.size - at) / width) {
            fault = QCoreApplication::translate(
                "ZrImportXtf", "channel %1 of a ping has %2 samples, more than its packet holds")
                        .arg(number)
                        .arg(count);
            return at;
        }
        at += u64(count) * width;
    }
    return at;
}

/// True when a packet at \p offset is so well-formed that chance can be ruled out.
bool ZrImportXtf::IsPlausible(u64 offset)
{
    Packet packet;
    if (!PacketAt(offset, packet) || !FaultOf(packet, offset).isEmpty())
        return false;
    const u64 next = offset + packet.size;
    if (next == m_file.Length() || HasMagicAt(next))
        return true;
    u8 ping[PingHeader];
    if (packet.type != PingPacket || packet.channels == 0 || !m_file.Peek(offset, ping, PingHeader))
        return false;
    QString fault;
    PingContent(packet, offset, fault);
    return fault.isEmpty() && !std::isnan(pingTime(ping));
}

/// Offset of the first plausible packet that begins in \p from … \p end; \p end when there is none.
u64 ZrImportXtf::FindPacket(u64 from, u64 end)
{
    const u64 size = m_file.Length();
    for (u64 at = from; at < end && size - at >= 2;) {
        const u32 count = static_cast<u32>(std::min<u64>(ZrImportWindow::BlockSize, size - at));
        const u8* block = m_file.At(at, count);
        if (!block)
            return end;
        const u8* last = block + count - 1;
        for (const u8* p = block; p < last; ++p) {
            p = static_cast<const u8*>(
                std::memchr(p, PacketMagic & 0xFF, static_cast<std::size_t>(last - p)));
            if (!p)
                break;
            const u64 offset = at + static_cast<u64>(p - block);
            if (offset >= end)
                return end;
            if (p[1] == PacketMagic >> 8 && IsPlausible(offset))
                return offset;
        }
        // The last byte of the block may be the first of the mark.
        at += count - 1;
    }
    return end;
}

void ZrImportXtf::SkipDamage(const QString& fault)
{
    const u64 next = FindPacket(m_at + 1, m_file.Length());
    m_report.AddIssue(m_at,
        QCoreApplication::translate("ZrImportXtf", "%1; %2 bytes are skipped").arg(fault).arg(next - m_at));
    m_at = next;
}

/// Goes to the next packet. When it does not begin where \p packet says, it may begin earlier, behind the
/// \p content bytes of \p packet that were taken: then the size is the damaged part.
void ZrImportXtf::StepOver(const Packet& packet, u64 content)
{
    const u64 next = m_at + packet.size;
    if (next < m_file.Length() && !HasMagicAt(next)) {
        const u64 found = FindPacket(m_at + content, next);
        if (found < next) {
            m_report.AddIssue(m_at,
                QCoreApplication::translate(
                    "ZrImportXtf", "a packet announces %1 bytes, but the next one begins after %2")
                    .arg(packet.size)
                    .arg(found - m_at));
            m_at = found;
            return;
        }
    }
    m_at = next;
}

void ZrImportXtf::TakePing(const Packet& packet, QString& fault)
{
    const u8* ping = m_file.At(m_at, packet.size);
    if (!ping) {
        fault = QCoreApplication::translate("ZrImportXtf", "the packet cannot be read");
        return;
    }
    const double time = pingTime(ping);
    if (std::isnan(time)) {
        fault = QCoreApplication::translate("ZrImportXtf", "a ping has the impossible date and time %1")
                    .arg(dateText(ping));
        return;
    }
    Push(Navigation(ping), time);
    ZrPingRecord common;
    common.pingNumber = zr::load_le<u32>(ping + 28);
    common.soundSpeed = SoundSpeed(ping);
    u64 at = PingHeader;
    for (u16 i = 0; i < packet.channels; ++i) {
        const u8* header = ping + at;
        TakeChannel(header, common, time);
        at += ChannelHeader + u64(zr::load_le<u32>(header + 42)) * m_channels[zr::load_le<u16>(header)].width;
    }
}

ZrNavRecord ZrImportXtf::Navigation(const u8* ping)
{
    ZrNavRecord nav;
    TakePosition(ping, nav);
    nav.depth = finite(ping + 192);
    nav.altitude = finite(ping + 196);
    nav.pitch = finite(ping + 204);
    nav.roll = finite(ping + 208);
    nav.heading = std::fmod(finite(ping + 212), 360.0f);
    if (nav.heading < 0.0f)
        nav.heading += 360.0f;
    return nav;
}

void ZrImportXtf::TakePosition(const u8* ping, ZrNavRecord& nav)
{
    const double latitude = zr::load_le<double>(ping + 160);
    const double longitude = zr::load_le<double>(ping + 168);
    if (!m_degrees) {
        Note(QCoreApplication::translate(
            "ZrImportXtf", "the positions are not in degrees: taken as not known"));
    } else if (latitude == 0.0 && longitude == 0.0) {
        Note(QCoreApplication::translate("ZrImportXtf", "the position is 0,0: taken as not known"));
    } else if (!(std::fabs(latitude) <= 90.0 && std::fabs(longitude) <= 180.0)) {
        Note(QCoreApplication::translate(
            "ZrImportXtf", "the position lies off the globe: taken as not known"));
    } else {
        nav.latitude = latitude;
        nav.longitude = longitude;
    }
}

void ZrImportXtf::TakeChannel(const u8* header, ZrPingRecord record, double time)
{
    const Channel& channel = m_channels[zr::load_le<u16>(header)];
    if (channel.type != PortChannel && channel.type != StarboardChannel) {
        Ignore(QCoreApplication::translate("ZrImportXtf", "XTF channel type %1").arg(channel.type));
        return;
    }
    if (channel.isFloat) {
        Ignore(QCoreApplication::translate("ZrImportXtf", "XTF channel of floating-point samples"));
        return;
    }
    record.sampleCount = zr::load_le<u32>(header + 42);
    if (record.sampleCount == 0) {
        Note(QCoreApplication::translate("ZrImportXtf", "a channel of a ping has no samples"));
        return;
    }
    record.side = channel.type == PortChannel ? 0 : 1;
    record.sampleWidth = channel.width;
    record.slantRange = positive(header + 4);
    const u16 frequency = zr::load_le<u16>(header + 26);
    const float described = channel.frequency;
    if (frequency > 0)
        record.frequency = frequency;
    else if (std::isfinite(described) && described > 0.0f)
        record.frequency = described;
    record.samples.resize(static_cast<int>(record.sampleCount * channel.width));
    if (channel.isSigned)
        Note(QCoreApplication::translate(
            "ZrImportXtf", "the samples of a channel are signed: their magnitude is taken"));
    const auto copy = channel.width == 1 ? &copySamples<u8>
        : channel.width == 2             ? &copySamples<u16>
                                         : &copySamples<u32>;
    copy(header + ChannelHeader, record.sampleCount, record.side == 0, channel.isSigned,
        reinterpret_cast<u8*>(record.samples.data()));
    Push(record, time, record.side);
}

float ZrImportXtf::SoundSpeed(const u8* ping)
{
    const float speed = positive(ping + 32);
    if (speed >= 650.0f && speed <= 850.0f) {
        Note(QCoreApplication::translate("ZrImportXtf", "the speed of sound is given for one way: doubled"));
        return 2.0f * speed;
    }
    return speed;
}
