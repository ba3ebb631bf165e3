#pragma once

#include "ZrKit/import/ZrImportQueue.h"
#include "ZrKit/import/ZrImportWindow.h"

#include <vector>

struct ZrNavRecord;
struct ZrPingRecord;

/// Side-scan sonar files in the format XTF: a file header, then packets.
///
/// Little-endian. The file header has 1024 bytes, or more in steps of 1024 when it describes more than six
/// channels:
///
/// | Offset | Width | File header |
/// |---|---|---|
/// | 0 | u8 | 0x7B |
/// | 164 | u16 | unit of positions: 3 degrees, 0 metres |
/// | 166, 168 | u16 | sonar channels, bathymetry channels |
/// | 170 | u8, u8, u16, u8 | other channels |
/// | 256 | 128 each | descriptions of the channels |
///
/// | Offset | Width | Description of a channel |
/// |---|---|---|
/// | 0 | u8 | type: 1 port, 2 starboard |
/// | 4 | u16 | 0: the samples are signed |
/// | 6 | u16 | bytes of one sample |
/// | 32 | f32 | frequency, kHz |
/// | 74 | u8 | sample format; 1 and 5 are floating-point |
///
/// | Offset | Width | Packet; from 14 on those of type 0, the pings |
/// |---|---|---|
/// | 0 | u16 | 0xFACE |
/// | 2 | u8 | type |
/// | 4 | u16 | channels that follow |
/// | 10 | u32 | bytes of the packet, this header included |
/// | 14 | u16, 6 x u8 | year, month, day, hour, minute, second, hundredths |
/// | 28 | u32 | number of the ping |
/// | 32 | f32 | speed of sound, m/s |
/// | 160, 168 | f64 | latitude, longitude |
/// | 192, 196 | f32 | depth, altitude, m |
/// | 204, 208, 212 | f32 | pitch, roll, heading, degrees |
/// | 256 | | the channels: a header each, and its samples |
///
/// | Offset | Width | Header of a channel (64 bytes) |
/// |---|---|---|
/// | 0 | u16 | number of its description, from 0 |
/// | 4 | f32 | slant range, m |
/// | 26 | u16 | frequency, kHz |
/// | 42 | u32 | samples |
///
/// Each ping gives one `ZrNavRecord` and then, for each port or starboard channel, one `ZrPingRecord`, all at
/// the time of the ping. Other packets and channels are counted as ignored.
///
/// - Samples of a port channel stand in the file as on a printed record, the outermost first and the one at
///   the nadir last; they are reversed, so that a record begins with the nearest sample on both sides.
///   (The transmit pulse and the dark water column lie at the end of port and at the beginning of starboard.)
/// - Signed samples are taken as their magnitude.
/// - A position of 0,0, off the globe or not in degrees is NaN.
/// - A channel without samples gives no record.
/// - A speed of sound between 650 and 850 m/s is a one-way speed and is doubled.
/// - After damage the next packet is searched: one that ends where another begins, or a sound ping.
class ZrImportXtf final : public ZrImportQueue
{
public:
    static constexpr u32 MaxPing = 64u << 20; ///< bytes of a ping packet; more is taken for damage
    static constexpr u16 MaxChannels = 64; ///< channels of a ping; more are taken for damage

    /// True when \p head, the first bytes of a file, begins with an XTF file header.
    static bool Fits(const QByteArray& head);

    u64 FileSize() const override { return m_file.Length(); }

protected:
    bool Open(const QString& path, const ZrImportOptions& options, QString* error) override;
    bool ReadMore() override;

private:
    struct Channel
    {
        u8 type = 0;
        u8 width = 0; ///< bytes of one sample; 0: not described
        bool isSigned = false;
        bool isFloat = false;
        float frequency = 0.0f; ///< kHz
    };

    struct Packet
    {
        u16 magic = 0;
        u8 type = 0;
        u16 channels = 0;
        u32 size = 0;
    };

    void ReadChannels(u64 headerSize);
    u64 HeaderSize(const u8* header);
    bool HasMagicAt(u64 offset);
    bool PacketAt(u64 offset, Packet& packet);
    QString FaultOf(const Packet& packet, u64 offset) const;
    u64 PingContent(const Packet& packet, u64 offset, QString& fault);
    bool IsPlausible(u64 offset);
    u64 FindPacket(u64 from, u64 end);
    void SkipDamage(const QString& fault);
    void StepOver(const Packet& packet, u64 content);
    void TakePing(const Packet& packet, QString& fault);
    ZrNavRecord Navigation(const u8* ping);
    void TakePosition(const u8* ping, ZrNavRecord& nav);
    void TakeChannel(const u8* header, ZrPingRecord record, double time);
    float SoundSpeed(const u8* ping);

    ZrImportWindow m_file;
    std::vector<Channel> m_channels;
    bool m_degrees = true; ///< positions are in degrees
    u64 m_at = 0; ///< offset of the next packet
};
