// Recordings opened: of all sorts of logs, damaged ones, without a place for an index, cancelled.

#include "SurveyRecordingLog.h"
#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrRecordSource.h"
#include "ZrKit/review/ZrWorker.h"
#include "ZrUtil/IZrProgress.h"

#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <thread>

using sonar_test::Log;
using sonar_test::SonarLine;
using survey_recording::AddFix;
using survey_recording::IsNear;
using survey_recording::Nav;
using survey_recording::unknown;
using survey_recording::WriteWithEvents;

namespace {

class Percents final : public IZrProgress
{
public:
    QVector<int> m_told;
    std::function<void(int)> m_then;

    void UpdateProgress(int percent) override
    {
        m_told.append(percent);
        if (m_then)
            m_then(percent);
    }

    int GetProgress() override { return m_told.isEmpty() ? 0 : m_told.last(); }
};

} // namespace

class tst_ZrSurveyRecording : public QObject, private survey_recording::Folder
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void refused_data();
    void refused();
    void navigationAlone();
    void fixesAlone();
    void withSonar();
    void oneSideAlone();
    void bottomIsTracked();
    void damaged();
    void damagedCompanions();
    void planBesideIt();
    void progress();
    void cancelled();
    void inAnotherThread();
    void folderThatCannotBeWritten();
};

void tst_ZrSurveyRecording::refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << QByteArray() << QString();
    QTest::newRow("empty") << QByteArray("") << QString();
    QTest::newRow("text") << QByteArray("no log at all, but long enough for a header of one") << QString();
    QTest::newRow("zeros") << QByteArray(4096, '\0') << QString();
    QTest::newRow("nothing to show") << QByteArray(
        "log") << QStringLiteral("The log holds neither navigation nor side-scan pings.");
    QTest::newRow("folder") << QByteArray("folder") << QString();
}

void tst_ZrSurveyRecording::refused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    const QString path = File("nichts ü.log");
    if (bytes == "folder") {
        QVERIFY(QDir().mkpath(path));
    } else if (bytes == "log") {
        QVERIFY(Log(path).AddItem(2, 0, 1, sonar_test::startTime, "$GPGGA").Commit());
    } else if (!bytes.isNull()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    ZrSurveyRecording recording;
    QVERIFY(!recording.Load(path));
    QVERIFY(!recording.Error().isEmpty());
    QVERIFY(recording.Error() != QStringLiteral("Cancelled"));
    if (!error.isEmpty())
        QCOMPARE(recording.Error(), error);
    QCOMPARE(recording.Path(), path);
    QVERIFY(!recording.HasSonar());
}

