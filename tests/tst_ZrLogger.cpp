// What ZrLogger writes: headers, payloads, counters.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrLogger.h"

#include <QStandardPaths>
#include <QtTest/QtTest>

namespace {

/// Milliseconds of the clock as the log writes them.
double Seconds(qint64 ms)
{
    return ms / 1000.0;
}

/// The single item that a file holds behind its header, its time set to 0 after a look at it.
struct OneItem
{
    QByteArray bytes;
    double time = -1.0;
};

OneItem ReadOneItem(const QString& path)
{
    OneItem one;
    one.bytes = ReadWhole(path).mid(48);
    if (one.bytes.size() >= 40) {
        one.time = DoubleAt(one.bytes, 16);
        one.bytes.replace(16, 8, QByteArray(8, '\0'));
    }
    return one;
}

} // namespace

class tst_ZrLogger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void startsClosedWithDefaults();
    void freshFileHoldsTheHeaderOnly();
    void itemIsWrittenByteForByte();
    void spansAreJoinedInOrder();
    void itemWithoutSpansIsEmpty();
    void compressedItem_data();
    void compressedItem();
    void shortForms_data();
    void shortForms();
    void serialText_data();
    void serialText();
    void itemIsWithTheSystemWhenTheCallReturns();
    void timeIsTheMomentOfWriting();
    void countersFollowTheItems();
    void gatheringBufferIsKept();
    void rawWriteIsNeitherHeadedNorCounted();
    void logDataWhileClosedDoesNothing();
    void encryptionSettingsChangeNothing();

private:
    QString Path(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    /// Runs \p write on a log of its own and returns the one item that it left.
    OneItem Log(const std::function<void(ZrLogger&)>& write)
    {
        ZrLogger log(nullptr);
        log.OpenFile(Path("one.log"));
        write(log);
        log.CloseLog();
        return ReadOneItem(Path("one.log"));
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrLogger::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
}

void tst_ZrLogger::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrLogger::startsClosedWithDefaults()
{
    const ZrLogger log(nullptr);
    QCOMPARE(log.logDir, QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    QCOMPARE(log.LogDir(), log.logDir);
    QCOMPARE(log.ext, QStringLiteral(".log"));
    QCOMPARE(log.prefix, QString());
    QCOMPARE(log.CurFile(), QString());
    QCOMPARE(log.itemCount, 0u);
    QCOMPARE(log.bytesWritten, u64(0));
    QCOMPARE(log.cipherId, u16(0));
    QCOMPARE(log.cipherKey, u64(0));
    QCOMPARE(log.WriteErrors(), u64(0));
    QCOMPARE(log.LogState(), lsClosed);
    QVERIFY(!log.IsActive());

    QObject parent;
    QPointer<ZrLogger> child = new ZrLogger(&parent);
    QCOMPARE(child->parent(), &parent);
}

void tst_ZrLogger::freshFileHoldsTheHeaderOnly()
{
    ZrLogger log(nullptr);
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    log.OpenFile(Path("a.log"));
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    log.CloseLog();

    QByteArray bytes = ReadWhole(Path("a.log"));
    QCOMPARE(bytes.size(), 48);
    QCOMPARE(bytes.left(8).toHex(' '), QByteArray("44 33 22 11 30 00 00 00"));
    QCOMPARE(bytes.mid(8, 16), QByteArray("ZrLogHeaderxxxx", 16));
    QCOMPARE(bytes.mid(24, 16).toHex(), QByteArray("01000000000000000000000000000000"));
    const double created = DoubleAt(bytes, 40);
    QVERIFY(created >= Seconds(before) && created <= Seconds(after));
    QCOMPARE(created, Seconds(qRound64(created * 1000.0))); // whole milliseconds
    QCOMPARE(bytes, FileHeader(created));
}

void tst_ZrLogger::itemIsWrittenByteForByte()
{
    const OneItem one = Log([](ZrLogger& log) {
        log.LogData(CRecType(0x0506, 0x0102), 0x0708, 0x0304, false, {Span("payload")});
    });
    QCOMPARE(one.bytes.toHex(' '),
        QByteArray("dd cc bb aa 28 00 00 00 02 01 04 03 06 05 00 00 00 00 00 00 00 00 00 00 "
                   "00 00 08 07 07 00 00 00 07 00 00 00 00 00 00 00 ")
            + QByteArray("payload").toHex(' '));
}

void tst_ZrLogger::spansAreJoinedInOrder()
{
    Item expected = MakeItem(9, "abcdefgh");
    const OneItem one = Log([](ZrLogger& log) {
        log.LogData(CRecType(0, 9), 0, 0, false, {Span("abc"), zr::span<u8>(), Span("defgh")});
    });
    QCOMPARE(one.bytes.toHex(), expected.Bytes().toHex());
    QCOMPARE(LeAt<quint32>(one.bytes, 28), 8u);
    QCOMPARE(LeAt<quint32>(one.bytes, 32), 8u);
}

void tst_ZrLogger::itemWithoutSpansIsEmpty()
{
    const OneItem one = Log([](ZrLogger& log) { log.LogData(CRecType(1, 9), 3, 4, false, {}); });
    QCOMPARE(one.bytes.size(), 40);
    QCOMPARE(LeAt<quint32>(one.bytes, 28), 0u);
    QCOMPARE(LeAt<quint32>(one.bytes, 32), 0u);
    QCOMPARE(LeAt<quint16>(one.bytes, 24), quint16(0));
}

void tst_ZrLogger::compressedItem_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("one byte") << QByteArray("x");
    QTest::newRow("text") << QByteArray("depth 12.5 depth 12.5 depth 12.5");
    QTest::newRow("zeros") << QByteArray(100000, '\0');
    QByteArray noise(70000, '\0');
    quint32 state = 1;
    for (char& byte : noise) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>(state >> 24);
    }
    QTest::newRow("incompressible") << noise;
}

