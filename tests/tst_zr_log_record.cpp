// `zr log record` as a person runs it: every source, every way to end, every refusal.

#include "RecordedLog.h"
#include "ZrKit/records/ZrFixRecord.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUdpSocket>
#include <QtTest>

#include <csignal>
#include <memory>
#include <vector>

namespace {

constexpr int patience = 30000; // ms

/// The tool in the middle of a recording.
class Recording
{
public:
    explicit Recording(const QStringList& arguments)
    {
        m_process.start(QStringLiteral(ZR_BIN_DIR "/zr"),
            QStringList({QStringLiteral("log"), QStringLiteral("record")}) + arguments);
        m_process.waitForStarted(patience);
    }

    ~Recording()
    {
        m_process.kill();
        m_process.waitForFinished(patience);
    }

    /// Waits until the tool says that it records.
    bool Begun()
    {
        while (!Messages().contains("Recording ")) {
            if (!m_process.waitForReadyRead(patience))
                return false;
        }
        return true;
    }

    const QByteArray& Messages()
    {
        m_process.setReadChannel(QProcess::StandardError);
        m_messages += m_process.readAllStandardError();
        return m_messages;
    }

    void Feed(const QByteArray& bytes)
    {
        m_process.write(bytes);
        m_process.waitForBytesWritten(patience);
    }

    void EndInput() { m_process.closeWriteChannel(); }

    void Signal(int number) { ::kill(static_cast<pid_t>(m_process.processId()), number); }

    /// The exit code; -1 when the process crashed or did not end.
    int Finish()
    {
        if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(patience))
            return -1;
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

    QJsonObject Json() { return QJsonDocument::fromJson(m_process.readAllStandardOutput()).object(); }

    QByteArray Output() { return m_process.readAllStandardOutput(); }

private:
    QProcess m_process;
    QByteArray m_messages;
};

QStringList LogsIn(const QTemporaryDir& dir)
{
    return QDir(dir.path()).entryList(QDir::Files);
}

/// Waits until the only log in \p dir has \p bytes.
bool WaitForSize(const QTemporaryDir& dir, qint64 bytes)
{
    return QTest::qWaitFor(
        [&] {
            const QStringList logs = LogsIn(dir);
            return logs.size() == 1 && QFileInfo(dir.filePath(logs.first())).size() >= bytes;
        },
        patience);
}

u16 FreeUdpPort()
{
    QUdpSocket probe;
    probe.bind(QHostAddress(QHostAddress::Any), 0);
    return probe.localPort();
}

} // namespace

class tst_zr_log_record : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standardInput();
    void textResult();
    void signalsEndCleanly_data();
    void signalsEndCleanly();
    void killedProcessLosesNoLine();
    void udp();
    void tcp();
    void replayedFile();
    void stopsWhenTheDiskIsNearlyFull_data();
    void stopsWhenTheDiskIsNearlyFull();
    void unitsAreTold();
    void refusals_data();
    void refusals();
    void takenPortLeavesNoLog();
};

void tst_zr_log_record::standardInput()
{
    const QTemporaryDir dir;
    Recording recording({dir.path(), QStringLiteral("--stdin"), QStringLiteral("--json"),
        QStringLiteral("--prefix"), QStringLiteral("dïve"), QStringLiteral("--source"), QStringLiteral("9")});
    recording.Feed(fixLine + "\r\nhello\n" + fixLine);
    recording.EndInput();
    QCOMPARE(recording.Finish(), 0);
    const QJsonObject result = recording.Json();
    const QString path = result.value(QStringLiteral("path")).toString();
    QVERIFY2(QFileInfo(path).fileName().startsWith(QStringLiteral("dïve_")), qPrintable(path));
    QCOMPARE(result.value(QStringLiteral("items")).toInt(), 5);
    QCOMPARE(result.value(QStringLiteral("lines")).toInt(), 3);
    QCOMPARE(result.value(QStringLiteral("damaged_lines")).toInt(), 1);
    QCOMPARE(result.value(QStringLiteral("dropped_lines")).toInt(), 0);
    QCOMPARE(result.value(QStringLiteral("fixes")).toInt(), 2);
    QCOMPARE(result.value(QStringLiteral("reason")).toString(), QStringLiteral("end of input"));
    QCOMPARE(result.value(QStringLiteral("bytes")).toDouble(), double(QFileInfo(path).size()));

    const std::vector<Item> items = ReadLog(path);
    QCOMPARE(items.size(), std::size_t(5));
    QCOMPARE(items[0].payload, fixLine + QByteArray(1, '\0'));
    QCOMPARE(items[1].inf.type, u16(krtFix));
    QCOMPARE(items[2].payload, QByteArray("hello\0", 6));
    for (const Item& item : items)
        QCOMPARE(item.inf.source, u16(9));
}

