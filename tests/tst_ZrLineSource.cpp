#include "MarkTranslator.h"
#include "ZrKit/recording/ZrFileSource.h"
#include "ZrKit/recording/ZrLineSource.h"
#include "ZrKit/recording/ZrLineSplitter.h"
#include "ZrKit/recording/ZrLogSource.h"
#include "ZrKit/recording/ZrStdinSource.h"
#include "ZrKit/recording/ZrTcpSource.h"
#include "ZrKit/recording/ZrUdpSource.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUdpSocket>
#include <QtTest>

#include <memory>

namespace {

QByteArrayList Lines(const QSignalSpy& spy)
{
    QByteArrayList lines;
    for (const QList<QVariant>& call : spy)
        lines += call.at(0).toByteArray();
    return lines;
}

QString WriteFile(const QTemporaryDir& dir, const QByteArray& bytes)
{
    QFile file(dir.filePath(QStringLiteral("lines.txt")));
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return file.fileName();
}

/// Its cable is in the hands of the test.
class CableSource : public ZrLineSource
{
public:
    using ZrLineSource::TellBack;
    using ZrLineSource::TellLost;

    CableSource()
        : ZrLineSource(nullptr)
    {
    }

    bool Start(QString* /*error*/) override { return true; }

    QString Name() const override { return QStringLiteral("cable"); }
};

} // namespace

class tst_ZrLineSource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitterTakesEveryLineEnd();
    void splitterIsIndifferentToPieces();
    void splitterDropsLinesWithoutEnd();
    void udpDatagramsEndLines();
    void udpPortInUseIsRefused();
    void tcpDeliversAndReconnects();
    void tcpTellsTroubleOnce();
    void fileWithoutWaiting();
    void filePacedByItsTimes();
    void fileJumpsOverLongGapsAndBackwardSteps();
    void missingFileIsRefused();
    void lossIsToldOnce();
    void textsAreTranslated();
};

void tst_ZrLineSource::splitterTakesEveryLineEnd()
{
    ZrLineSplitter splitter;
    QCOMPARE(splitter.Feed("a\r\nb\nc\rd\n\r\n\ne"), QByteArrayList({"a", "b", "c", "d"}));
    QCOMPARE(splitter.Rest(), QByteArray("e"));
    QCOMPARE(splitter.Rest(), QByteArray());
}

void tst_ZrLineSource::splitterIsIndifferentToPieces()
{
    const QByteArray stream = "first\r\nsecond\r\nthird with \xE9\r\n";
    ZrLineSplitter whole;
    const QByteArrayList expected = whole.Feed(stream);
    ZrLineSplitter pieces;
    QByteArrayList lines;
    for (int i = 0; i < stream.size(); ++i)
        lines += pieces.Feed(stream.mid(i, 1));
    QCOMPARE(lines, expected);
    QCOMPARE(expected.size(), 3);
}

void tst_ZrLineSource::splitterDropsLinesWithoutEnd()
{
    ZrLineSplitter splitter;
    const QByteArray longest(ZrLineSplitter::MaxLine, 'x');
    QCOMPARE(splitter.Feed(longest + "\n"), QByteArrayList({longest}));
    QCOMPARE(splitter.Dropped(), u64(0));
    QCOMPARE(splitter.Feed(QByteArray(3 * ZrLineSplitter::MaxLine, 'y')), QByteArrayList());
    QCOMPARE(splitter.Feed("yy\nshort\n"), QByteArrayList({"short"}));
    QCOMPARE(splitter.Dropped(), u64(1));
}

