// The review of a log of more than 2 GiB, in a process of its own: how much memory it takes, and whether the
// screen goes on meanwhile. By hand it takes other sizes: ZR_LONG_LOG_GIB of the log, ZR_LONG_LOG_SAMPLES of
// a side, ZR_LONG_LOG_DIR where it is written.

#include "GlTest.h"
#include "LongLog.h"
#include "ZrKit/map/ZrWaterfallLoader.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/ReviewExport.h"
#include "apps/ZrSurvey/ReviewMap.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QSignalSpy>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <random>

namespace {

constexpr int patiencePerGib = 100000; ///< milliseconds
constexpr int defaultGib = 2;
constexpr int defaultSamples = 1000; ///< 4 kB for a line, as those of small vehicles
constexpr qint64 mostMegabytes = 330; ///< of the default
constexpr qint64 mostOfProgram = 250; ///< MB, of logs of other sizes
constexpr qint64 mostOfLine = 150; ///< bytes, exports included
constexpr qint64 mostKept
    = 80; ///< MB that an opened log takes, whatever its size: lines to be shown, textures
constexpr qint64 mostKeptOfLine = 130; ///< and bytes of a line
constexpr int places = 50;
constexpr int leastTurns = 10; ///< of the event loop; work in its thread would leave none

int Setting(const char* name, int usual)
{
    bool isSet = false;
    const int value = qEnvironmentVariableIntValue(name, &isSet);
    return isSet && value > 0 ? value : usual;
}

} // namespace

class tst_SurveyLongLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void cleanupTestCase() { m_view.reset(); }

    void opens();
    void scrubs();
    void exports();

private:
    ReviewPage& Page() const { return *static_cast<ReviewPage*>(m_view->GetPage(QStringLiteral("Review"))); }

    static void CheckMemory(const char* when, qint64 most);
    static qint64 Resident();
    void CheckPauses(const char* when, const long_log::Turns& turns) const;

    bool IsDefault() const { return m_gib == defaultGib && m_shape.samples == defaultSamples; }

    /// Megabytes that the tables of the log may take.
    qint64 Most() const
    {
        return IsDefault() ? mostMegabytes : mostOfProgram + m_shape.lines * mostOfLine / 1000000;
    }

    int Patience() const { return m_gib * patiencePerGib; }

    int m_gib = Setting("ZR_LONG_LOG_GIB", defaultGib);
    QTemporaryDir m_folder{
        qEnvironmentVariable("ZR_LONG_LOG_DIR", QDir::tempPath()) + QStringLiteral("/long-XXXXXX")};
    QString m_log;
    long_log::Shape m_shape;
    qint64 m_started = 0; ///< MB resident without a log
    std::unique_ptr<SurveyView> m_view;
};

void tst_SurveyLongLog::CheckMemory(const char* when, qint64 most)
{
    const qint64 peak = long_log::OfProcess("/proc/self/status", "VmHWM:");
    const auto now
        = [](const char* key) { return long_log::OfProcess("/proc/self/status", key) * 1024 / 1000000; };
    qInfo("%s: %lld MB at most, %lld MB now, %lld of them of files", when, peak * 1024 / 1000000,
        now("VmRSS:"), now("RssFile:"));
    QVERIFY(peak > 0);
    QVERIFY2(peak * 1024 / 1000000 < most, when);
}

/// Megabytes.
qint64 tst_SurveyLongLog::Resident()
{
    return long_log::OfProcess("/proc/self/status", "VmRSS:") * 1024 / 1000000;
}

/// By what the thread of the screen does, not by the clock: others may have the processors meanwhile.
void tst_SurveyLongLog::CheckPauses(const char* when, const long_log::Turns& turns) const
{
    qInfo("%s: %d turns of the event loop, at most %lld ms without one, at %.1f s, %.0f ms of work", when,
        turns.Count(), turns.Longest(), static_cast<double>(turns.LongestEnd()) / 1000.0, turns.Busiest());
    const double most = long_log::mostWork * (IsDefault() ? 1.0 : 2.0);
    QVERIFY2(turns.Busiest() < most, when);
}

void tst_SurveyLongLog::initTestCase()
{
    QVERIFY(m_folder.isValid());
    const qint64 logBytes = qint64(m_gib) << 30;
    const qint64 neededBytes = logBytes / 100 * 117;
    const QStorageInfo disk(m_folder.path());
    QVERIFY2(disk.bytesAvailable() >= neededBytes,
        qPrintable(QStringLiteral("%1 has %2 MB free; the log needs %3 MB")
                       .arg(m_folder.path())
                       .arg(disk.bytesAvailable() / 1000000)
                       .arg(neededBytes / 1000000)));
    m_log = m_folder.filePath(QStringLiteral("long.log"));
    m_shape.samples = Setting("ZR_LONG_LOG_SAMPLES", defaultSamples);
    m_shape.width = 2;
    m_shape.lines = logBytes / m_shape.LineBytes() + 1;
    QElapsedTimer clock;
    clock.start();
    QVERIFY(long_log::Write(m_log, m_shape));
    qInfo("writing: %lld lines, %.1f s", m_shape.lines, static_cast<double>(clock.elapsed()) / 1000.0);
    QVERIFY(QFileInfo(m_log).size() >= logBytes);
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    m_view = std::make_unique<SurveyView>(QString());
    m_view->resize(1280, 800);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    QTRY_VERIFY(m_view->IsComplete());
    CheckMemory("started", Most());
    m_started = Resident();
}