void tst_ZrSurveyRecording::navigationAlone()
{
    const QString path = File("nav.log");
    Log log(path);
    for (int i = 0; i < 50; ++i)
        log.AddNav(sonar_test::startTime + i, Nav(44.0 + i * 1e-5, -63.0));
    QVERIFY(log.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QCOMPARE(recording.Error(), QString());
    QVERIFY2(recording.Remarks().isEmpty(), qPrintable(recording.Remarks().join(QLatin1Char('|'))));
    QVERIFY(!recording.IsDamaged());
    QVERIFY(!recording.HasSonar());
    QCOMPARE(recording.Series().Count(), std::size_t(50));
    ZrDatasetReader reader;
    QVERIFY(recording.IndexRecords(reader));
    QCOMPARE(reader.Records()->Count(), std::size_t(50));
    reader.cancel = true;
    QVERIFY(QFile::remove(path + QStringLiteral(".zri")));
    QVERIFY(!recording.IndexRecords(reader));
    QVERIFY(IsNear(recording.Times()->End() - recording.Times()->Begin(), 49.0, 1e-6));
    QVERIFY(std::isnan(recording.PingAt(recording.Times()->Begin())));
    QVERIFY(std::isnan(recording.TimeOfPing(0.0)));
    QVERIFY(recording.Pings().empty());
    QVERIFY(recording.Plan().empty());
    QCOMPARE(recording.Events().Count(), std::size_t(0));
}

void tst_ZrSurveyRecording::fixesAlone()
{
    const QString path = File("fix.log");
    Log log(path);
    for (int i = 0; i < 20; ++i)
        AddFix(log, i);
    QVERIFY(log.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QCOMPARE(recording.Series().Count(), std::size_t(20));
    ZrDatasetReader reader;
    QVERIFY(recording.IndexRecords(reader));
    QCOMPARE(reader.Records()->Count(), std::size_t(20));
    QVERIFY(IsNear(recording.PositionAt(recording.Times()->Begin()).lat, 44.0, 1e-9));
}

void tst_ZrSurveyRecording::withSonar()
{
    const QString path = File("line.log");
    SonarLine line;
    QVERIFY(WriteLine(path, line));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QVERIFY(recording.HasSonar());
    QCOMPARE(recording.Pings().size(), std::size_t(100));
    QCOMPARE(recording.Track().Count(), std::size_t(100));
    QVERIFY(IsNear(recording.Track().Length(), 99 * 0.15, 0.2));
    QCOMPARE(recording.Waterfall()->Count(), std::size_t(100));
    QCOMPARE(recording.Bottom().Count(), std::size_t(100));
    const ZrGeoPoint at = recording.Geo().Position({50, sideStarboard, 200.0});
    QVERIFY(at.IsValid());
    // To the south of a line to the east.
    QVERIFY(at.lat < line.PositionOf(50).lat);
    QVERIFY(IsNear(at.lng, line.PositionOf(50).lng, 1e-5));
}

void tst_ZrSurveyRecording::oneSideAlone()
{
    const QString path = File("line.log");
    SonarLine line;
    line.isThere = [](int, eSonarSide side) { return side == sidePort; };
    QVERIFY(WriteLine(path, line));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QVERIFY(recording.HasSonar());
    ZrWaterfallLine made;
    recording.Waterfall()->Make(3, made);
    QCOMPARE(made.samples[sidePort].size(), std::size_t(300));
    QVERIFY(made.samples[sideStarboard].empty());
}

/// An echo that rises at 8 m counts, whatever altitude was recorded.
void tst_ZrSurveyRecording::bottomIsTracked()
{
    const QString path = File("line.log");
    SonarLine line;
    line.altitude = 5.0;
    line.amplitude = [](int ping, eSonarSide, u32 sample) {
        const double range = (sample + 0.5) * 0.1;
        const double noise = 0.01 * ((sample * 7 + static_cast<u32>(ping) * 13) % 5);
        return range < 8.0 ? 0.01 + noise * 0.2 : 0.5 * std::exp(-(range - 8.0) / 15.0) + noise;
    };
    QVERIFY(WriteLine(path, line));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QVERIFY2(IsNear(recording.Bottom().Altitude(50), 8.0, 0.5),
        qPrintable(QString::number(recording.Bottom().Altitude(50))));
}

void tst_ZrSurveyRecording::damaged()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.resize(file.size() / 2));
    file.close();
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QVERIFY(recording.IsDamaged());
    QVERIFY(recording.Pings().size() > 40 && recording.Pings().size() <= 50);
    QCOMPARE(recording.Remarks().size(), 1);
    QVERIFY2(recording.Remarks()[0].startsWith(QStringLiteral("The log is damaged and is shown up to byte")),
        qPrintable(recording.Remarks()[0]));
    // A side whose samples were cut off shows nothing; all others do.
    for (std::size_t i = 0; i + 1 < recording.Pings().size(); ++i) {
        ZrWaterfallLine line;
        recording.Waterfall()->Make(i, line);
        QCOMPARE(line.samples[sidePort].size(), std::size_t(300));
    }
}

