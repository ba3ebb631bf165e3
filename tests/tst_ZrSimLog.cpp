#include "SimPlan.h"
#include "ZrKit/review/ZrLogCheck.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrKit/sim/ZrSimLog.h"
#include "ZrKit/sim/ZrSimSurvey.h"
#include "ZrUtil/IZrProgress.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <thread>

namespace {

ZrSimSettings Small()
{
    ZrSimSettings settings = PlainSettings();
    settings.sonar.samples = 64;
    settings.sonar.rate = 5.0;
    return settings;
}

QByteArray Content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Cancels at half of the way.
class Halfway final : public IZrProgress
{
public:
    explicit Halfway(std::atomic<bool>& cancel)
        : m_cancel(cancel)
    {
    }

    void UpdateProgress(int percent) override
    {
        m_percents << percent;
        if (percent >= 50)
            m_cancel = true;
    }

    int GetProgress() override { return m_percents.isEmpty() ? 0 : m_percents.last(); }

    QVector<int> m_percents;

private:
    std::atomic<bool>& m_cancel;
};

class Percents final : public IZrProgress
{
public:
    void UpdateProgress(int percent) override { m_percents << percent; }

    int GetProgress() override { return m_percents.isEmpty() ? 0 : m_percents.last(); }

    QVector<int> m_percents;
};

} // namespace

class tst_ZrSimLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(QStringLiteral("Fahrt ü.log"));
    }

    void soundLog_data()
    {
        QTest::addColumn<bool>("compress");
        QTest::newRow("plain") << false;
        QTest::newRow("compressed") << true;
    }

    void soundLog()
    {
        QFETCH(bool, compress);
        ZrSimSurvey survey(m_plan, Small());
        ZrSimLog log;
        log.compress = compress;
        Percents progress;
        QCOMPARE(log.Write(survey, m_path, &progress), ZrSimLog::Done);
        QCOMPARE(log.Error(), QString());
        QCOMPARE(log.Bytes(), u64(QFileInfo(m_path).size()));
        QVERIFY(std::fabs(log.Duration() - 40.0) < 0.5);
        QVERIFY(std::abs(int(log.Pings()) - 200) <= 2);
        QCOMPARE(progress.m_percents.first(), 0);
        QVERIFY(progress.m_percents.last() >= 99);
        QVERIFY(std::is_sorted(progress.m_percents.begin(), progress.m_percents.end()));

        ZrLogCheck check;
        QVERIFY2(check.Run(m_path), qPrintable(check.Error()));
        QCOMPARE(check.ProblemCount(), u64(0));
        QCOMPARE(check.Items(), log.Items());
        QCOMPARE(check.BackwardJumps(), u64(0));

        ZrSurveyDataset dataset;
        dataset.ReadFile(m_path);
        QVERIFY(std::abs(static_cast<int>(dataset.recs.size()) - 400) <= 2);
        const ZrLogRec& last = dataset.recs.back();
        QVERIFY(std::fabs(last.depth - 12.0F) < 0.01F);
        QVERIFY(std::fabs(last.latitude - (simLatitude + 60.0 / 111200.0)) < 1e-5);
    }

    void incomplete()
    {
        ZrSimSettings settings = Small();
        settings.vehicle.currentSet = 180.0;
        settings.vehicle.currentDrift = 2.0;
        ZrSimSurvey survey(m_plan, settings);
        ZrSimLog log;
        QCOMPARE(log.Write(survey, m_path, nullptr), ZrSimLog::Incomplete);
        QVERIFY(log.Error().startsWith(QStringLiteral("The current of 2.00 m/s is too strong")));
        ZrLogCheck check;
        QVERIFY(check.Run(m_path));
        QCOMPARE(check.ProblemCount(), u64(0));
    }

    void badPlan()
    {
        ZrSimSurvey survey(MakePlan({}), Small());
        ZrSimLog log;
        QCOMPARE(log.Write(survey, m_path, nullptr), ZrSimLog::BadPlan);
        QCOMPARE(log.Error(), QStringLiteral("The plan has no waypoints"));
        QVERIFY(!QFile::exists(m_path));
    }

    void badOutput_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("no folder") << QStringLiteral("none/line.log");
        QTest::newRow("a folder") << QStringLiteral(".");
    }

    void badOutput()
    {
        QFETCH(QString, path);
        ZrSimSurvey survey(m_plan, Small());
        ZrSimLog log;
        QCOMPARE(log.Write(survey, m_folder->filePath(path), nullptr), ZrSimLog::BadOutput);
        QVERIFY2(log.Error().startsWith(QStringLiteral("Cannot create ")), qPrintable(log.Error()));
    }

    void cancelled()
    {
        QFile old(m_path);
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
        old.close();
        ZrSimSurvey survey(m_plan, Small());
        ZrSimLog log;
        Halfway progress(log.cancel);
        QCOMPARE(log.Write(survey, m_path, &progress), ZrSimLog::Cancelled);
        QCOMPARE(progress.GetProgress(), 50);
        QCOMPARE(log.Error(), QStringLiteral("The simulation was cancelled"));
        QCOMPARE(Content(m_path), QByteArray("old"));
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    void cancelledFromAnotherThreadWhileItWaits()
    {
        // In real time the plan takes an hour.
        ZrSimSurvey survey(MakePlan({{0, 0}, {0, 5400}}, 1.5), Small());
        ZrSimLog log;
        log.factor = 1.0;
        ZrSimLog::eResult result = ZrSimLog::Done;
        std::thread writer([&] { result = log.Write(survey, m_path, nullptr); });
        log.cancel = true;
        writer.join();
        QCOMPARE(result, ZrSimLog::Cancelled);
        QVERIFY(!QFile::exists(m_path));
    }

    void paceChangesNothing()
    {
        ZrSimSettings settings = Small();
        const ZrWpts plan = MakePlan({{0, 0}, {0, 6}}, 3.0);
        ZrSimSurvey a(plan, settings);
        ZrSimSurvey b(plan, settings);
        ZrSimLog log;
        QCOMPARE(log.Write(a, m_path, nullptr), ZrSimLog::Done);
        const QByteArray fast = Content(m_path);
        log.factor = 50.0;
        QCOMPARE(log.Write(b, m_path, nullptr), ZrSimLog::Done);
        QVERIFY(fast.size() > 1000);
        QCOMPARE(Content(m_path), fast);
    }

private:
    const ZrWpts m_plan = MakePlan({{0, 0}, {0, 60}}, 1.5);
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

QTEST_GUILESS_MAIN(tst_ZrSimLog)
#include "tst_ZrSimLog.moc"
