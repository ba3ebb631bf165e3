#include "ZrKit/review/ZrUnpack.h"
#include "ZrLogFixture.h"

namespace {

ZrLogItem Header(u32 dataSize, const QByteArray& stored, bool compressed)
{
    ZrLogItem item;
    item.dataSize = dataSize;
    item.storedSize = static_cast<u32>(stored.size());
    item.compressed = compressed ? 1 : 0;
    return item;
}

QByteArray BigEndian(quint32 value)
{
    const quint32 swapped = qToBigEndian(value);
    return QByteArray(reinterpret_cast<const char*>(&swapped), 4);
}

/// The refusal of a compressed payload; "taken" when it was accepted.
QString Refusal(u32 dataSize, const QByteArray& stored)
{
    QByteArray data("untouched");
    QString error;
    MessageCatcher quiet; // qUncompress warns
    if (zr::unpack_payload(Header(dataSize, stored, true), Span(stored), &data, &error))
        return QStringLiteral("taken");
    return data == "untouched" ? error : QStringLiteral("data was touched: ") + error;
}

} // namespace

class tst_ZrUnpack : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void plainPayloadStaysAsItIs();
    void compressedPayloadComesBack_data();
    void compressedPayloadComesBack();
    void bestCompressionIsBelieved();
    void shortPayloadsAreRefused();
    void announcedSizeMustAgreeWithTheHeader();
    void absurdSizeIsRefusedBeforeAnythingIsAllocated();
    void damagedStreamIsRefused();
    void streamOfAnotherLengthIsRefused();
    void everyCutIsRefused();
    void startOfAPayload_data();
    void startOfAPayload();
    void startThatCannotBeHad();
    void damageBehindTheStartIsNotNoticed();
};

void tst_ZrUnpack::plainPayloadStaysAsItIs()
{
    for (const QByteArray& stored : {QByteArray(""), QByteArray("abc\0def", 7)}) {
        QByteArray data("before");
        QString error;
        QVERIFY(zr::unpack_payload(
            Header(static_cast<u32>(stored.size()), stored, false), Span(stored), &data, &error));
        QCOMPARE(data, stored);
        QCOMPARE(error, QString());
    }
}

void tst_ZrUnpack::compressedPayloadComesBack_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("one byte") << QByteArray("x");
    QTest::newRow("zero bytes") << QByteArray(1000, '\0');
    QTest::newRow("text") << QByteArray("$GPGLL,4828.734,N,06830.882,W,201358,A,A*51");
    QTest::newRow("large") << QByteArray(5000000, 'L');
}

void tst_ZrUnpack::compressedPayloadComesBack()
{
    QFETCH(QByteArray, data);
    const QByteArray stored = qCompress(data, 1);
    QByteArray unpacked("before");
    QString error;
    const ZrLogItem item = Header(static_cast<u32>(data.size()), stored, true);
    QVERIFY2(zr::unpack_payload(item, Span(stored), &unpacked, &error), qPrintable(error));
    QCOMPARE(unpacked, data);
}

void tst_ZrUnpack::bestCompressionIsBelieved()
{
    // Level 9 on one repeated byte comes within a percent of the limit of the method.
    const QByteArray data(100000000, 'x');
    const QByteArray stored = qCompress(data, 9);
    QVERIFY(data.size() / stored.size() > 1000);
    QCOMPARE(Refusal(static_cast<u32>(data.size()), stored), QStringLiteral("taken"));
}

void tst_ZrUnpack::shortPayloadsAreRefused()
{
    for (int size = 0; size < 4; ++size) {
        QCOMPARE(Refusal(0, QByteArray(size, '\0')),
            QStringLiteral("The compressed payload is shorter than its length field"));
    }
}

void tst_ZrUnpack::announcedSizeMustAgreeWithTheHeader()
{
    const QByteArray stored = qCompress(QByteArray(500, 'x'), 1);
    QCOMPARE(Refusal(499, stored),
        QStringLiteral("The compressed payload announces 500 bytes, the item header 499"));
}

void tst_ZrUnpack::absurdSizeIsRefusedBeforeAnythingIsAllocated()
{
    const QByteArray stream = qCompress(QByteArray(500, 'x'), 1).mid(4);
    const u64 held = static_cast<u64>(stream.size());
    QCOMPARE(Refusal(0x7FFFFFFF, BigEndian(0x7FFFFFFF) + stream),
        QStringLiteral("The compressed payload announces 2147483647 bytes, more than its %1 bytes can hold")
            .arg(held + 4));
    QCOMPARE(Refusal(0xFFFFFFFF, BigEndian(0xFFFFFFFF) + stream),
        QStringLiteral("The payload is larger than 2 GiB"));
    // The limit itself is refused by the stream alone, one more by the ratio.
    const u32 limit = static_cast<u32>(held * 1032);
    QCOMPARE(Refusal(limit, BigEndian(limit) + stream), QStringLiteral("The compressed payload is damaged"));
    QVERIFY(Refusal(limit + 1, BigEndian(limit + 1) + stream).contains(QStringLiteral("can hold")));
    QVERIFY(Refusal(1, BigEndian(1)).contains(QStringLiteral("can hold")));
}

