#include "RecordedLog.h"
#include "RecordingSessionFixture.h"
#include "SmallFiles.h"
#include "ZrKit/geo/ZrPositionText.h"
#include "ZrKit/recording/ZrFileSource.h"
#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrKit/recording/ZrUdpSource.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QPointer>
#include <QProcess>
#include <QRandomGenerator>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QUdpSocket>
#include <QtTest>

#include <atomic>
#include <cstdio>
#include <vector>

namespace {

QStringList LogsIn(const QString& path)
{
    const QDir dir(path);
    QStringList paths;
    for (const QString& name : dir.entryList({QStringLiteral("*.log")}, QDir::Files, QDir::Name))
        paths += dir.filePath(name);
    return paths;
}

using recording_session::FakeSource;
using recording_session::Nav;
using recording_session::RunOn;

} // namespace

class tst_ZrRecordingSession : public QObject, private recording_session::Session
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void cleanup() { End(); }

    void liveWithoutRecording();
    void recordsWhatComes();
    void plansAndStateComeFirst();
    void planIsMadeOnItsThread();
    void cannotStart();
    void startsOnce();
    void stopsBeforeTheDiskIsFull();
    void bytesOfTheSource();
    void splits();
    void measuresSpace();
    void sourceCannotBeHad();
    void sourceEnds();
    void anotherSourceWhileRecording();
    void slowScreenGetsOneBatch();
    void udp();
    void file();
    void troublesAreTold();
    void lossesAreTold();
    void lossWhileOpening();
    void lossOfTheSourceBefore();
    void endsWithTheSession();
    void survivesKill();
};

void tst_ZrRecordingSession::liveWithoutRecording()
{
    Open();
    QCOMPARE(m_session->SourceText(), QStringLiteral("fake"));
    std::vector<QPointF> trail;
    connect(m_session.get(), &ZrRecordingSession::Updated, m_session.get(),
        [&trail](const ZrRecordingNews& news) {
            trail.insert(trail.end(), news.trail.begin(), news.trail.end());
        });
    GiveLine(fixLine);
    QTRY_COMPARE(trail.size(), std::size_t(1));
    QVERIFY(std::fabs(trail[0].y() - 48.4789) < 1e-6);
    QCOMPARE(m_session->State().fix.Age(m_session->Now()), 0.0);
    QVERIFY(m_session->State().fix.IsFresh(m_session->Now()));
    m_now = 1005.5;
    QVERIFY(!m_session->State().fix.IsFresh(m_session->Now()));
    QCOMPARE(m_session->News().lineCount, u64(1));
    QCOMPARE(m_session->News().recordCount, u64(1));
    QCOMPARE(m_session->News().lines, QByteArrayList{fixLine});
    GiveLine("rubbish");
    QTRY_COMPARE(m_session->News().damagedLines, u64(1));
    QVERIFY(!m_session->IsRecording());
    QVERIFY(LogsIn(m_dir->path()).isEmpty());
}

void tst_ZrRecordingSession::recordsWhatComes()
{
    Open();
    const QString file = Record();
    QVERIFY(!file.isEmpty());
    GiveLine(fixLine);
    GiveLine("rubbish");
    Give(zr::rec_type(krtNavigation), 5000.25, Nav(50.0));
    Stop();
    GiveLine(fixLine);
    const std::vector<Item> items = ReadLog(file);
    QCOMPARE(items.size(), std::size_t(4));
    QCOMPARE(items[0].payload, fixLine + QByteArray(1, '\0'));
    QVERIFY(items[1].inf == zr::rec_type(krtFix));
    QCOMPARE(items[2].payload, QByteArray("rubbish\0", 8));
    QCOMPARE(items[3].payload, Nav(50.0));
    QCOMPARE(items[3].inf.time, 5000.25);
    QCOMPARE(m_session->Status().items, u64(4));
    QCOMPARE(m_session->Status().damagedLines, u64(1));
    QCOMPARE(m_session->Status().bytes, u64(QFileInfo(file).size()));
    QVERIFY(!m_session->News().isRecording);
}

