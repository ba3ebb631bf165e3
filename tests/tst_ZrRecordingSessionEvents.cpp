// The events of a recording session: their times and positions, and that none is lost.

#include "RecordedLog.h"
#include "RecordingSessionFixture.h"
#include "SmallFiles.h"
#include "ZrKit/geo/ZrPositionText.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QtTest>

#include <limits>
#include <vector>

namespace {

using recording_session::FakeSource;
using recording_session::Nav;

} // namespace

class tst_ZrRecordingSessionEvents : public QObject, private recording_session::Session
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void cleanup() { End(); }

    void eventsHaveTimeAndPosition();
    void eventsOfASourceWithItsOwnTime();
    void eventsWithoutPosition();
    void eventsNeedARecording();
    void eventsBeforeTheLog();
    void eventsAtThePaceOfTheSource_data();
    void eventsAtThePaceOfTheSource();
    void eventsBeforeALogThatCannotBe();
    void eventsThatNoLogTakes();
    void sentencesWithoutRecordsAreData_data();
    void sentencesWithoutRecordsAreData();
};

void tst_ZrRecordingSessionEvents::eventsHaveTimeAndPosition()
{
    Open();
    GiveLine(fixLine);
    QTRY_VERIFY(m_session->State().latitude.IsKnown());
    const QString file = Record();
    const double before = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
    QVERIFY(m_session->AddEvent(QStringLiteral("Wrack \u00fcber 3 m")));
    Stop();
    const double after = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
    std::vector<Item> items = ReadLog(file);
    QVERIFY(items.back().inf == CRecType(rtEvent));
    ZrLogEvt event;
    event.Load(items.back().payload);
    QCOMPARE(event.text, QStringLiteral("Wrack \u00fcber 3 m"));
    QCOMPARE(event.src, esUser);
    QVERIFY(!event.uid.isNull());
    QVERIFY(event.time >= before && event.time <= after);
    QCOMPARE(items.back().inf.time, event.time);
    ZrPositionText position;
    QVERIFY2(ZrPositionText::Parse(event.detail, position), qPrintable(event.detail));
    QVERIFY(std::fabs(position.lat - 48.4789) < 1e-6);
    QVERIFY(std::fabs(position.lng + 68.5147) < 1e-6);
}

void tst_ZrRecordingSessionEvents::eventsOfASourceWithItsOwnTime()
{
    Open();
    const QString file = Record();
    Give(zr::rec_type(krtNavigation), 7000.5, Nav(50.0));
    QVERIFY(m_session->AddEvent(QStringLiteral("Target")));
    Stop();
    std::vector<Item> items = ReadLog(file);
    QCOMPARE(items.size(), std::size_t(2));
    QCOMPARE(items[1].inf.time, 7000.5);
    ZrLogEvt event;
    event.Load(items[1].payload);
    QCOMPARE(event.time, 7000.5);
}

void tst_ZrRecordingSessionEvents::eventsWithoutPosition()
{
    Open();
    GiveLine(fixLine);
    QTRY_VERIFY(m_session->State().latitude.IsKnown());
    const QString file = Record();
    m_now = 1060.0; // the position is a minute old
    QVERIFY(m_session->AddEvent(QStringLiteral("Target")));
    Stop();
    std::vector<Item> items = ReadLog(file);
    ZrLogEvt event;
    event.Load(items.back().payload);
    QCOMPARE(event.detail, QString());
}

void tst_ZrRecordingSessionEvents::eventsNeedARecording()
{
    Open();
    QVERIFY(!m_session->AddEvent(QStringLiteral("Target")));
    QVERIFY(!Record().isEmpty());
    QVERIFY(!m_session->AddEvent(QStringLiteral("  ")));
    Stop();
    QVERIFY(!m_session->AddEvent(QStringLiteral("Target")));
}