void tst_ZrLogger::compressedItem()
{
    QFETCH(QByteArray, payload);
    const int half = payload.size() / 2;
    const QByteArray first = payload.left(half);
    const QByteArray second = payload.mid(half);
    const OneItem one = Log([&](ZrLogger& log) {
        log.LogData(CRecType(2, 300), 7, 8, true, {Span(first), Span(QByteArray()), Span(second)});
    });
    const QByteArray stored = one.bytes.mid(40);
    QCOMPARE(LeAt<quint16>(one.bytes, 24), quint16(1));
    QCOMPARE(LeAt<quint32>(one.bytes, 28), static_cast<quint32>(payload.size()));
    QCOMPARE(LeAt<quint32>(one.bytes, 32), static_cast<quint32>(stored.size()));
    QCOMPARE(qFromBigEndian<quint32>(stored.constData()), static_cast<quint32>(payload.size()));
    QCOMPARE(qUncompress(stored), payload);
    QCOMPARE(stored, qCompress(payload, 1));
    Item expected = MakeItem(300, stored, 7);
    expected.sub = 2;
    expected.format = 8;
    expected.compressed = true;
    expected.dataSize = static_cast<quint32>(payload.size());
    QCOMPARE(one.bytes.left(40).toHex(), expected.Header().toHex());
}

void tst_ZrLogger::shortForms_data()
{
    QTest::addColumn<int>("form");
    QTest::addColumn<bool>("compressed");
    QTest::newRow("plain") << 0 << false;
    QTest::newRow("list, plain") << 1 << false;
    QTest::newRow("list, compressed") << 1 << true;
    QTest::newRow("span, plain") << 2 << false;
    QTest::newRow("span, compressed") << 2 << true;
}

