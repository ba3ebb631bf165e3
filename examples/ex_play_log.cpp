// Plays a data log through a ZrPlayer and says what went by.
//
//     ex_play_log LOG
//
// Exit code 0 when the log was played to its end, 1 for wrong arguments, 2 when it could not be opened or is
// damaged.

#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrUtil/ZrPlayer.h"

#include <QCoreApplication>

#include <cmath>
#include <cstdio>
#include <map>

namespace {

struct Seen
{
    u64 items = 0;
    u64 bytes = 0;
    std::map<u16, u64> perType;
    float deepest = NAN;
};

void Count(Seen& seen, const ZrLogItemInf& inf, zr::span<u8> payload)
{
    ++seen.items;
    seen.bytes += payload.size();
    ++seen.perType[inf.type];
    ZrNavRecord nav;
    if (inf.type == krtNavigation && ZrNavRecord::Decode(payload, nav))
        seen.deepest = std::fmax(seen.deepest, nav.depth);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "Usage: ex_play_log LOG\n");
        return 1;
    }
    Seen seen;
    ZrPlayer player;
    // The payload is valid only during the signal: decode or copy it there.
    QObject::connect(&player, &ZrPlayer::NewPayload, &player,
        [&seen](const ZrLogItemInf& inf, zr::span<u8> payload) { Count(seen, inf, payload); });

    if (!player.OpenFile(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "Cannot play %s\n", argv[1]);
        return 2;
    }
    while (player.ReadNextItem(true)) { }

    std::printf("Played %llu items, %llu payload bytes, to %.1f %% of the file\n", seen.items, seen.bytes,
        player.PosPercent());
    for (const auto& [type, count] : seen.perType)
        std::printf(
            "  type %-3u %-14s %llu\n", type, qPrintable(zr::rec_type_name(CRecType(0, type))), count);
    if (!std::isnan(seen.deepest))
        std::printf("  deepest position of the vehicle: %.2f m\n", static_cast<double>(seen.deepest));
    // Damage closes the file; the position alone does not tell, since a header that was read counts.
    return player.file.isOpen() ? 0 : 2;
}