/// Given while the plan is made: they have the times at which they were given, of the source's clock.
void tst_ZrRecordingSessionEvents::eventsBeforeTheLog()
{
    Open();
    Give(zr::rec_type(krtNavigation), 7000.5, Nav(50.0));
    QTRY_VERIFY(m_session->State().latitude.IsKnown());
    const auto mayGoOn = std::make_shared<QSemaphore>();
    QSemaphoreReleaser whenThisFails(*mayGoOn);
    m_session->Start(Options(), [mayGoOn] {
        mayGoOn->acquire();
        return QByteArray("plan");
    });
    QCOMPARE(m_session->Recording(), ZrRecordingSession::recordingStarting);
    QVERIFY(!m_session->AddEvent(QStringLiteral(" ")));
    m_now = 1002.0;
    QVERIFY(m_session->AddEvent(QStringLiteral("first")));
    m_now = 1003.5;
    QVERIFY(m_session->AddEvent(QStringLiteral("second")));
    // What the source tells meanwhile waits as well.
    m_source.load()->m_calls.Give([source = m_source.load()] {
        Q_EMIT source->Record(zr::rec_type(krtNavigation), 1, 7004.0, Nav(51.0));
    });
    m_now = 1010.0;
    mayGoOn->release();
    QTRY_COMPARE(m_session->Recording(), ZrRecordingSession::recordingOn);
    QVERIFY(m_session->AddEvent(QStringLiteral("third")));
    Stop();
    QStringList texts;
    std::vector<double> times;
    std::vector<Item> items = ReadLog(m_session->Status().file);
    for (Item& item : items) {
        if (!(item.inf == CRecType(rtEvent)))
            continue;
        ZrLogEvt event;
        event.Load(item.payload);
        texts += event.text;
        times.push_back(event.time);
    }
    QCOMPARE(
        texts, QStringList({QStringLiteral("first"), QStringLiteral("second"), QStringLiteral("third")}));
    QCOMPARE(times, (std::vector<double>{7002.5, 7004.0, 7004.0}));
}

void tst_ZrRecordingSessionEvents::eventsAtThePaceOfTheSource_data()
{
    QTest::addColumn<double>("speed");
    QTest::addColumn<double>("mostAhead");
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("second");
    constexpr double inf = std::numeric_limits<double>::infinity();
    QTest::newRow("faster") << 20.0 << inf << 7040.5 << 7060.5;
    QTest::newRow("faster, up to its room") << 20.0 << 50.0 << 7040.5 << 7050.5;
    QTest::newRow("slower") << 0.5 << inf << 7001.5 << 7002.0;
    QTest::newRow("held") << 0.0 << inf << 7000.5 << 7000.5;
}

/// They lie where the vehicle was when they were given.
void tst_ZrRecordingSessionEvents::eventsAtThePaceOfTheSource()
{
    QFETCH(double, speed);
    QFETCH(double, mostAhead);
    QFETCH(double, first);
    QFETCH(double, second);
    Open();
    Pull([&](FakeSource& source) { source.m_pace = {speed, mostAhead}; });
    Give(zr::rec_type(krtNavigation), 7000.5, Nav(50.0));
    QTRY_VERIFY(m_session->State().latitude.IsKnown());
    const auto mayGoOn = std::make_shared<QSemaphore>();
    QSemaphoreReleaser whenThisFails(*mayGoOn);
    m_session->Start(Options(), [mayGoOn] {
        mayGoOn->acquire();
        return QByteArray();
    });
    m_now = 1002.0;
    QVERIFY(m_session->AddEvent(QStringLiteral("first")));
    m_now = 1003.0;
    QVERIFY(m_session->AddEvent(QStringLiteral("second")));
    mayGoOn->release();
    QTRY_COMPARE(m_session->Recording(), ZrRecordingSession::recordingOn);
    Stop();
    std::vector<double> times;
    for (const Item& item : ReadLog(m_session->Status().file)) {
        if (item.inf == CRecType(rtEvent))
            times.push_back(item.inf.time);
    }
    QCOMPARE(times, (std::vector<double>{first, second}));
}

