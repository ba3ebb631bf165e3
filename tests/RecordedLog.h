#pragma once

// What the tests of recording share: a line to be recorded, and a log read back item by item.

#include "ZrUtil/ZrPlayer.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// A position as a receiver sends it, without the line end.
inline const QByteArray fixLine = "$GPGLL,4828.734,N,06830.882,W,201358,A,A*51";

struct Item
{
    ZrLogItemInf inf;
    QByteArray payload;
};

/// All items of a log up to where it cannot be read any further.
inline std::vector<Item> ReadLog(const QString& path)
{
    std::vector<Item> items;
    ZrPlayer player;
    QObject::connect(
        &player, &ZrPlayer::NewPayload, &player, [&items](const ZrLogItemInf& inf, zr::span<u8> payload) {
            items.push_back({inf, zr::to_byte_array(payload)});
        });
    if (player.OpenFile(path))
        while (player.ReadNextItem(true)) { }
    return items;
}