void tst_SurveyLongLog::opens()
{
    QSignalSpy frames(m_view.get(), &SurveyView::FramePainted);
    long_log::Turns turns;
    QElapsedTimer clock;
    clock.start();
    turns.Begin();
    m_view->OpenLog(m_log);
    QVERIFY(Page().IsLoading());
    QTRY_VERIFY_WITH_TIMEOUT(!Page().IsLoading(), Patience());
    qInfo("opening: %.1f s, %d frames", static_cast<double>(clock.elapsed()) / 1000.0, frames.size());
    QTRY_VERIFY_WITH_TIMEOUT(Page().IsDrawn() && !Page().Sonar().Loader()->IsLoading(), Patience());
    turns.End();
    CheckPauses("opening", turns);
    QVERIFY2(turns.Count() >= leastTurns, qPrintable(QString::number(turns.Count())));
    QVERIFY(frames.size() > 0);
    QVERIFY(Page().Recording());
    QCOMPARE(Page().Recording()->Pings().size(), static_cast<std::size_t>(m_shape.lines));
    QCOMPARE(Page().Recording()->Series().Count(), static_cast<std::size_t>(m_shape.lines));
    QVERIFY(!Page().Recording()->IsDamaged());
    CheckMemory("opened", Most());
    const ZrSurveyRecording& recording = *Page().Recording();
    const auto ofLine
        = [this](u64 bytes) { return static_cast<double>(bytes) / static_cast<double>(m_shape.lines); };
    qInfo("bytes for a line: %.1f of pings and navigation, %.1f of curves and places, %.1f of the map's way",
        ofLine(recording.Pings().Bytes()), ofLine(recording.Series().Bytes()),
        ofLine(Page().Map().Chart().Way().Bytes()));
    const qint64 kept = Resident() - m_started;
    QVERIFY2(kept < mostKept + m_shape.lines * mostKeptOfLine / 1000000, qPrintable(QString::number(kept)));
}

void tst_SurveyLongLog::scrubs()
{
    std::minstd_rand random(7);
    const ZrWaterfallLoader& loader = *Page().Sonar().Loader();
    const i64 before = loader.LinesRead();
    long_log::Turns turns;
    turns.Begin();
    for (int i = 0; i < places; ++i) {
        const auto ping = static_cast<double>(random() % static_cast<unsigned>(m_shape.lines));
        Page().GoTo(Page().Recording()->TimeOfPing(ping));
        QTRY_VERIFY_WITH_TIMEOUT(!loader.IsLoading(), Patience());
        QVERIFY(std::fabs(Page().Recording()->PingAt(Page().Clock().Time()) - ping) < 1e-3);
    }
    turns.End();
    CheckPauses("scrubbing", turns);
    // Somewhere else each time, so that lines had to come.
    QVERIFY(loader.LinesRead() - before > places * 100);
    CheckMemory("scrubbed", Most());
}

void tst_SurveyLongLog::exports()
{
    const ZrSteadyTime& times = *Page().Recording()->Times();
    QSignalSpy done(&Page().Export(), &ReviewExport::Done);
    long_log::Turns turns;
    turns.Begin();
    Page().Export().SetPart(Page().Recording(), times.Begin(), times.End());
    const std::pair<int, const char*> files[]
        = {{ZrSurveyExport::events, "events.csv"}, {ZrSurveyExport::track, "long.gpx"},
            {ZrSurveyExport::track, "long.kml"}, {ZrSurveyExport::records, "records.csv"}};
    for (const auto& file : files) {
        const QString path = m_folder.filePath(QString::fromLatin1(file.second));
        const int before = done.size();
        QElapsedTimer clock;
        clock.start();
        QVERIFY(Page().Export().Write(file.first, path));
        QVERIFY(done.size() > before || done.wait(Patience()));
        QVERIFY(done.last()[0].toBool());
        qInfo("%s: %.1f s, %lld MB", file.second, static_cast<double>(clock.elapsed()) / 1000.0,
            QFileInfo(path).size() / 1000000);
        QVERIFY(QFileInfo(path).size() > (file.first == ZrSurveyExport::events ? 10 : 100000));
        QVERIFY(QFile::remove(path));
        CheckMemory("exported", Most());
    }
    turns.End();
    CheckPauses("exporting", turns);
}

GL_TEST_MAIN(tst_SurveyLongLog)
#include "tst_SurveyLongLog.moc"
