#pragma once

// The damages that a player must survive, and of which a recovery must save all that is intact.

#include "ZrLogFixture.h"

/// Logs that are damaged alike, with the items of the undamaged one.
struct Damages
{
    QVector<Item> items;
    QVector<QByteArray> logs;

    /// The undamaged log.
    QByteArray Whole() const
    {
        LogBytes log;
        for (const Item& item : items)
            log.Add(item);
        return log.Bytes();
    }
};

/// Plain, compressed, empty, plain from another source, empty at the end.
inline QVector<Item> SmallItems()
{
    Item packed = MakeItem(300, qCompress(QByteArray("zzzzzzzz"), 1), 5);
    packed.sub = 2;
    packed.compressed = true;
    packed.dataSize = 8;
    return {MakeItem(4, "first", 5), packed, MakeItem(4, "", 5), MakeItem(4, "abc", 3), MakeItem(9, "", 5)};
}

inline Damages CutAtEveryOffset()
{
    Damages damages{SmallItems(), {}};
    const QByteArray whole = damages.Whole();
    for (int size = 0; size < whole.size(); ++size)
        damages.logs << whole.left(size);
    return damages;
}

/// Every byte of the file header and of each item header, each in five ways.
inline Damages EveryHeaderByteChanged()
{
    Damages damages{SmallItems(), {}};
    const QByteArray whole = damages.Whole();
    QVector<int> offsets;
    for (int i = 0; i < 48; ++i)
        offsets << i;
    int start = 48;
    for (const Item& item : damages.items) {
        for (int i = 0; i < 40; ++i)
            offsets << start + i;
        start += 40 + item.payload.size();
    }
    for (const int offset : offsets) {
        for (const int mask : {0x01, 0x02, 0x10, 0x80, 0xFF})
            damages.logs << Flipped(whole, offset, mask);
    }
    return damages;
}

/// The size field claims every number around what is there, and the greatest ones.
inline Damages EverySizeOfTheLastPayload()
{
    Damages damages{{MakeItem(4, QByteArray(100, 'p'), 5)}, {}};
    QVector<quint32> sizes;
    for (quint32 size = 0; size <= 150; ++size)
        sizes << size;
    sizes << 0x7FFFFFFFu << 0x80000000u << 0xFFFFFFD7u << 0xFFFFFFD8u << 0xFFFFFFD9u << 0xFFFFFFFFu;
    for (const quint32 size : sizes) {
        QByteArray field;
        AppendLe(field, size);
        damages.logs << Patched(damages.Whole(), 48 + 32, field);
    }
    return damages;
}

inline Damages ZerosAndNoiseBehindTheItems()
{
    Damages damages{SmallItems(), {}};
    for (const int size : {1, 39, 40, 41, 1000, 300000}) {
        for (const char byte : {'\0', '\xDD', 'x'})
            damages.logs << damages.Whole() + QByteArray(size, byte);
    }
    return damages;
}

inline Damages ClaimOf4Gibibytes()
{
    Damages damages{{MakeItem(4, "xy")}, {}};
    damages.logs << Patched(damages.Whole(), 48 + 32, QByteArray(4, '\xFF'));
    return damages;
}
