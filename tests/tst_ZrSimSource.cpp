#include "SimPlan.h"
#include "ZrKit/recording/ZrRecorder.h"
#include "ZrKit/review/ZrLogCheck.h"
#include "ZrKit/review/ZrLogSummary.h"
#include "ZrKit/sim/ZrSimSource.h"
#include "ZrKit/sim/ZrSimSurvey.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr int patience = 60000; // milliseconds; sanitizers are slow

ZrSimSettings Small()
{
    ZrSimSettings settings = PlainSettings();
    settings.sonar.samples = 64;
    settings.sonar.rate = 5.0;
    return settings;
}

/// 8 s, which are 0.16 s at the highest factor.
const std::vector<SimPoint> shortWay = {{0, 0}, {0, 24}};

/// Hours.
const std::vector<SimPoint> longWay = {{0, 0}, {0, 20000}};

struct Given
{
    CRecType type;
    u16 format;
    double time;
    QByteArray payload;
};

} // namespace

class tst_ZrSimSource : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void givesTheWholeSurvey()
    {
        const ZrWpts plan = MakePlan(shortWay, 3.0);
        ZrSimSource source(plan, Small(), nullptr);
        source.SetFactor(50.0);
        std::vector<Given> given;
        connect(&source, &ZrSimSource::Record, this,
            [&](CRecType type, u16 format, double time, const QByteArray& payload) {
                QCOMPARE(QThread::currentThread(), thread());
                given.push_back({type, format, time, payload});
                QVERIFY(std::fabs(Small().start + source.State().time - time) < 1e-6);
            });
        QSignalSpy finished(&source, &ZrLineSource::Finished);
        QSignalSpy trouble(&source, &ZrLineSource::Trouble);
        QString error;
        QVERIFY2(source.Start(&error), qPrintable(error));
        QVERIFY(source.IsRunning());
        QVERIFY(given.empty()); // nothing comes before the event loop runs
        QVERIFY(finished.wait(patience));
        QVERIFY(!source.IsRunning());
        QCOMPARE(source.Percent(), 100);
        QCOMPARE(trouble.count(), 0);

        ZrSimSurvey survey(plan, Small());
        ZrSimRecord record;
        std::size_t i = 0;
        for (; survey.Next(record); ++i) {
            QVERIFY(i < given.size());
            QCOMPARE(given[i].type, record.type);
            QCOMPARE(given[i].format, record.format);
            QCOMPARE(given[i].time, record.time);
            QCOMPARE(given[i].payload, record.payload);
        }
        QCOMPARE(given.size(), i);
        QCOMPARE(source.Name(), QStringLiteral("simulated vehicle"));
    }

    void isRecorded()
    {
        const QTemporaryDir folder;
        ZrRecorder::Options options;
        options.dir = folder.path();
        options.freeSpace = [] { return qint64(-1); };
        options.source = 4;
        ZrRecorder recorder(options, nullptr);
        ZrSimSource source(MakePlan(shortWay, 3.0), Small(), nullptr);
        source.SetFactor(50.0);
        connect(&source, &ZrSimSource::Record, &recorder, &ZrRecorder::AddRecord);
        connect(&source, &ZrLineSource::Finished, &recorder, &ZrRecorder::Stop);
        QSignalSpy finished(&source, &ZrLineSource::Finished);
        QString error;
        QVERIFY2(recorder.Start(&error), qPrintable(error));
        QVERIFY2(source.Start(&error), qPrintable(error));
        QVERIFY(finished.wait(patience));
        QVERIFY(!recorder.IsRecording());
        const ZrRecorder::Status status = recorder.CurrentStatus();
        QCOMPARE(status.fixes, u64(9)); // from 0 to 8 s
        ZrLogCheck check;
        QVERIFY(check.Run(status.file));
        QCOMPARE(check.ProblemCount(), u64(0));
        QCOMPARE(check.Items(), status.items);
        QCOMPARE(check.BackwardJumps(), u64(0));
        QCOMPARE(status.bytes, u64(QFileInfo(status.file).size()));
    }

    void pauseHoldsIt()
    {
        ZrSimSource source(MakePlan(longWay, 3.0), Small(), nullptr);
        source.SetFactor(50.0);
        source.SetPaused(true);
        int records = 0;
        connect(&source, &ZrSimSource::Record, this, [&] { ++records; });
        QString error;
        QVERIFY(source.Start(&error));
        QVERIFY(source.IsPaused());
        QTest::qWait(100);
        QCOMPARE(records, 0);
        source.SetPaused(false);
        QTRY_VERIFY_WITH_TIMEOUT(records > 50, patience);
        source.SetPaused(true);
        const int held = records;
        QTest::qWait(100);
        QCOMPARE(records, held);
        source.SetPaused(false);
        QTRY_VERIFY_WITH_TIMEOUT(records > held + 50, patience);
        QVERIFY(source.IsRunning());
    }

    void stopEndsIt()
    {
        ZrSimSource source(MakePlan(longWay, 3.0), Small(), nullptr);
        source.SetFactor(50.0);
        QSignalSpy finished(&source, &ZrLineSource::Finished);
        int records = 0;
        connect(&source, &ZrSimSource::Record, this, [&] { ++records; });
        QString error;
        QVERIFY(source.Start(&error));
        QTRY_VERIFY_WITH_TIMEOUT(records > 20, patience);
        source.Stop();
        QVERIFY(!source.IsRunning());
        const int before = records;
        QTest::qWait(50);
        QCOMPARE(records, before);
        QCOMPARE(finished.count(), 0);
        source.Stop();
        // And it begins anew.
        QVERIFY(source.Start(&error));
        QCOMPARE(source.State().time, 0.0);
        QTRY_VERIFY_WITH_TIMEOUT(records > before + 20, patience);
    }

    void receiverThatPauses()
    {
        const ZrWpts plan = MakePlan(shortWay, 3.0);
        ZrSimSource source(plan, Small(), nullptr);
        source.SetFactor(50.0);
        int records = 0;
        connect(&source, &ZrSimSource::Record, this, [&] {
            ++records;
            source.SetPaused(true);
        });
        QSignalSpy finished(&source, &ZrLineSource::Finished);
        QString error;
        QVERIFY(source.Start(&error));
        for (int expected = 1; expected <= 30; ++expected) {
            QTRY_COMPARE_WITH_TIMEOUT(records, expected, patience);
            QTest::qWait(2);
            QCOMPARE(records, expected);
            source.SetPaused(false);
        }
        QCOMPARE(finished.count(), 0);
    }

    void receiverThatStops()
    {
        ZrSimSource source(MakePlan(longWay, 3.0), Small(), nullptr);
        int records = 0;
        connect(&source, &ZrSimSource::Record, this, [&] {
            if (++records == 5)
                source.Stop();
        });
        QString error;
        QVERIFY(source.Start(&error));
        QTRY_COMPARE_WITH_TIMEOUT(records, 5, patience);
        QTest::qWait(30);
        QCOMPARE(records, 5);
    }

    void receiverThatDeletes()
    {
        auto* source = new ZrSimSource(MakePlan(longWay, 3.0), Small(), nullptr);
        const QPointer<ZrSimSource> alive(source);
        connect(source, &ZrSimSource::Record, this, [source] { delete source; });
        QString error;
        QVERIFY(source->Start(&error));
        QTRY_VERIFY_WITH_TIMEOUT(alive.isNull(), patience);
    }

    void receiverThatStartsAnew()
    {
        ZrSimSource source(MakePlan(shortWay, 3.0), Small(), nullptr);
        source.SetFactor(50.0);
        int runs = 0;
        connect(&source, &ZrLineSource::Finished, this, [&] {
            QString error;
            if (++runs == 1)
                QVERIFY(source.Start(&error));
        });
        QString error;
        QVERIFY(source.Start(&error));
        QTRY_COMPARE_WITH_TIMEOUT(runs, 2, patience);
        QVERIFY(!source.IsRunning());
    }

    void destroyedWhileItRuns()
    {
        for (int i = 0; i < 20; ++i) {
            ZrSimSource source(MakePlan(longWay, 3.0), Small(), nullptr);
            source.SetFactor(50.0);
            source.SetPaused(i % 3 == 1);
            QString error;
            QVERIFY(source.Start(&error));
            if (i % 2 == 0)
                QTest::qWait(2);
        }
    }

    void slowReceiverLosesNothing()
    {
        // Nobody runs the event loop: the thread waits with what is ready, and all of it comes afterwards.
        const ZrWpts plan = MakePlan({{0, 0}, {0, 60}}, 3.0);
        ZrSimSource source(plan, Small(), nullptr);
        source.SetFactor(50.0);
        int records = 0;
        connect(&source, &ZrSimSource::Record, this, [&] { ++records; });
        QSignalSpy finished(&source, &ZrLineSource::Finished);
        QString error;
        QVERIFY(source.Start(&error));
        while (source.Waiting() < ZrSimSource::MaxWaiting)
            QThread::msleep(5);
        QThread::msleep(300); // the whole survey would take 0.4 s
        QCOMPARE(source.Waiting(), std::size_t(ZrSimSource::MaxWaiting));
        QCOMPARE(records, 0);
        QVERIFY(finished.wait(patience));
        ZrSimSurvey survey(plan, Small());
        ZrSimRecord record;
        int expected = 0;
        while (survey.Next(record))
            ++expected;
        QVERIFY(expected > 300); // more than may wait
        QCOMPARE(records, expected);
    }

    void paceOfItsTime()
    {
        ZrSimSource source(MakePlan(longWay, 3.0), Small(), nullptr);
        source.SetFactor(50.0);
        QCOMPARE(source.TimePace().speed, 50.0);
        double last = 0.0;
        std::size_t records = 0;
        connect(&source, &ZrSimSource::Record, this, [&](CRecType, u16, double time) {
            last = time;
            if (++records == ZrSimSource::MaxWaiting)
                source.Stop();
        });
        QString error;
        QVERIFY(source.Start(&error));
        // Nobody takes anything: so far its time goes on.
        while (source.Waiting() < ZrSimSource::MaxWaiting)
            QThread::msleep(5);
        const double most = source.TimePace().mostAhead;
        QTRY_COMPARE_WITH_TIMEOUT(records, std::size_t(ZrSimSource::MaxWaiting), patience);
        QVERIFY2(std::fabs(last - Small().start - most) < 0.5, qPrintable(QString::number(most)));
        source.SetPaused(true);
        QCOMPARE(source.TimePace().speed, 0.0);
    }

    void endsWithAMessage()
    {
        ZrSimSettings settings = Small();
        settings.maxDuration = 3.0;
        ZrSimSource source(MakePlan(longWay, 3.0), settings, nullptr);
        source.SetFactor(50.0);
        QStringList events;
        connect(&source, &ZrLineSource::Trouble, this, [&](const QString& text) { events << text; });
        connect(&source, &ZrLineSource::Finished, this, [&] { events << QStringLiteral("finished"); });
        QString error;
        QVERIFY(source.Start(&error));
        QTRY_COMPARE_WITH_TIMEOUT(events.size(), 2, patience);
        QCOMPARE(events,
            (QStringList{QStringLiteral("The survey takes longer than 3 s"), QStringLiteral("finished")}));
        QCOMPARE(source.Percent(), 0);
    }

    void cannotStart()
    {
        ZrSimSource source(MakePlan({{0, 0}}), Small(), nullptr);
        QString error;
        QVERIFY(!source.Start(&error));
        QCOMPARE(error, QStringLiteral("The plan has only one waypoint: there is no way to go"));
        QVERIFY(!source.IsRunning());
        ZrSimSource twice(MakePlan(longWay), Small(), nullptr);
        QVERIFY(twice.Start(&error));
        QVERIFY(!twice.Start(&error));
        QCOMPARE(error, QStringLiteral("The simulation runs already"));
        QVERIFY(twice.IsRunning());
    }

    void factors()
    {
        ZrSimSource source(MakePlan(longWay), Small(), nullptr);
        QCOMPARE(source.Factor(), 1.0);
        source.SetFactor(1000.0);
        QCOMPARE(source.Factor(), 50.0);
        source.SetFactor(-3.0);
        QCOMPARE(source.Factor(), 1.0);
        source.SetFactor(7.5);
        QCOMPARE(source.Factor(), 7.5);
        source.SetFactor(std::numeric_limits<double>::quiet_NaN());
        QCOMPARE(source.Factor(), 1.0);
    }
};

QTEST_GUILESS_MAIN(tst_ZrSimSource)
#include "tst_ZrSimSource.moc"