/// What lies beside the log may be anything: the recording is there, and says so.
void tst_ZrSurveyRecording::damagedCompanions()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    for (const char* suffix : {".evt", ".xml"}) {
        QFile file(path + QLatin1String(suffix));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<?xml this is neither events nor a plan");
    }
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const QString remarks = recording.Remarks().join(QLatin1Char('|'));
    QVERIFY2(remarks.contains(path + QStringLiteral(".xml")), qPrintable(remarks));
    QCOMPARE(recording.Events().Count(), std::size_t(0));
    QVERIFY(!recording.IsDamaged());
    QVERIFY(recording.Plan().empty());
    QVERIFY(recording.HasSonar());
}

void tst_ZrSurveyRecording::planBesideIt()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    QFile file(path + QStringLiteral(".xml"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("");
    file.close();
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QVERIFY(recording.Plan().empty());
}

void tst_ZrSurveyRecording::progress()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    ZrSurveyRecording recording;
    Percents percents;
    recording.progress = &percents;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QVERIFY(percents.m_told.size() > 5);
    QCOMPARE(percents.m_told.last(), 100);
    QVERIFY(percents.m_told.first() < 40);
    for (const int percent : qAsConst(percents.m_told))
        QVERIFY(percent >= 0 && percent <= 100);
    QVERIFY(std::is_sorted(percents.m_told.begin(), percents.m_told.end()));
    // With an index that is there, and of fixes.
    const QString fixes = File("fix.log");
    QVERIFY(WriteWithEvents(fixes, ZrFixRecord::RecType));
    for (const QString& log : {path, fixes, fixes}) {
        Percents again;
        ZrSurveyRecording next;
        next.progress = &again;
        QVERIFY2(next.Load(log), qPrintable(next.Error()));
        QVERIFY(std::is_sorted(again.m_told.begin(), again.m_told.end()));
        QCOMPARE(again.m_told.last(), 100);
    }
}

/// Wherever it was, nothing is shown of it.
void tst_ZrSurveyRecording::cancelled()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    for (const int at : {0, 20, 40, 60, 80, 95}) {
        ZrSurveyRecording recording;
        Percents percents;
        recording.progress = &percents;
        percents.m_then = [&](int percent) {
            if (percent >= at)
                recording.cancel = true;
        };
        QVERIFY2(!recording.Load(path), qPrintable(QString::number(at)));
        QCOMPARE(recording.Error(), QStringLiteral("Cancelled"));
    }
}

/// Made in a worker that is gone, used in another thread.
void tst_ZrSurveyRecording::inAnotherThread()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    const auto recording = std::make_shared<ZrSurveyRecording>();
    const std::thread::id here = std::this_thread::get_id();
    std::thread::id worked = here;
    ZrWorker worker;
    QSignalSpy finished(&worker, &ZrWorker::Finished);
    QVERIFY(worker.Start(
        [&, recording](IZrProgress& progress) {
            worked = std::this_thread::get_id();
            recording->progress = &progress;
            recording->Load(path);
            recording->progress = nullptr;
        },
        [recording] { recording->cancel = true; }));
    QVERIFY(!finished.isEmpty() || finished.wait(60000));
    QVERIFY(worked != here);
    QCOMPARE(recording->Error(), QString());
    ZrDatasetReader reader;
    QVERIFY(recording->IndexRecords(reader));
    QCOMPARE(reader.Records()->Count(), std::size_t(100));
}

/// No index can be put beside the log: it is told, and the recording is there.
void tst_ZrSurveyRecording::folderThatCannotBeWritten()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    ZrSurveyRecording first;
    QVERIFY(first.Load(path));
    // Folders in place of the files that would be written.
    const QFileInfo info(path);
    const QStringList made = info.dir().entryList({QStringLiteral("line.log.*")}, QDir::Files);
    QVERIFY(!made.isEmpty());
    for (const QString& name : made) {
        QVERIFY(info.dir().remove(name));
        QVERIFY(info.dir().mkpath(name + QStringLiteral("/x")));
    }
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QVERIFY(!recording.Remarks().isEmpty());
    QCOMPARE(recording.Pings().size(), std::size_t(100));
}

QTEST_MAIN(tst_ZrSurveyRecording)
#include "tst_ZrSurveyRecording.moc"