void tst_zr_log_record::textResult()
{
    const QTemporaryDir dir;
    Recording recording({dir.path(), QStringLiteral("--stdin")});
    recording.Feed("one\n" + QByteArray(5000, 'x') + "\n");
    recording.EndInput();
    QCOMPARE(recording.Finish(), 0);
    const QByteArray text = recording.Output();
    QVERIFY2(text.contains("Lines       1 (1 no sound NMEA sentence, 1 too long and dropped)\n"), text);
    QVERIFY2(text.contains("Ended by    end of input\n"), text);
}

void tst_zr_log_record::signalsEndCleanly_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("terminate") << SIGTERM;
}

void tst_zr_log_record::signalsEndCleanly()
{
    QFETCH(int, number);
    const QTemporaryDir dir;
    Recording recording({dir.path(), QStringLiteral("--stdin"), QStringLiteral("--json")});
    QVERIFY(recording.Begun());
    recording.Feed(fixLine + "\n");
    QVERIFY(WaitForSize(dir, 48 + 40 + fixLine.size() + 1 + 40 + ZrFixRecord::Size));
    recording.Signal(number);
    QCOMPARE(recording.Finish(), 0);
    const QJsonObject result = recording.Json();
    QCOMPARE(result.value(QStringLiteral("reason")).toString(), QStringLiteral("signal"));
    QCOMPARE(ReadLog(result.value(QStringLiteral("path")).toString()).size(), std::size_t(2));
}

void tst_zr_log_record::killedProcessLosesNoLine()
{
    const QTemporaryDir dir;
    Recording recording({dir.path(), QStringLiteral("--stdin")});
    QVERIFY(recording.Begun());
    recording.Feed("first\nsecond\n");
    QVERIFY(WaitForSize(dir, 48 + 40 + 6 + 40 + 7));
    recording.Signal(SIGKILL);
    QCOMPARE(recording.Finish(), -1);
    const std::vector<Item> items = ReadLog(dir.filePath(LogsIn(dir).first()));
    QCOMPARE(items.size(), std::size_t(2));
    QCOMPARE(items[1].payload, QByteArray("second\0", 7));
}

void tst_zr_log_record::udp()
{
    const QTemporaryDir dir;
    const u16 port = FreeUdpPort();
    Recording recording({dir.path(), QStringLiteral("--udp"), QString::number(port)});
    QVERIFY(recording.Begun());
    QVERIFY2(recording.Messages().contains("UDP port " + QByteArray::number(port)), recording.Messages());
    QUdpSocket sender;
    sender.writeDatagram("datagram", QHostAddress::LocalHost, port);
    QVERIFY(WaitForSize(dir, 48 + 40 + 9));
    recording.Signal(SIGINT);
    QCOMPARE(recording.Finish(), 0);
    QCOMPARE(ReadLog(dir.filePath(LogsIn(dir).first())).at(0).payload, QByteArray("datagram\0", 9));
}

void tst_zr_log_record::tcp()
{
    const QTemporaryDir dir;
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    Recording recording(
        {dir.path(), QStringLiteral("--tcp"), QStringLiteral("127.0.0.1:%1").arg(server.serverPort())});
    QVERIFY(server.waitForNewConnection(patience));
    const std::unique_ptr<QTcpSocket> peer(server.nextPendingConnection());
    peer->write("from the server\n");
    QVERIFY(peer->waitForBytesWritten(patience));
    QVERIFY(WaitForSize(dir, 48 + 40 + 16));
    recording.Signal(SIGTERM);
    QCOMPARE(recording.Finish(), 0);
}