/// A long plan takes its time, and the caller does not wait; what is stopped meanwhile ends all the same.
void tst_ZrRecordingSession::planIsMadeOnItsThread()
{
    const QTemporaryDir dir;
    ZrRecordingSession session;
    ZrRecorder::Options options;
    options.dir = dir.path();
    options.stopBelow = 0;
    options.plan = "none of this";
    QSemaphore mayGoOn;
    std::atomic<QThread*> maker{nullptr};
    const auto make = [&] {
        maker = QThread::currentThread();
        mayGoOn.acquire();
        return QByteArray("made");
    };
    session.Start(options, make);
    QCOMPARE(session.Recording(), ZrRecordingSession::recordingStarting);
    QTRY_VERIFY(maker.load());
    QVERIFY(maker.load() != thread());
    QCOMPARE(session.Recording(), ZrRecordingSession::recordingStarting);
    mayGoOn.release();
    QTRY_COMPARE(session.Recording(), ZrRecordingSession::recordingOn);
    session.Stop();
    QTRY_COMPARE(session.Recording(), ZrRecordingSession::recordingOff);
    QCOMPARE(ReadLog(session.Status().file).front().payload, QByteArray("made"));

    session.Start(options, make);
    session.Stop();
    mayGoOn.release();
    QTRY_COMPARE(session.Recording(), ZrRecordingSession::recordingOff);
    QCOMPARE(ReadLog(session.Status().file).front().payload, QByteArray("made"));
}

void tst_ZrRecordingSession::plansAndStateComeFirst()
{
    Open();
    GiveLine(fixLine);
    ZrRecorder::Options options = Options();
    options.plan = "plan";
    m_session->Start(options);
    QTRY_COMPARE(m_session->Recording(), ZrRecordingSession::recordingOn);
    const QString file = m_session->Status().file;
    Stop();
    const std::vector<Item> items = ReadLog(file);
    QCOMPARE(items.size(), std::size_t(3));
    QVERIFY(items[0].inf == CRecType(rtMissionPlan));
    QCOMPARE(items[0].payload, QByteArray("plan"));
    QVERIFY(items[1].inf == CRecType(rtSerialText));
    QVERIFY(items[2].inf == zr::rec_type(krtFix));
}

void tst_ZrRecordingSession::cannotStart()
{
    QSignalSpy failed(m_session.get(), &ZrRecordingSession::Failed);
    ZrRecorder::Options options = Options();
    options.dir = QStringLiteral("/proc/none");
    m_session->Start(options);
    QVERIFY(m_session->IsRecording());
    QTRY_COMPARE(failed.size(), 1);
    QVERIFY(failed[0][0].toString().contains(QStringLiteral("/proc/none")));
    QVERIFY(!m_session->IsRecording());
    QCOMPARE(m_session->Failure(), ZrRecorder::failureCreate);
    m_free = 999;
    m_session->Start(Options());
    QTRY_COMPARE(failed.size(), 2);
    QVERIFY(failed[1][0].toString().startsWith(QStringLiteral("Only ")));
    QCOMPARE(m_session->Failure(), ZrRecorder::failureSpace);
    QVERIFY(LogsIn(m_dir->path()).isEmpty());
}

void tst_ZrRecordingSession::startsOnce()
{
    QSignalSpy changed(m_session.get(), &ZrRecordingSession::RecordingChanged);
    m_session->Start(Options());
    m_session->Start(Options());
    m_session->Stop();
    m_session->Stop();
    m_session->Start(Options());
    QTRY_COMPARE(m_session->Recording(), ZrRecordingSession::recordingOff);
    QCOMPARE(LogsIn(m_dir->path()).size(), 1);
    QCOMPARE(changed.size(), 3); // starting, stopping, off
    QVERIFY(!Record().isEmpty());
    Stop();
    QCOMPARE(LogsIn(m_dir->path()).size(), 2);
}

void tst_ZrRecordingSession::stopsBeforeTheDiskIsFull()
{
    Open();
    QSignalSpy failed(m_session.get(), &ZrRecordingSession::Failed);
    const QString file = Record();
    GiveLine(fixLine);
    m_free = 999;
    QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 1, 30000);
    QVERIFY(failed[0][0].toString().contains(QStringLiteral("before the disk is full")));
    QCOMPARE(m_session->Recording(), ZrRecordingSession::recordingOff);
    GiveLine(fixLine);
    std::vector<Item> items = ReadLog(file);
    QCOMPARE(items.size(), std::size_t(3));
    ZrLogEvt event;
    event.Load(items.back().payload);
    QCOMPARE(event.text, failed[0][0].toString());
    // What is live goes on.
    m_now = 2000.0;
    GiveLine(fixLine);
    QTRY_COMPARE(m_session->State().fix.at, 2000.0);
}