void tst_ZrUnpack::damagedStreamIsRefused()
{
    QByteArray data;
    for (int i = 0; i < 300; ++i)
        data += static_cast<char>(i * 7);
    const QByteArray stored = qCompress(data, 1);
    int taken = 0;
    for (int offset = 4; offset < stored.size(); ++offset) {
        const QString refusal = Refusal(300, Flipped(stored, offset, 0xFF));
        if (refusal == QStringLiteral("taken"))
            ++taken;
        else
            QCOMPARE(refusal, QStringLiteral("The compressed payload is damaged"));
    }
    // The checksum at the end of the stream sees every change.
    QCOMPARE(taken, 0);
}

void tst_ZrUnpack::streamOfAnotherLengthIsRefused()
{
    const QByteArray stream = qCompress(QByteArray(500, 'x'), 1).mid(4);
    for (const u32 announced : {1u, 499u, 501u, 1000u})
        QCOMPARE(Refusal(announced, BigEndian(announced) + stream),
            QStringLiteral("The compressed payload is damaged"));
}

void tst_ZrUnpack::everyCutIsRefused()
{
    const QByteArray stored = qCompress(QByteArray("The quick brown fox jumps over the lazy dog"), 1);
    for (int size = 0; size < stored.size(); ++size)
        QVERIFY2(
            Refusal(43, stored.left(size)) != QStringLiteral("taken"), qPrintable(QString::number(size)));
    QCOMPARE(Refusal(43, stored), QStringLiteral("taken"));
}

void tst_ZrUnpack::startOfAPayload_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("count");
    QByteArray noise;
    for (int i = 0; i < 5000; ++i)
        noise += static_cast<char>(i * i % 251);
    QTest::newRow("fields of much") << noise << 24;
    QTest::newRow("fields of more") << QByteArray(5000000, 'L') << 24;
    QTest::newRow("exactly all") << noise.left(24) << 24;
    QTest::newRow("less than asked for") << noise.left(5) << 24;
    QTest::newRow("of nothing") << QByteArray("") << 24;
    QTest::newRow("nothing of much") << noise << 0;
    QTest::newRow("much of much") << noise << 4999;
}

void tst_ZrUnpack::startOfAPayload()
{
    QFETCH(QByteArray, data);
    QFETCH(int, count);
    for (const bool compressed : {false, true}) {
        for (const int level : {1, 9}) {
            const QByteArray stored = compressed ? qCompress(data, level) : data;
            const ZrLogItem item = Header(static_cast<u32>(data.size()), stored, compressed);
            const QByteArray at = stored.left(count + 1000);
            QByteArray start("before");
            QString error;
            QVERIFY2(
                zr::unpack_start(item, Span(at), static_cast<u32>(count), &start, &error), qPrintable(error));
            QCOMPARE(start, data.left(count));
            QCOMPARE(error, QString());
        }
    }
}

void tst_ZrUnpack::startThatCannotBeHad()
{
    const auto refusal = [](const ZrLogItem& item, const QByteArray& at) {
        QByteArray data("untouched");
        QString error;
        if (zr::unpack_start(item, Span(at), 24, &data, &error))
            return QStringLiteral("taken");
        return data == "untouched" ? error : QStringLiteral("data was touched: ") + error;
    };
    QByteArray data;
    for (int i = 0; i < 300; ++i)
        data += static_cast<char>(i * i % 251);
    const QByteArray stored = qCompress(data, 1);
    const QString tooShort = QStringLiteral("The start of the payload is too short");
    const QString damaged = QStringLiteral("The compressed payload is damaged");
    QCOMPARE(refusal(Header(300, stored, true), stored.left(3)), tooShort);
    QCOMPARE(refusal(Header(300, stored.left(3), true), stored), tooShort);
    QCOMPARE(refusal(Header(300, data, false), data.left(23)), tooShort);
    QCOMPARE(refusal(Header(300, stored, true), stored.left(4)), damaged);
    QCOMPARE(refusal(Header(300, stored, true), stored.left(20)), damaged);
    QCOMPARE(refusal(Header(300, stored, true), stored.left(4) + QByteArray(200, '\xFF')), damaged);
    QCOMPARE(refusal(Header(299, stored, true), stored),
        QStringLiteral("The compressed payload announces 300 bytes, the item header 299"));
    const QByteArray absurd = BigEndian(0x7FFFFFFE) + stored.mid(4);
    QVERIFY(refusal(Header(0x7FFFFFFE, absurd, true), absurd).contains(QStringLiteral("can hold")));
    QCOMPARE(refusal(Header(0x80000000, stored, true), stored),
        QStringLiteral("The payload is larger than 2 GiB"));
    // The stream ends before the announced size is reached.
    const QByteArray small = BigEndian(24) + qCompress(data.left(10), 1).mid(4);
    QCOMPARE(refusal(Header(24, small, true), small), damaged);
}

void tst_ZrUnpack::damageBehindTheStartIsNotNoticed()
{
    QByteArray data;
    for (int i = 0; i < 5000; ++i)
        data += static_cast<char>(i * i % 251 + i / 7);
    QByteArray stored = qCompress(data, 1);
    stored.chop(10);
    QByteArray start;
    QString error;
    QVERIFY(zr::unpack_start(Header(5000, stored, true), Span(stored), 24, &start, &error));
    QCOMPARE(start, data.left(24));
}

QTEST_GUILESS_MAIN(tst_ZrUnpack)
#include "tst_ZrUnpack.moc"
