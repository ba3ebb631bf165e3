// The block reader under player and exports, on a device that counts what it is asked for.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrReadAhead.h"

#include <QBuffer>
#include <QtTest/QtTest>

#include <random>

namespace {

/// Bytes in memory, as an unbuffered device that notes the size of every read.
class Device : public QIODevice
{
public:
    explicit Device(const QByteArray& bytes)
        : content(bytes)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    qint64 size() const override { return content.size(); }

    QByteArray content;
    QVector<qint64> reads;

protected:
    qint64 readData(char* to, qint64 wanted) override
    {
        reads << wanted;
        const qint64 count = qBound<qint64>(0, content.size() - pos(), wanted);
        std::memcpy(to, content.constData() + pos(), static_cast<std::size_t>(count));
        return count;
    }

    qint64 writeData(const char*, qint64) override { return -1; }
};

QByteArray Noise(int size)
{
    std::mt19937 random(7);
    QByteArray bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

QByteArray ReadPiece(ZrReadAhead& ahead, QIODevice& device, int size)
{
    QByteArray piece(size, '\0');
    return ahead.Read(device, Span(piece)) ? piece : QByteArrayLiteral("failed");
}

const u8* TakeHeader(ZrReadAhead& ahead, QIODevice& device, quint64 pos)
{
    return ahead.TakeFresh(device, pos, ZrLogItem::Size, &ZrLogItem::IsPlaceholder);
}

} // namespace

class tst_ZrReadAhead : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void piecesOfAnySizeAreTheBytesOfTheDevice();
    void takenBytesLieInTheBlock();
    void smallPiecesCostFewReads();
    void largePieceGoesStraightThrough();
    void firstBlockIsSmallAgainAfterRestart();
    void nothingMoreThanThere();
    void emptyPieceAsksNothing();
    void placeholderIsReadAgain();
    void emptyItemsCostSmallReads();
    void headerIsNotPutTogether();
    void completeHeaderIsTakenFromTheBlock();
};

void tst_ZrReadAhead::piecesOfAnySizeAreTheBytesOfTheDevice()
{
    const QByteArray bytes = Noise(3000000);
    std::mt19937 random(11);
    for (int greatest : {1, 50, 5000, 20000, 100000, 600000}) {
        Device device(bytes);
        ZrReadAhead ahead;
        int at = 0;
        while (at < bytes.size() && at < greatest * 3000) {
            const int size
                = qMin(static_cast<int>(random() % static_cast<unsigned>(greatest + 1)), bytes.size() - at);
            if (size <= 16384 && random() % 2 == 0) {
                const u8* const taken = ahead.Take(device, static_cast<std::size_t>(size));
                QVERIFY(taken);
                QVERIFY(std::memcmp(taken, bytes.constData() + at, static_cast<std::size_t>(size)) == 0);
            } else {
                QVERIFY(ReadPiece(ahead, device, size) == bytes.mid(at, size));
            }
            at += size;
        }
    }
}

void tst_ZrReadAhead::takenBytesLieInTheBlock()
{
    Device device("abcdefgh");
    ZrReadAhead ahead;
    const u8* const first = ahead.Take(device, 3);
    const u8* const second = ahead.Take(device, 2);
    QVERIFY(second == first + 3);
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(first), 5), QByteArray("abcde"));
    QCOMPARE(ReadPiece(ahead, device, 3), QByteArray("fgh"));
}

void tst_ZrReadAhead::smallPiecesCostFewReads()
{
    Device device(QByteArray(4 * 1024 * 1024, 'x'));
    ZrReadAhead ahead;
    for (int i = 0; i < device.content.size(); i += 64)
        QVERIFY(ahead.Take(device, 64));
    const QVector<qint64> start = {16384, 32768, 65536, 131072, 262144, 262144};
    QCOMPARE(device.reads.mid(0, 6), start);
    QVERIFY(device.reads.size() <= 4 + 16);
}

void tst_ZrReadAhead::largePieceGoesStraightThrough()
{
    const QByteArray bytes = Noise(300000);
    Device device(bytes);
    ZrReadAhead ahead;
    QVERIFY(ahead.Take(device, 40));
    QCOMPARE(ReadPiece(ahead, device, 100000), bytes.mid(40, 100000));
    QCOMPARE(device.reads, (QVector<qint64>{16384, 100000 + 40 - 16384}));
    // Between large pieces the blocks are small: only a header is expected from them.
    QVERIFY(ahead.Take(device, 40));
    QCOMPARE(device.reads.last(), qint64(4096));
    QCOMPARE(ReadPiece(ahead, device, 100000), bytes.mid(100080, 100000));
}

void tst_ZrReadAhead::firstBlockIsSmallAgainAfterRestart()
{
    const QByteArray bytes = Noise(1000000);
    Device device(bytes);
    ZrReadAhead ahead;
    for (int i = 0; i < 5000; ++i)
        QVERIFY(ahead.Take(device, 100));
    ahead.Restart();
    QVERIFY(device.seek(777));
    QCOMPARE(ReadPiece(ahead, device, 100), bytes.mid(777, 100));
    QCOMPARE(device.reads.last(), qint64(16384));
}