void tst_ZrLineSource::udpDatagramsEndLines()
{
    ZrUdpSource source(0, nullptr);
    QString error;
    QVERIFY2(source.Start(&error), qPrintable(error));
    QVERIFY(source.Port() != 0);
    QCOMPARE(source.Name(), QStringLiteral("UDP port %1").arg(source.Port()));
    QSignalSpy lines(&source, &ZrLineSource::Line);
    QUdpSocket sender;
    sender.writeDatagram("one\r\ntwo", QHostAddress::LocalHost, source.Port());
    sender.writeDatagram("three\r\n", QHostAddress::LocalHost, source.Port());
    QTRY_COMPARE(lines.size(), 3);
    QCOMPARE(Lines(lines), QByteArrayList({"one", "two", "three"}));
}

void tst_ZrLineSource::udpPortInUseIsRefused()
{
    QUdpSocket taken;
    QVERIFY(taken.bind(QHostAddress::Any, 0, QAbstractSocket::DontShareAddress));
    ZrUdpSource source(taken.localPort(), nullptr);
    QString error;
    QVERIFY(!source.Start(&error));
    QVERIFY2(error.startsWith(QStringLiteral("Cannot listen on UDP port %1: ").arg(taken.localPort())),
        qPrintable(error));
}

void tst_ZrLineSource::tcpDeliversAndReconnects()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    ZrTcpSource source(QStringLiteral("127.0.0.1"), server.serverPort(), nullptr);
    QSignalSpy lost(&source, &ZrLineSource::Lost);
    QSignalSpy back(&source, &ZrLineSource::Back);
    QSignalSpy lines(&source, &ZrLineSource::Line);
    QSignalSpy trouble(&source, &ZrLineSource::Trouble);
    QString error;
    QVERIFY(source.Start(&error));

    QTRY_VERIFY(server.hasPendingConnections());
    std::unique_ptr<QTcpSocket> peer(server.nextPendingConnection());
    peer->write("first\r\nrest without end");
    QTRY_COMPARE(lines.size(), 1);
    peer->disconnectFromHost();
    QTRY_COMPARE(Lines(lines), QByteArrayList({"first", "rest without end"}));
    QTRY_COMPARE(trouble.size(), 1);
    QCOMPARE(lost.size(), 1);
    QVERIFY(!lost[0][0].toString().isEmpty());
    QCOMPARE(trouble[0][0].toString(),
        QStringLiteral("%1: %2; trying again").arg(source.Name(), lost[0][0].toString()));
    QCOMPARE(back.size(), 0);

    QTRY_VERIFY_WITH_TIMEOUT(server.hasPendingConnections(), 4 * ZrTcpSource::RetryMs);
    std::unique_ptr<QTcpSocket> again(server.nextPendingConnection());
    again->write("second\n");
    QTRY_COMPARE(Lines(lines).last(), QByteArray("second"));
    QCOMPARE(trouble.last().at(0).toString(), source.Name() + QStringLiteral(": connected"));
    QCOMPARE(back.size(), 1);
    QCOMPARE(lost.size(), 1);
}

void tst_ZrLineSource::tcpTellsTroubleOnce()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const u16 port = server.serverPort();
    server.close();
    ZrTcpSource source(QStringLiteral("127.0.0.1"), port, nullptr);
    QSignalSpy trouble(&source, &ZrLineSource::Trouble);
    QSignalSpy finished(&source, &ZrLineSource::Finished);
    QString error;
    QVERIFY(source.Start(&error));
    QTRY_COMPARE(trouble.size(), 1);
    QVERIFY(trouble.first().at(0).toString().endsWith(QStringLiteral("trying again")));
    QTest::qWait(ZrTcpSource::RetryMs + 500);
    QCOMPARE(trouble.size(), 1);
    QCOMPARE(finished.size(), 0);
}

void tst_ZrLineSource::fileWithoutWaiting()
{
    const QTemporaryDir dir;
    QByteArray bytes;
    QByteArrayList expected;
    for (int i = 0; i < 5000; ++i) {
        expected += "line " + QByteArray::number(i);
        bytes += expected.last() + "\r\n";
    }
    ZrFileSource source(WriteFile(dir, bytes + "last"), 0.0, nullptr);
    QSignalSpy lines(&source, &ZrLineSource::Line);
    QSignalSpy finished(&source, &ZrLineSource::Finished);
    QString error;
    QVERIFY(source.Start(&error));
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(Lines(lines), expected + QByteArrayList({"last"}));
}

