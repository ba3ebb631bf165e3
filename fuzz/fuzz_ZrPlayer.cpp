// A log of any bytes: every reader ends, never passes the end of the file, and hands out only what the file
// holds.

#include "FuzzFile.h"
#include "ZrKit/records/ZrRecordText.h"
#include "ZrUtil/ZrPlayer.h"

#include <cstdlib>

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

template <class Step> void Walk(const QString& path, Step step)
{
    ZrPlayer player;
    QObject::connect(&player, &ZrPlayer::NewPayloadPos, &player,
        [&player](const ZrLogItemInf& inf, zr::span<u8> payload, u64 at) {
            Require(at + 40 + payload.size() == player.pos);
            Require(player.pos <= player.fileSize);
            QString error;
            zr::record_fields(inf, payload, &error);
        });
    if (!player.OpenFile(path))
        return;
    u64 before = player.pos;
    while (step(player)) {
        Require(player.pos > before);
        before = player.pos;
    }
    Require(player.pos <= player.fileSize);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    SilenceDebugOutput();
    const QString path = FuzzFile(data, size);
    Walk(path, [](ZrPlayer& player) { return player.ReadNextItem(true); });
    Walk(path, [](ZrPlayer& player) { return player.ReadNextItemOfType({CRecType(0, 2)}, 0, false); });
    Walk(path, [](ZrPlayer& player) { return player.PlayUntilType(CRecType(0, 16)); });
    return 0;
}