/// What a recording would take is known without one: exactly what it takes then.
void tst_ZrRecordingSession::bytesOfTheSource()
{
    Open();
    GiveLine("no sentence");
    QTRY_VERIFY(m_session->News().byteCount > 0);
    const u64 before = m_session->News().byteCount;
    const QString file = Record();
    const qint64 head = QFileInfo(file).size();
    GiveLine(fixLine);
    Give(zr::rec_type(krtFix), 5.0, QByteArray(100, 'x'));
    GiveLine("no sentence");
    QTRY_COMPARE(m_session->News().byteCount - before, u64(QFileInfo(file).size() - head));
    Stop();
    m_session->Close();
    QTRY_COMPARE(m_session->News().byteCount, u64(0));
}

void tst_ZrRecordingSession::splits()
{
    Open();
    ZrRecorder::Options options = Options();
    options.splitBytes = 2000;
    options.plan = "plan";
    m_session->Start(options);
    QTRY_COMPARE(m_session->Recording(), ZrRecordingSession::recordingOn);
    for (int i = 0; i < 50; ++i)
        Give(zr::rec_type(krtFix), i, QByteArray(100, 'x'));
    Stop();
    QVERIFY(LogsIn(m_dir->path()).size() > 3);
    QCOMPARE(m_session->Status().part, LogsIn(m_dir->path()).size());
    for (const QString& file : LogsIn(m_dir->path()))
        QCOMPARE(ReadLog(file).front().payload, QByteArray("plan"));
}

void tst_ZrRecordingSession::measuresSpace()
{
    QSignalSpy measured(m_session.get(), &ZrRecordingSession::SpaceMeasured);
    m_session->MeasureSpace(m_dir->path());
    m_session->MeasureSpace(m_dir->filePath(QStringLiteral("not/made/yet")));
    m_session->MeasureSpace(QString());
    QTRY_COMPARE(measured.size(), 3);
    QVERIFY(measured[0][0].toLongLong() > 0);
    QVERIFY(measured[1][0].toLongLong() > 0);
}

void tst_ZrRecordingSession::sourceCannotBeHad()
{
    m_session->Open([] { return new FakeSource(QStringLiteral("no such port")); });
    QCOMPARE(m_session->Source(), ZrRecordingSession::sourceOpening);
    QTRY_COMPARE(m_session->Source(), ZrRecordingSession::sourceFailed);
    QCOMPARE(m_session->SourceText(), QStringLiteral("no such port"));
    m_session->Open([]() -> ZrLineSource* { return nullptr; });
    QTRY_COMPARE(m_session->Source(), ZrRecordingSession::sourceNone);
    m_session->Close();
    QTRY_COMPARE(m_session->Source(), ZrRecordingSession::sourceNone);
}

void tst_ZrRecordingSession::sourceEnds()
{
    Open();
    QVERIFY(!Record().isEmpty());
    Pull([](FakeSource& source) { Q_EMIT source.Finished(); });
    QTRY_COMPARE(m_session->Source(), ZrRecordingSession::sourceFinished);
    QVERIFY(m_session->IsRecording());
    QVERIFY(m_session->AddEvent(QStringLiteral("still here")));
}

void tst_ZrRecordingSession::anotherSourceWhileRecording()
{
    Open();
    const QString file = Record();
    Give(zr::rec_type(krtNavigation), 1.0, Nav(50.0));
    QTRY_VERIFY(m_session->State().latitude.IsKnown());
    const u64 first = m_session->News().source;
    Open();
    QTRY_VERIFY(m_session->News().source > first);
    QVERIFY(!m_session->State().latitude.IsKnown());
    Give(zr::rec_type(krtNavigation), 2.0, Nav(51.0));
    Stop();
    QCOMPARE(ReadLog(file).size(), std::size_t(2));
    QCOMPARE(m_session->State().latitude.value, 51.0);
}