void tst_ZrLogger::shortForms()
{
    QFETCH(int, form);
    QFETCH(bool, compressed);
    const auto type = static_cast<eRecordType>(0x8001);
    const OneItem one = Log([&](ZrLogger& log) {
        if (form == 0)
            log.LogData(type, 0x0203, {Span("ab"), Span("c")});
        else if (form == 1)
            log.LogData(type, 0x0203, compressed, {Span("ab"), Span("c")});
        else
            log.LogData(type, 0x0203, compressed, Span("abc"));
    });
    Item expected = MakeItem(0x8001, compressed ? qCompress(QByteArray("abc"), 1) : QByteArray("abc"));
    expected.format = 0x0203;
    expected.compressed = compressed;
    expected.dataSize = 3;
    QCOMPARE(one.bytes.toHex(), expected.Bytes().toHex());
}

void tst_ZrLogger::serialText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("AB") << QStringLiteral("AB") << QByteArray("AB\0", 3);
    QTest::newRow("null") << QString() << QByteArray("\0", 1);
    QTest::newRow("empty") << QStringLiteral("") << QByteArray("\0", 1);
    QTest::newRow("sentence") << QStringLiteral("$GPGGA,1*47\r\n") << QByteArray("$GPGGA,1*47\r\n\0", 14);
    QTest::newRow("Latin-1") << QStringLiteral(u"5\u00B0 \u00E9") << QByteArray("5\xB0 \xE9\0", 5);
    QTest::newRow("outside Latin-1") << QStringLiteral(u"a\u03A9\u4E2Db") << QByteArray("a??b\0", 5);
    QTest::newRow("zero inside") << QString(QLatin1String("a\0b", 3)) << QByteArray("a\0b\0", 4);
}

void tst_ZrLogger::serialText()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, payload);
    const OneItem one = Log([&](ZrLogger& log) { log.LogSerStr(text); });
    QCOMPARE(one.bytes.toHex(), MakeItem(2, payload).Bytes().toHex());
}

void tst_ZrLogger::itemIsWithTheSystemWhenTheCallReturns()
{
    ZrLogger log(nullptr);
    log.OpenFile(Path("a.log"));
    QCOMPARE(ReadWhole(Path("a.log")).size(), 48);
    log.LogData(CRecType(0, 1), 0, 0, false, {Span("abc")});
    QCOMPARE(ReadWhole(Path("a.log")).mid(48 + 32).toHex(), QByteArray("0300000000000000616263"));
    log.LogData(CRecType(0, 1), 0, 0, true, {Span("abc")});
    const QByteArray stored = qCompress(QByteArray("abc"), 1);
    QCOMPARE(ReadWhole(Path("a.log")).mid(48 + 43 + 40), stored);
}

void tst_ZrLogger::timeIsTheMomentOfWriting()
{
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    const OneItem one = Log([](ZrLogger& log) { log.LogSerStr(QStringLiteral("x")); });
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    QVERIFY(one.time >= Seconds(before) && one.time <= Seconds(after));
    QCOMPARE(one.time, Seconds(qRound64(one.time * 1000.0)));
}

void tst_ZrLogger::countersFollowTheItems()
{
    ZrLogger log(nullptr);
    log.OpenFile(Path("a.log"));
    QCOMPARE(log.bytesWritten, u64(48));
    log.LogData(CRecType(0, 1), 0, 0, false, {Span("abc"), Span("de")});
    QCOMPARE(log.itemCount, 1u);
    QCOMPARE(log.bytesWritten, u64(48 + 40 + 5));
    log.LogData(CRecType(0, 1), 0, 0, false, {});
    QCOMPARE(log.bytesWritten, u64(48 + 40 + 5 + 40));
    const QByteArray zeros(5000, '\0');
    log.LogData(CRecType(0, 1), 0, 0, true, {Span(zeros)});
    QCOMPARE(log.itemCount, 3u);
    QCOMPARE(log.bytesWritten, u64(48 + 40 + 5 + 40 + 40) + static_cast<u64>(qCompress(zeros, 1).size()));
    log.CloseLog();
    QCOMPARE(log.itemCount, 3u); // still readable after closing
    QCOMPARE(static_cast<u64>(QFileInfo(Path("a.log")).size()), log.bytesWritten);
}

