// Plays the hand-written logs of tests/data/logs and compares what happens with the text beside each.

#include "ZrLogFixture.h"

#include <QDir>
#include <QtTest/QtTest>

namespace {

const QString folder = QStringLiteral(ZR_SOURCE_DIR "/tests/data/logs/");

} // namespace

class tst_ZrLogCorpus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void playsAsWritten_data();
    void playsAsWritten();
    void compressedPayloadUnpacks();
};

void tst_ZrLogCorpus::playsAsWritten_data()
{
    QTest::addColumn<QString>("name");
    const QStringList files = QDir(folder).entryList({QStringLiteral("*.hex")}, QDir::Files, QDir::Name);
    QVERIFY(files.size() >= 6);
    for (const QString& file : files)
        QTest::newRow(qPrintable(file)) << QFileInfo(file).completeBaseName();
}

void tst_ZrLogCorpus::playsAsWritten()
{
    QFETCH(QString, name);
    QTemporaryDir dir;
    const QString path = dir.filePath(name);
    QVERIFY(WriteWhole(path, FromHex(ReadWhole(folder + name + QStringLiteral(".hex")))));
    MessageCatcher messages;
    ZrPlayer player;
    SignalLog signalLog(player, &messages);
    const bool opened = player.OpenFile(path);
    signalLog.lines << (opened ? QStringLiteral("open true") : QStringLiteral("open false"));
    while (player.ReadNextItem(false)) { }
    signalLog.lines << QStringLiteral("end at %1").arg(player.pos);

    const QString text = QString::fromUtf8(ReadWhole(folder + name + QStringLiteral(".txt")));
    QCOMPARE(signalLog.Take().join(QLatin1Char('\n')) + QLatin1Char('\n'), text);
}

void tst_ZrLogCorpus::compressedPayloadUnpacks()
{
    const QByteArray bytes = FromHex(ReadWhole(folder + QStringLiteral("items.hex")));
    QCOMPARE(bytes.size(), 234);
    QCOMPARE(qUncompress(bytes.mid(176, 18)), QByteArray("abc"));
}

QTEST_GUILESS_MAIN(tst_ZrLogCorpus)
#include "tst_ZrLogCorpus.moc"