void tst_ZrRecordingSession::slowScreenGetsOneBatch()
{
    Open();
    QTRY_VERIFY(m_session->News().source > 0);
    std::vector<QPointF> trail;
    std::vector<ZrLivePing> pings;
    int batches = 0;
    connect(m_session.get(), &ZrRecordingSession::Updated, m_session.get(), [&](const ZrRecordingNews& news) {
        ++batches;
        trail.insert(trail.end(), news.trail.begin(), news.trail.end());
        pings.insert(pings.end(), news.pings.begin(), news.pings.end());
    });
    ZrPingRecord ping;
    ping.samples = QByteArray(64, 'x');
    // This thread does not look at its events meanwhile.
    for (u32 i = 0; i < 500; ++i) {
        Give(zr::rec_type(krtNavigation), i, Nav(50.0 + i * 1e-5));
        ping.pingNumber = i;
        Give(zr::rec_type(krtPing, i % 2), i, ping.Encode());
    }
    QCOMPARE(batches, 0);
    QTRY_COMPARE(trail.size(), std::size_t(500));
    QCOMPARE(pings.size(), std::size_t(500));
    QCOMPARE(pings[499].ping.pingNumber, u32(499));
    // One that waited, and one that came when it was taken.
    QVERIFY2(batches <= 3, qPrintable(QString::number(batches)));
    QCOMPARE(m_session->News().lostPings, u64(0));
}

void tst_ZrRecordingSession::udp()
{
    std::atomic<ZrUdpSource*> source{nullptr};
    std::atomic<ZrCallQueue*> calls{nullptr};
    m_session->Open([&source, &calls] {
        auto* made = new ZrUdpSource(0, nullptr);
        calls = new ZrCallQueue(made);
        source = made;
        return made;
    });
    QTRY_COMPARE(m_session->Source(), ZrRecordingSession::sourceOpen);
    u16 port = 0;
    RunOn(*calls, [&] { port = source.load()->Port(); });
    const QString file = Record();
    QUdpSocket sender;
    sender.writeDatagram(
        fixLine + "\r\nrubbish\r\n" + QByteArray(5000, 'x') + "\r\n", QHostAddress::LocalHost, port);
    QTRY_COMPARE(m_session->News().lineCount, u64(2));
    QTRY_COMPARE(m_session->News().droppedLines, u64(1));
    QCOMPARE(m_session->News().damagedLines, u64(1));
    Stop();
    QCOMPARE(ReadLog(file).size(), std::size_t(3));
}

void tst_ZrRecordingSession::file()
{
    const QString path = m_dir->filePath(QStringLiteral("boat.nmea"));
    QFile text(path);
    QVERIFY(text.open(QIODevice::WriteOnly));
    for (int i = 0; i < 100; ++i)
        text.write(fixLine + "\r\n");
    text.write(QByteArray(5000, 'x') + '\n');
    text.close();
    const QString file = Record();
    m_session->Open([path] { return new ZrFileSource(path, 0.0, nullptr); });
    QTRY_COMPARE(m_session->Source(), ZrRecordingSession::sourceFinished);
    QTRY_COMPARE(m_session->News().lineCount, u64(100));
    QCOMPARE(m_session->News().droppedLines, u64(1));
    Stop();
    QCOMPARE(ReadLog(file).size(), std::size_t(200));
}

void tst_ZrRecordingSession::troublesAreTold()
{
    Open();
    QSignalSpy troubles(m_session.get(), &ZrRecordingSession::Trouble);
    Pull([](FakeSource& source) { Q_EMIT source.Trouble(QStringLiteral("cable pulled")); });
    QTRY_COMPARE(troubles.size(), 1);
    QCOMPARE(troubles[0][0].toString(), QStringLiteral("cable pulled"));
}

void tst_ZrRecordingSession::lossesAreTold()
{
    Open();
    QSignalSpy lost(m_session.get(), &ZrRecordingSession::SourceLost);
    QSignalSpy back(m_session.get(), &ZrRecordingSession::SourceBack);
    QSignalSpy troubles(m_session.get(), &ZrRecordingSession::Trouble);
    Pull([](FakeSource& source) { source.TellLost(QStringLiteral("cable: pulled; or so")); });
    QTRY_COMPARE(troubles.size(), 1);
    QCOMPARE(lost.size(), 1);
    QCOMPARE(lost[0][0].toString(), QStringLiteral("cable: pulled; or so"));
    QCOMPARE(back.size(), 0);
    Pull([](FakeSource& source) { source.TellBack(); });
    QTRY_COMPARE(troubles.size(), 2);
    QCOMPARE(back.size(), 1);
    QCOMPARE(lost.size(), 1);
    // Other troubles are no loss.
    Pull([](FakeSource& source) { Q_EMIT source.Trouble(QStringLiteral("fake: hot; still there")); });
    QTRY_COMPARE(troubles.size(), 3);
    QCOMPARE(lost.size() + back.size(), 2);
}

