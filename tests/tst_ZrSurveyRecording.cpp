#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrRecordSource.h"
#include "ZrKit/review/ZrWorker.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrSonarTestLog.h"
#include "ZrUtil/IZrProgress.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>
#include <thread>

using sonar_test::Log;
using sonar_test::SonarLine;

namespace {

const double unknown = std::numeric_limits<double>::quiet_NaN();

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

bool IsNear(double a, double b, double within)
{
    return std::fabs(a - b) <= within;
}

} // namespace

class tst_ZrSurveyRecording : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void refused_data();
    void refused();
    void navigationAlone();
    void positionsBetweenRows();
    void firstPosition();
    void fixesAlone();
    void withSonar();
    void pingsWithoutNavigation();
    void pingAt();
    void pingsIn_data();
    void pingsIn();
    void oneSideAlone();
    void bottomIsTracked();
    void damaged();
    void damagedCompanions();
    void events();
    void planBesideIt();
    void progress();
    void cancelled();
    void inAnotherThread();
    void folderThatCannotBeWritten();

private:
    QString File(const char* name) const { return m_folder->filePath(QString::fromUtf8(name)); }

    static ZrNavRecord Nav(double lat, double lng)
    {
        ZrNavRecord nav;
        nav.latitude = lat;
        nav.longitude = lng;
        nav.depth = 10.0F;
        return nav;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
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

/// On the way to the next row where that comes within ten seconds; else where the last one was.
void tst_ZrSurveyRecording::positionsBetweenRows()
{
    const QString path = File("nav.log");
    const double t = sonar_test::startTime;
    QVERIFY(Log(path)
                .AddNav(t, Nav(44.0, -63.0))
                .AddNav(t + 10.0, Nav(44.1, -63.2))
                .AddNav(t + 21.0, Nav(44.2, -63.2))
                .AddNav(t + 22.0, Nav(unknown, unknown))
                .AddNav(t + 23.0, Nav(44.3, 179.9))
                .AddNav(t + 24.0, Nav(44.3, -179.9))
                .Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const double begin = recording.Times()->Begin();
    const auto isAt = [&](double seconds, double lat, double lng) {
        const ZrGeoPoint at = recording.PositionAt(begin + seconds);
        return IsNear(at.lat, lat, 1e-9) && IsNear(at.lng, lng, 1e-9);
    };
    QVERIFY(isAt(0.0, 44.0, -63.0));
    QVERIFY(isAt(5.0, 44.05, -63.1));
    QVERIFY(isAt(10.0, 44.1, -63.2));
    QVERIFY(isAt(15.0, 44.1, -63.2));
    QVERIFY(isAt(21.0, 44.2, -63.2));
    // Not through the whole world at the date line.
    QVERIFY(isAt(23.5, 44.3, 179.9));
    QVERIFY(isAt(24.0, 44.3, -179.9));
    QVERIFY(isAt(1e6, 44.3, -179.9));
    QVERIFY(!recording.PositionAt(begin + 22.5).IsValid());
    QVERIFY(!recording.PositionAt(unknown).IsValid());
}

void tst_ZrSurveyRecording::firstPosition()
{
    const QString path = File("late.log");
    const double t = sonar_test::startTime;
    QVERIFY(Log(path)
                .AddNav(t, Nav(unknown, unknown))
                .AddNav(t + 1.0, Nav(44.0, unknown))
                .AddNav(t + 2.0, Nav(44.1, -63.2))
                .AddNav(t + 3.0, Nav(44.2, -63.2))
                .Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const double begin = recording.Times()->Begin();
    QCOMPARE(recording.FirstPosition(begin + 100.0), begin + 2.0);
    QCOMPARE(recording.FirstPosition(begin + 2.0), begin + 2.0);
    QVERIFY(std::isnan(recording.FirstPosition(begin + 1.9)));
    QVERIFY(std::isnan(recording.FirstPosition(begin - 1.0)));
    QVERIFY(std::isnan(ZrSurveyRecording().FirstPosition(begin)));
}

void tst_ZrSurveyRecording::fixesAlone()
{
    const QString path = File("fix.log");
    Log log(path);
    for (int i = 0; i < 20; ++i) {
        ZrFixRecord fix;
        fix.latitude = 44.0 + i * 1e-5;
        fix.longitude = -63.0;
        log.AddItem(ZrFixRecord::RecType, 0, ZrFixRecord::Format, sonar_test::startTime + i, fix.Encode());
    }
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

/// The pings make the time axis then.
void tst_ZrSurveyRecording::pingsWithoutNavigation()
{
    const QString path = File("line.log");
    SonarLine line;
    line.hasNav = [](int) { return false; };
    QVERIFY(WriteLine(path, line));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QVERIFY(recording.HasSonar());
    QCOMPARE(recording.Series().Count(), std::size_t(0));
    QVERIFY(IsNear(recording.Times()->End() - recording.Times()->Begin(), 9.9, 1e-6));
    QVERIFY(IsNear(recording.PingAt(recording.Times()->End()), 99.0, 1e-6));
    QVERIFY(!recording.PositionAt(recording.Times()->Begin()).IsValid());
}

void tst_ZrSurveyRecording::pingAt()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const double begin = recording.Times()->Begin();
    QCOMPARE(recording.PingAt(begin), 0.0);
    QVERIFY(IsNear(recording.PingAt(begin + 1.05), 10.5, 1e-6));
    QCOMPARE(recording.PingAt(begin - 5.0), 0.0);
    QCOMPARE(recording.PingAt(begin + 500.0), 99.0);
    QVERIFY(std::isnan(recording.PingAt(unknown)));
    for (const double ping : {0.0, 0.5, 17.25, 98.9, 99.0})
        QVERIFY(IsNear(recording.PingAt(recording.TimeOfPing(ping)), ping, 1e-4));
    QCOMPARE(recording.TimeOfPing(-3.0), recording.TimeOfPing(0.0));
    QCOMPARE(recording.TimeOfPing(1e9), recording.TimeOfPing(99.0));
    QVERIFY(std::isnan(recording.TimeOfPing(unknown)));
}

void tst_ZrSurveyRecording::pingsIn_data()
{
    QTest::addColumn<int>("sonars");
    QTest::addColumn<int>("firstNav");
    QTest::addColumn<int>("endNav");
    QTest::newRow("each with its record") << 1 << 0 << 40;
    QTest::newRow("before the first record") << 1 << 15 << 40;
    QTest::newRow("behind the last record") << 1 << 0 << 25;
    QTest::newRow("two sonars at once") << 2 << 0 << 40;
    QTest::newRow("two sonars around the records") << 2 << 15 << 25;
    QTest::newRow("no records") << 2 << 0 << 0;
}

/// Several pings may have one time: all of them belong to it.
void tst_ZrSurveyRecording::pingsIn()
{
    QFETCH(int, sonars);
    QFETCH(int, firstNav);
    QFETCH(int, endNav);
    const QString path = File("line.log");
    SonarLine line;
    line.samples = 4;
    Log log(path);
    for (int i = 0; i < 40; ++i) {
        if (i >= firstNav && i < endNav)
            log.AddNav(line.TimeOf(i), line.NavOf(i));
        for (int source = 1; source <= sonars; ++source) {
            for (const eSonarSide side : {sidePort, sideStarboard})
                log.AddPing(line.TimeOf(i), line.PingOf(i, side), false, static_cast<u16>(source));
        }
    }
    QVERIFY(log.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    const std::size_t count = recording.Pings().size();
    QCOMPARE(count, static_cast<std::size_t>(40 * sonars));
    std::vector<double> times;
    for (std::size_t i = 0; i < count; ++i)
        times.push_back(recording.TimeOfPing(static_cast<double>(i)));
    QVERIFY(std::is_sorted(times.begin(), times.end()));
    std::vector<double> ends = times;
    for (const double time : times)
        ends.push_back(time + 0.05);
    ends.push_back(times.front() - 1.0);
    for (const double from : ends) {
        for (const double to : ends) {
            const auto found = recording.PingsIn(from, to);
            QVERIFY(found.first <= found.second && found.second <= count);
            for (std::size_t i = 0; i < count; ++i) {
                const bool isIn = times[i] >= from && times[i] <= to;
                QCOMPARE(i >= found.first && i < found.second, isIn);
            }
        }
    }
    constexpr double inf = std::numeric_limits<double>::infinity();
    const auto isNone = [&](double from, double to) {
        const auto found = recording.PingsIn(from, to);
        return found.first == found.second;
    };
    QCOMPARE(recording.PingsIn(-inf, inf), std::make_pair(std::size_t(0), count));
    QVERIFY(isNone(unknown, inf) && isNone(-inf, unknown) && isNone(inf, -inf));
    QVERIFY(ZrSurveyRecording().PingsIn(-inf, inf) == std::make_pair(std::size_t(0), std::size_t(0)));
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

void tst_ZrSurveyRecording::events()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    {
        ZrSurveyRecording recording;
        QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
        ZrLogEvt evt;
        evt.time = sonar_test::startTime + 2.0;
        evt.text = QStringLiteral("Wrack äß");
        QVERIFY(IsNear(recording.TimeOf(evt), recording.Times()->Begin() + 2.0, 1e-6));
        evt.time = unknown;
        QVERIFY(std::isnan(recording.TimeOf(evt)));
        evt.time = sonar_test::startTime + 2.0;
        QVERIFY(recording.Events().Add(evt));
        QString error;
        QVERIFY2(recording.Events().Save(&error), qPrintable(error));
        ZrDatasetReader reader;
        const std::unique_ptr<ZrSurveyDataset> records = recording.IndexRecords(reader);
        QVERIFY(records);
        QCOMPARE(records->events.GetCount(), 1);
    }
    ZrSurveyRecording again;
    QVERIFY2(again.Load(path), qPrintable(again.Error()));
    QCOMPARE(again.Events().Count(), std::size_t(1));
    QCOMPARE(again.Events().At(0).text, QStringLiteral("Wrack äß"));
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
