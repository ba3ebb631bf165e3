// docs/file-formats.md promises bytes: its worked example and its table of payload sizes are held against the
// code.

#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrEnvRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/records/ZrVehicleRecord.h"
#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrPlayer.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

class tst_FileFormatsDoc : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void workedExampleIsWhatTheWriterWrites();
    void workedExamplePlays();
    void payloadSizes_data();
    void payloadSizes();

private:
    QString m_text;
    QByteArray m_example;
};

void tst_FileFormatsDoc::initTestCase()
{
    QFile file(QStringLiteral(ZR_SOURCE_DIR "/docs/file-formats.md"));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    m_text = QString::fromUtf8(file.readAll());
    static const QRegularExpression line(
        QStringLiteral("^[0-9a-f]{8}  ((?:[0-9a-f]{2} ?)+)$"), QRegularExpression::MultilineOption);
    for (auto found = line.globalMatch(m_text); found.hasNext();)
        m_example += QByteArray::fromHex(found.next().captured(1).toLatin1());
    QCOMPARE(m_example.size(), 48 + 40 + 3);
}

void tst_FileFormatsDoc::workedExampleIsWhatTheWriterWrites()
{
    ZrLogHeader header;
    header.created = 1614780309.0;
    ZrLogItem item;
    item.type = 2;
    item.time = 1614780310.5;
    item.dataSize = item.storedSize = 3;
    const auto headerBytes = header.Encode();
    const auto itemBytes = item.Encode();
    const QByteArray expected = zr::to_byte_array(zr::bytes_of(headerBytes.data(), headerBytes.size()))
        + zr::to_byte_array(zr::bytes_of(itemBytes.data(), itemBytes.size())) + QByteArray("AB\0", 3);
    QCOMPARE(m_example.toHex(), expected.toHex());
}

void tst_FileFormatsDoc::workedExamplePlays()
{
    const QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("example.log")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(m_example), qint64(m_example.size()));
    file.close();

    QByteArray payload;
    double time = 0.0;
    ZrPlayer player;
    connect(&player, &ZrPlayer::NewPayload, this, [&](const ZrLogItemInf& inf, zr::span<u8> bytes) {
        payload = zr::to_byte_array(bytes);
        time = inf.time;
    });
    QVERIFY(player.OpenFile(file.fileName()));
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(payload, QByteArray("AB\0", 3));
    QCOMPARE(time, 1614780310.5);
    QVERIFY(!player.ReadNextItem(true));
    QCOMPARE(player.pos, player.fileSize);
}

void tst_FileFormatsDoc::payloadSizes_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("size");
    QTest::newRow("navigation") << int(ZrNavRecord::RecType) << int(ZrNavRecord().Encode().size());
    QTest::newRow("ping") << int(ZrPingRecord::RecType) << int(ZrPingRecord().Encode().size());
    QTest::newRow("fix") << int(ZrFixRecord::RecType) << int(ZrFixRecord().Encode().size());
    QTest::newRow("depth") << int(ZrDepthRecord::RecType) << int(ZrDepthRecord().Encode().size());
    QTest::newRow("motion") << int(ZrMotionRecord::RecType) << int(ZrMotionRecord().Encode().size());
    QTest::newRow("environment") << int(ZrEnvRecord::RecType) << int(ZrEnvRecord().Encode().size());
    QTest::newRow("vehicle") << int(ZrVehicleRecord::RecType) << int(ZrVehicleRecord().Encode().size());
}

void tst_FileFormatsDoc::payloadSizes()
{
    QFETCH(int, type);
    QFETCH(int, size);
    const QRegularExpression row(
        QStringLiteral("^\\| %1 \\|[^|]*\\| (\\d+) bytes").arg(type), QRegularExpression::MultilineOption);
    const auto found = row.match(m_text);
    QVERIFY2(found.hasMatch(), qPrintable(row.pattern()));
    QCOMPARE(found.captured(1).toInt(), size);
}

QTEST_GUILESS_MAIN(tst_FileFormatsDoc)
#include "tst_FileFormatsDoc.moc"