/// A port that is not there yet is one that is tried again.
void tst_ZrRecordingSession::lossWhileOpening()
{
    QSignalSpy lost(m_session.get(), &ZrRecordingSession::SourceLost);
    m_session->Open([] {
        auto* source = new FakeSource(QString());
        source->m_lostAtStart = QStringLiteral("no such port");
        return source;
    });
    QTRY_COMPARE(m_session->Source(), ZrRecordingSession::sourceOpen);
    QCOMPARE(lost.size(), 1);
    QCOMPARE(lost[0][0].toString(), QStringLiteral("no such port"));
}

void tst_ZrRecordingSession::lossOfTheSourceBefore()
{
    Open();
    QSignalSpy lost(m_session.get(), &ZrRecordingSession::SourceLost);
    QSignalSpy back(m_session.get(), &ZrRecordingSession::SourceBack);
    QSemaphore go;
    m_source.load()->m_calls.Give([&go, source = m_source.load()] {
        go.acquire();
        source->TellLost(QStringLiteral("pulled"));
        source->TellBack();
    });
    m_session->Open([] { return new FakeSource(QString()); });
    go.release();
    QTRY_COMPARE(m_session->Source(), ZrRecordingSession::sourceOpen);
    QCOMPARE(lost.size() + back.size(), 0);
}

void tst_ZrRecordingSession::endsWithTheSession()
{
    Open();
    const QString file = Record();
    GiveLine(fixLine);
    m_session->AddEvent(QStringLiteral("last"));
    m_session.reset();
    QCOMPARE(ReadLog(file).size(), std::size_t(3));
}

namespace {

/// Numbers records as fast as they are taken, and says each number behind it.
class NumberSource : public ZrLineSource
{
public:
    NumberSource()
        : ZrLineSource(nullptr)
    {
    }

    bool Start(QString* /*error*/) override
    {
        auto* timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, [this] {
            for (int i = 0; i < 20; ++i) {
                const QByteArray number = QByteArray::number(m_next++);
                Q_EMIT Record(CRecType(0, 200), 1, m_next, number + QByteArray(500, 'x'));
                std::puts(number.constData());
                std::fflush(stdout);
            }
        });
        timer->start(0);
        return true;
    }

    QString Name() const override { return QStringLiteral("numbers"); }

private:
    int m_next = 0;
};

/// Records until it is killed.
int RecordForEver(const QString& dir)
{
    ZrRecordingSession session;
    ZrRecorder::Options options;
    options.dir = dir;
    options.stopBelow = options.warnBelow = 0;
    options.splitBytes = 64 * 1024;
    options.plan = "plan";
    QObject::connect(&session, &ZrRecordingSession::RecordingChanged, [&session] {
        if (session.Recording() == ZrRecordingSession::recordingOn)
            session.Open([] { return new NumberSource; });
    });
    session.Start(options);
    return QCoreApplication::exec();
}

} // namespace

void tst_ZrRecordingSession::survivesKill()
{
    for (int round = 0; round < 8; ++round) {
        const QTemporaryDir dir;
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--record"), dir.path()});
        QByteArray output;
        const int wanted = QRandomGenerator::global()->bounded(1, 600);
        while (output.count('\n') < wanted && child.waitForReadyRead(30000))
            output += child.readAllStandardOutput();
        child.kill();
        QVERIFY(child.waitForFinished());
        output += child.readAllStandardOutput();
        const int told = output.left(output.lastIndexOf('\n')).split('\n').constLast().trimmed().toInt();
        QVERIFY2(output.count('\n') >= wanted, output.right(200).constData());

        int next = 0;
        const QStringList files = LogsIn(dir.path());
        for (const QString& file : files) {
            const std::vector<Item> items = ReadLog(file);
            if (items.empty() && file == files.constLast())
                continue; // killed before the head
            QCOMPARE(items.front().payload, QByteArray("plan"));
            for (std::size_t i = 1; i < items.size(); ++i) {
                const QByteArray expected = QByteArray::number(next++) + QByteArray(500, 'x');
                QCOMPARE(items[i].payload, expected);
            }
        }
        QVERIFY2(next > told, qPrintable(QStringLiteral("%1 of %2").arg(next).arg(told)));
    }
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--record") == 0)
        return RecordForEver(QString::fromLocal8Bit(argv[2]));
    tst_ZrRecordingSession test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ZrRecordingSession.moc"