void tst_ZrReadAhead::nothingMoreThanThere()
{
    Device device(QByteArray(100, 'x'));
    ZrReadAhead ahead;
    QVERIFY(ahead.Take(device, 60));
    QVERIFY(!ahead.Take(device, 41));
    Device again(QByteArray(100, 'x'));
    ZrReadAhead other;
    QCOMPARE(ReadPiece(other, again, 101), QByteArray("failed"));
    Device large(QByteArray(50000, 'x'));
    ZrReadAhead third;
    QCOMPARE(ReadPiece(third, large, 50001), QByteArray("failed"));
    Device closed("x");
    closed.close();
    ZrReadAhead fourth;
    const MessageCatcher warningOfQt;
    QVERIFY(!fourth.Take(closed, 1));
}

void tst_ZrReadAhead::emptyPieceAsksNothing()
{
    Device device("x");
    ZrReadAhead ahead;
    QVERIFY(ahead.Read(device, zr::span<u8>()));
    QCOMPARE(device.reads, QVector<qint64>());
}

void tst_ZrReadAhead::placeholderIsReadAgain()
{
    LogBytes log;
    log.Add(MakeItem(1, "one")).Add(MakeItem(2, "two"));
    const int second = static_cast<int>(log.Start(1));
    Device device(Patched(log.Bytes(), second + 28, QByteArray(8, '\0')));
    ZrReadAhead ahead;
    QVERIFY(ahead.Take(device, static_cast<std::size_t>(second))); // the placeholder is read ahead
    device.content = log.Bytes();
    const u8* const header = TakeHeader(ahead, device, static_cast<u64>(second));
    QVERIFY(header);
    QCOMPARE(
        QByteArray(reinterpret_cast<const char*>(header), 40).toHex(), MakeItem(2, "two").Header().toHex());
    QCOMPARE(ReadPiece(ahead, device, 3), QByteArray("two"));
    QCOMPARE(device.reads.size(), 2);
}

/// An empty item looks like a placeholder and is read again, but not with a block of full size.
void tst_ZrReadAhead::emptyItemsCostSmallReads()
{
    LogBytes log;
    log.Add(MakeItem(1, QByteArray(400000, 'x')))
        .Add(MakeItem(2, ""))
        .Add(MakeItem(3, QByteArray(400000, 'x')));
    Device device(log.Bytes());
    ZrReadAhead ahead;
    for (u64 i = 0; i < log.Start(1); i += 8)
        QVERIFY(ahead.Take(device, 8));
    QCOMPARE(device.reads.last(), qint64(262144));
    QVERIFY(TakeHeader(ahead, device, log.Start(1)));
    QCOMPARE(device.reads.last(), qint64(16384));
    QVERIFY(TakeHeader(ahead, device, log.Start(2)));
}

void tst_ZrReadAhead::headerIsNotPutTogether()
{
    // The first block of 16,384 bytes ends within the second header, whatever stands there then.
    for (int inFirstBlock : {1, 20, 30, 34, 39}) {
        LogBytes log;
        log.Add(MakeItem(1, QByteArray(16384 - 48 - 40 - inFirstBlock, 'x')));
        log.Add(MakeItem(2, "the payload"));
        const int second = static_cast<int>(log.Start(1));
        QCOMPARE(second, 16384 - inFirstBlock);
        Device device(Patched(log.Bytes(), second + 28, QByteArray(8, '\0')));
        ZrReadAhead ahead;
        QVERIFY(ahead.Take(device, static_cast<std::size_t>(second)));
        device.content = log.Bytes();
        const u8* const header = TakeHeader(ahead, device, static_cast<u64>(second));
        QVERIFY(header);
        const QByteArray expected = MakeItem(2, "the payload").Header();
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(header), 40).toHex(), expected.toHex());
        QCOMPARE(ReadPiece(ahead, device, 11), QByteArray("the payload"));
    }
}

void tst_ZrReadAhead::completeHeaderIsTakenFromTheBlock()
{
    LogBytes log;
    log.Add(MakeItem(1, "one")).Add(MakeItem(2, "two"));
    Device device(log.Bytes());
    ZrReadAhead ahead;
    QVERIFY(ahead.Take(device, 48));
    QVERIFY(TakeHeader(ahead, device, 48));
    QCOMPARE(ReadPiece(ahead, device, 3), QByteArray("one"));
    QVERIFY(TakeHeader(ahead, device, log.Start(1)));
    QCOMPARE(ReadPiece(ahead, device, 3), QByteArray("two"));
    QCOMPARE(device.reads.size(), 1);
    QVERIFY(!TakeHeader(ahead, device, log.Size()));
}

QTEST_GUILESS_MAIN(tst_ZrReadAhead)
#include "tst_ZrReadAhead.moc"