void tst_ZrLineSource::filePacedByItsTimes()
{
    const QTemporaryDir dir;
    ZrFileSource source(WriteFile(dir,
                            "$GPZDA,120000.00,01,02,2020,00,00\n$GPZDA,120002.00,01,02,2020,00,00\n"
                            "$GPZDA,120004.00,01,02,2020,00,00\n"),
        10.0, nullptr);
    QSignalSpy lines(&source, &ZrLineSource::Line);
    QSignalSpy finished(&source, &ZrLineSource::Finished);
    QString error;
    QElapsedTimer clock;
    clock.start();
    QVERIFY(source.Start(&error));
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(lines.size(), 3);
    // Four seconds of data at ten times the pace; how much later depends on the machine.
    QVERIFY2(clock.elapsed() >= 390, qPrintable(QString::number(clock.elapsed())));
}

void tst_ZrLineSource::fileJumpsOverLongGapsAndBackwardSteps()
{
    const QTemporaryDir dir;
    ZrFileSource source(WriteFile(dir,
                            "$GPZDA,120000.00,01,02,2020,00,00\n$GPZDA,140000.00,01,02,2020,00,00\n"
                            "$GPZDA,130000.00,01,02,2020,00,00\n"),
        1.0, nullptr);
    QSignalSpy finished(&source, &ZrLineSource::Finished);
    QString error;
    QVERIFY(source.Start(&error));
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 10000);
}

void tst_ZrLineSource::missingFileIsRefused()
{
    const QTemporaryDir dir;
    ZrFileSource source(dir.filePath(QStringLiteral("none.txt")), 1.0, nullptr);
    QString error;
    QVERIFY(!source.Start(&error));
    QVERIFY2(error.startsWith(QStringLiteral("Cannot read ")), qPrintable(error));
}

void tst_ZrLineSource::lossIsToldOnce()
{
    CableSource source;
    QSignalSpy trouble(&source, &ZrLineSource::Trouble);
    QSignalSpy lost(&source, &ZrLineSource::Lost);
    QSignalSpy back(&source, &ZrLineSource::Back);
    source.TellBack(); // was never away
    QCOMPARE(trouble.size() + back.size(), 0);
    // Whatever the reason says.
    source.TellLost(QStringLiteral("connected: no; pulled"));
    source.TellLost(QStringLiteral("again"));
    QCOMPARE(lost.size(), 1);
    QCOMPARE(lost[0][0].toString(), QStringLiteral("connected: no; pulled"));
    QCOMPARE(trouble.size(), 1);
    source.TellBack();
    source.TellBack();
    QCOMPARE(back.size(), 1);
    QCOMPARE(trouble.size(), 2);
    source.TellLost(QStringLiteral("again"));
    QCOMPARE(lost.size(), 2);
}

void tst_ZrLineSource::textsAreTranslated()
{
    const MarkTranslator marks;
    QCOMPARE(ZrFileSource(QStringLiteral("a.txt"), 1.0, nullptr).Name(), QStringLiteral("<file a.txt>"));
    QCOMPARE(ZrLogSource(QStringLiteral("a.log"), 1.0, nullptr).Name(), QStringLiteral("<log a.log>"));
    CableSource source;
    QSignalSpy trouble(&source, &ZrLineSource::Trouble);
    source.TellLost(QStringLiteral("pulled"));
    source.TellBack();
    QCOMPARE(trouble[0][0].toString(), QStringLiteral("<cable: pulled; trying again>"));
    QCOMPARE(trouble[1][0].toString(), QStringLiteral("<cable: connected>"));
}

QTEST_GUILESS_MAIN(tst_ZrLineSource)
#include "tst_ZrLineSource.moc"