void tst_ZrLogger::gatheringBufferIsKept()
{
    ZrLogger log(nullptr);
    log.OpenFile(Path("a.log"));
    log.LogData(CRecType(0, 1), 0, 0, true, {Span(QByteArray(10000, 'a'))});
    const std::size_t capacity = log.scratch.capacity();
    QVERIFY(capacity >= 10000);
    log.LogData(CRecType(0, 1), 0, 0, true, {Span("b")});
    QCOMPARE(log.scratch.capacity(), capacity);
    const QByteArray bytes = ReadWhole(Path("a.log"));
    const int second = 48 + 40 + static_cast<int>(LeAt<quint32>(bytes, 48 + 32));
    QCOMPARE(qUncompress(bytes.mid(second + 40)), QByteArray("b")); // nothing is left of the item before
}

void tst_ZrLogger::rawWriteIsNeitherHeadedNorCounted()
{
    ZrLogger log(nullptr);
    char raw[] = {'r', 0, 'w'};
    log.RawWrite(raw, 3);
    QCOMPARE(log.file.isOpen(), false);

    log.OpenFile(Path("a.log"));
    log.RawWrite(raw, 3);
    log.RawWrite(nullptr, 0);
    QCOMPARE(log.itemCount, 0u);
    QCOMPARE(log.bytesWritten, u64(48));
    QCOMPARE(ReadWhole(Path("a.log")).mid(48), QByteArray("r\0w", 3));
    log.LogData(CRecType(0, 1), 0, 0, false, {Span("x")}); // goes behind
    QCOMPARE(ReadWhole(Path("a.log")).size(), 48 + 3 + 41);
    QCOMPARE(LeAt<quint32>(ReadWhole(Path("a.log")), 48 + 3), 0xAABBCCDDu);
    log.CloseLog();
    log.RawWrite(raw, 3);
    QCOMPARE(ReadWhole(Path("a.log")).size(), 48 + 3 + 41);
    QCOMPARE(log.WriteErrors(), u64(0));
}

void tst_ZrLogger::logDataWhileClosedDoesNothing()
{
    ZrLogger log(nullptr);
    log.LogData(CRecType(0, 1), 0, 0, false, {Span("x")});
    log.LogData(rtEvent, 0, {Span("x")});
    log.LogSerStr(QStringLiteral("x"));
    QCOMPARE(log.itemCount, 0u);
    QCOMPARE(log.bytesWritten, u64(0));
    QCOMPARE(m_messages->Take(), QStringList());

    log.OpenFile(Path("a.log"));
    log.LogSerStr(QStringLiteral("x"));
    log.CloseLog();
    m_messages->Take();
    const QByteArray before = ReadWhole(Path("a.log"));
    log.LogData(CRecType(0, 1), 0, 0, true, {Span("x")});
    log.LogSerStr(QStringLiteral("x"));
    QCOMPARE(log.itemCount, 1u);
    QCOMPARE(log.bytesWritten, u64(48 + 42));
    QCOMPARE(ReadWhole(Path("a.log")), before);
    QCOMPARE(m_messages->Take(), QStringList());
}

void tst_ZrLogger::encryptionSettingsChangeNothing()
{
    const OneItem one = Log([](ZrLogger& log) {
        log.SetupEncryption(7, 0x0123456789ABCDEFu);
        log.LogData(CRecType(0, 5), 0, 0, false, {Span("plain")});
    });
    QCOMPARE(one.bytes.toHex(), MakeItem(5, "plain").Bytes().toHex());

    ZrLogger log(nullptr);
    log.SetupEncryption(7, 0x0123456789ABCDEFu);
    log.OpenFile(Path("b.log"));
    log.CloseLog();
    const QByteArray header = ReadWhole(Path("b.log"));
    QCOMPARE(header, FileHeader(DoubleAt(header, 40)));
    QCOMPARE(log.cipherId, u16(7)); // travels with the writer
    QCOMPARE(log.cipherKey, u64(0x0123456789ABCDEFu));
}

QTEST_GUILESS_MAIN(tst_ZrLogger)
#include "tst_ZrLogger.moc"