void tst_ZrRecordingSessionEvents::eventsBeforeALogThatCannotBe()
{
    std::vector<ZrLogEvt> lost;
    connect(
        m_session.get(), &ZrRecordingSession::EventsLost, this, [&lost](const std::vector<ZrLogEvt>& events) {
            lost.insert(lost.end(), events.begin(), events.end());
        });
    ZrRecorder::Options options = Options();
    options.dir = QStringLiteral("/proc/none");
    m_session->Start(options);
    const double before = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
    QVERIFY(m_session->AddEvent(QStringLiteral("Target")));
    QTRY_COMPARE(lost.size(), std::size_t(1));
    QCOMPARE(lost[0].text, QStringLiteral("Target"));
    QVERIFY(lost[0].time >= before);
    QCOMPARE(m_session->Recording(), ZrRecordingSession::recordingOff);
}

/// The disk fails: events that were accepted meanwhile are handed back.
void tst_ZrRecordingSessionEvents::eventsThatNoLogTakes()
{
    Open();
    QSignalSpy failed(m_session.get(), &ZrRecordingSession::Failed);
    std::vector<ZrLogEvt> lost;
    connect(
        m_session.get(), &ZrRecordingSession::EventsLost, this, [&lost](const std::vector<ZrLogEvt>& events) {
            lost.insert(lost.end(), events.begin(), events.end());
        });
    const QString file = Record();
    QVERIFY(m_session->AddEvent(QStringLiteral("there")));
    GiveLine("before");
    std::vector<Item> items = ReadLog(file);
    QCOMPARE(items.size(), std::size_t(2));
    {
        const SmallFiles limit(QFileInfo(file).size() + 20);
        QVERIFY(m_session->AddEvent(QStringLiteral("first")));
        QVERIFY(m_session->AddEvent(QStringLiteral("second")));
        QTRY_COMPARE(failed.size(), 1);
        QTRY_COMPARE(lost.size(), std::size_t(2));
    }
    QCOMPARE(m_session->Failure(), ZrRecorder::failureWrite);
    QCOMPARE(lost[0].text, QStringLiteral("first"));
    QCOMPARE(lost[1].text, QStringLiteral("second"));
    QVERIFY(lost[0].time > 1.7e9 && !lost[0].uid.isNull());
    QVERIFY(m_session->News().lostEvents.empty()); // told once
    QCOMPARE(ReadLog(file).size(), std::size_t(2));
    // The next one begins without a failure.
    QVERIFY(!Record().isEmpty());
    QCOMPARE(m_session->Failure(), ZrRecorder::failureNone);
    QVERIFY(m_session->AddEvent(QStringLiteral("third")));
    Stop();
    QCOMPARE(lost.size(), std::size_t(2));
}

void tst_ZrRecordingSessionEvents::sentencesWithoutRecordsAreData_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("fix of quality 0") << QByteArray("$GPGGA,120000.00,,,,,0,00,,,M,,M,,");
    QTest::newRow("void") << QByteArray("$GPRMC,120000.00,V,,,,,,,010121,,,N");
    QTest::newRow("other ships") << QByteArray("!AIVDM,1,1,,A,15M67F0000G?Uf6E`FepT@3n00Sa,0");
    QTest::newRow("of a maker") << QByteArray("$PZRX,1,2,3");
}

/// They say that the device is there, and nothing of a position.
void tst_ZrRecordingSessionEvents::sentencesWithoutRecordsAreData()
{
    QFETCH(QByteArray, line);
    Open();
    GiveLine("rubbish");
    QTRY_COMPARE(m_session->News().lineCount, u64(1));
    QVERIFY(std::isinf(m_session->State().lastData));
    GiveLine(line);
    QTRY_COMPARE(m_session->News().lineCount, u64(2));
    QCOMPARE(m_session->News().damagedLines, u64(1));
    QCOMPARE(m_session->News().recordCount, u64(0));
    QCOMPARE(m_session->State().lastData, 1000.0);
    QVERIFY(!m_session->State().latitude.IsKnown());
}

QTEST_GUILESS_MAIN(tst_ZrRecordingSessionEvents)
#include "tst_ZrRecordingSessionEvents.moc"