void tst_zr_log_record::replayedFile()
{
    const QTemporaryDir dir;
    const QTemporaryDir input;
    QFile file(input.filePath(QStringLiteral("boat.nmea")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    for (int i = 0; i < 50; ++i)
        file.write(fixLine + "\r\n");
    file.close();
    Recording recording({dir.path(), QStringLiteral("--nmea-file"), file.fileName(),
        QStringLiteral("--speed"), QStringLiteral("0"), QStringLiteral("--json")});
    QCOMPARE(recording.Finish(), 0);
    const QJsonObject result = recording.Json();
    QCOMPARE(result.value(QStringLiteral("fixes")).toInt(), 50);
    QCOMPARE(ReadLog(result.value(QStringLiteral("path")).toString()).size(), std::size_t(100));
}

/// More than any volume of a test machine has free; told as it was given.
void tst_zr_log_record::stopsWhenTheDiskIsNearlyFull_data()
{
    QTest::addColumn<QString>("least");
    QTest::addColumn<QByteArray>("told");
    QTest::newRow("megabytes") << QStringLiteral("1e9") << QByteArray("1000 TB");
    QTest::newRow("a unit") << QStringLiteral("900TB") << QByteArray("900 TB");
    QTest::newRow("in 1024s") << QStringLiteral("800TiB") << QByteArray("880 TB");
    QTest::newRow("with a blank, small letters") << QStringLiteral("900000 gb") << QByteArray("900 TB");
    QTest::newRow("bytes") << QStringLiteral("9e14B") << QByteArray("900 TB");
}

void tst_zr_log_record::stopsWhenTheDiskIsNearlyFull()
{
    QFETCH(QString, least);
    QFETCH(QByteArray, told);
    const QTemporaryDir dir;
    Recording recording({dir.path(), QStringLiteral("--stdin"), QStringLiteral("--min-free"), least});
    QCOMPARE(recording.Finish(), 3);
    QVERIFY2(recording.Messages().contains("recording needs at least " + told), recording.Messages());
    QCOMPARE(LogsIn(dir), QStringList());
}

void tst_zr_log_record::unitsAreTold()
{
    const QTemporaryDir dir;
    Recording help({QStringLiteral("--help")});
    QCOMPARE(help.Finish(), 0);
    const QByteArray text = help.Output();
    QVERIFY2(text.contains("less than M MB are free (100)"), text);
    QVERIFY2(text.contains("a million bytes, given and told"), text);
    Recording recording(
        {dir.path(), QStringLiteral("--stdin"), QStringLiteral("--min-free"), QStringLiteral("0")});
    recording.Feed(QByteArray(1955, 'x') + "\n");
    recording.EndInput();
    QCOMPARE(recording.Finish(), 0);
    const QByteArray result = recording.Output();
    QVERIFY2(result.contains("Size        2.04 kB (2044 bytes)\n"), result);
}

void tst_zr_log_record::refusals_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("message");
    const QString dir = QDir::tempPath();
    QTest::newRow("no source") << QStringList({dir}) << 1 << QByteArray();
    QTest::newRow("two sources") << QStringList(
        {dir, QStringLiteral("--stdin"), QStringLiteral("--udp"), QStringLiteral("1234")})
                                 << 1 << QByteArray();
    QTest::newRow("no folder") << QStringList({QStringLiteral("--stdin")}) << 1 << QByteArray("DIR");
    QTest::newRow("port out of range")
        << QStringList({dir, QStringLiteral("--udp"), QStringLiteral("65536")}) << 1 << QByteArray("--udp");
    QTest::newRow("no port") << QStringList({dir, QStringLiteral("--tcp"), QStringLiteral("host")}) << 1
                             << QByteArray("host is not HOST:PORT");
    QTest::newRow("port 0") << QStringList({dir, QStringLiteral("--tcp"), QStringLiteral("host:0")}) << 1
                            << QByteArray("host:0 is not HOST:PORT");
    QTest::newRow("speed without file")
        << QStringList({dir, QStringLiteral("--stdin"), QStringLiteral("--speed"), QStringLiteral("2")}) << 1
        << QByteArray("--nmea-file");
    for (const char* least : {"-1", "1e10", "1001TB", "2 XB", "MB", "nan", "1  GB", "1GBB", "0x10MB", ""}) {
        QTest::addRow("least free space \"%s\"", least) << QStringList(
            {dir, QStringLiteral("--stdin"), QStringLiteral("--min-free"), QLatin1String(least)})
                                                        << 1 << QByteArray("--min-free");
    }
    QTest::newRow("missing file") << QStringList(
        {dir, QStringLiteral("--nmea-file"), QStringLiteral("/nonexistent/boat.nmea")})
                                  << 2 << QByteArray("Cannot read /nonexistent/boat.nmea");
    QTest::newRow("folder is a file")
        << QStringList({QStringLiteral(ZR_BIN_DIR "/zr"), QStringLiteral("--stdin")}) << 3
        << QByteArray("is not a folder");
}

void tst_zr_log_record::refusals()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QByteArray, message);
    Recording recording(arguments);
    QCOMPARE(recording.Finish(), code);
    QVERIFY2(recording.Messages().contains(message), recording.Messages());
    QVERIFY(!recording.Messages().isEmpty());
}

void tst_zr_log_record::takenPortLeavesNoLog()
{
    const QTemporaryDir dir;
    QUdpSocket taken;
    QVERIFY(taken.bind(QHostAddress::Any, 0, QAbstractSocket::DontShareAddress));
    Recording recording({dir.path(), QStringLiteral("--udp"), QString::number(taken.localPort())});
    QCOMPARE(recording.Finish(), 2);
    QVERIFY2(recording.Messages().contains("Cannot listen on UDP port"), recording.Messages());
    QCOMPARE(LogsIn(dir), QStringList());
}

QTEST_GUILESS_MAIN(tst_zr_log_record)
#include "tst_zr_log_record.moc"
