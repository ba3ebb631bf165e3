// A recording on a map: made in a worker, and what a finger hits.

#include "CountedNew.h"
#include "ZrKit/chart/ZrRecordingChart.h"
#include "ZrKit/map/ZrMapObstacles.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/planning/ZrPlanRecord.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrSonarTestLog.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrWpts.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

using sonar_test::Log;
using sonar_test::SonarLine;

namespace {

constexpr int patience = 60000; ///< milliseconds
constexpr int million = 1000000;

} // namespace

class tst_ZrRecordingChart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void nothing();
    void wayAndVehicle();
    void cursorBeforeItIsBuilt();
    void planWithItsTurns();
    void eventsAndFingers();
    void withoutPositions();
    void anotherMeanwhile();
    void nullMeanwhile();
    void goneMeanwhile();
    void millionPositions();

private:
    QString File(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }

    std::shared_ptr<ZrSurveyRecording> Load(const QString& path) const
    {
        auto recording = std::make_shared<ZrSurveyRecording>();
        if (!recording->Load(path))
            qWarning("%s", qPrintable(recording->Error()));
        return recording;
    }

    std::shared_ptr<ZrSurveyRecording> LineAt(const char* name, ZrGeoPoint start, int pings = 100) const
    {
        SonarLine line;
        line.start = start;
        line.pings = pings;
        line.isThere = [](int, eSonarSide) { return false; };
        return sonar_test::WriteLine(File(name), line) ? Load(File(name)) : nullptr;
    }

    QTemporaryDir m_folder;
    std::shared_ptr<ZrSurveyRecording> m_long; ///< of a million positions
};

void tst_ZrRecordingChart::initTestCase()
{
    QVERIFY(m_folder.isValid());
    ZrTheme::dp = 1.0F;
    Log log(File("long.log"));
    ZrNavRecord nav;
    nav.depth = 10.0F;
    for (int i = 0; i < million; ++i) {
        nav.latitude = 44.0 + 1e-6 * i;
        nav.longitude = -63.0 + 1e-3 * std::sin(i * 1e-3);
        log.AddNav(sonar_test::startTime + i * 0.1, nav);
    }
    QVERIFY(log.Commit());
    m_long = Load(File("long.log"));
    QCOMPARE(m_long->Series().Count(), std::size_t(million));
}

void tst_ZrRecordingChart::nothing()
{
    ZrRecordingChart chart;
    QVERIFY(!chart.IsBuilding() && !chart.HasOrigin());
    QCOMPARE(chart.Layers().size(), 5);
    chart.SetCursor(5.0);
    chart.ShowEvents();
    chart.Restyle();
    QVERIFY(std::isnan(chart.Vehicle().x()));
    QVERIFY(std::isnan(chart.ToWorld({44.0, -63.0}).x()));
    QVERIFY(chart.Bounds().isNull());
    ZrMapView view;
    view.SetSize(100, 100);
    QVERIFY(std::isnan(chart.TimeAt(view, {50, 50}, 1000.0, 1000.0)));
    QCOMPARE(chart.EventAt(view, {50, 50}, 1000.0), -1);
    chart.SetRecording(nullptr);
    QVERIFY(!chart.IsBuilding());
}

void tst_ZrRecordingChart::wayAndVehicle()
{
    const auto recording = LineAt("line.log", {44.0, -63.0});
    QVERIFY(recording);
    ZrRecordingChart chart;
    QSignalSpy built(&chart, &ZrRecordingChart::Built);
    QSignalSpy changed(&chart, &ZrRecordingChart::Changed);
    chart.SetRecording(recording);
    QVERIFY(chart.IsBuilding());
    QVERIFY(!chart.HasOrigin());
    QVERIFY(built.wait(patience));
    QVERIFY(!chart.IsBuilding());
    QCOMPARE(chart.Way().Count(), i64(100));
    // 99 steps of 0.15 m to the east.
    QVERIFY2(std::fabs(chart.Bounds().width() - 14.85) < 0.05,
        qPrintable(QString::number(chart.Bounds().width())));
    changed.clear();
    const double middle = recording->Times()->Begin() + 5.0;
    chart.SetCursor(middle);
    QVERIFY(!changed.isEmpty());
    QCOMPARE(chart.Vehicle(), chart.ToWorld(recording->PositionAt(middle)));
    // Another recording elsewhere: nothing of the first is left.
    chart.SetRecording(LineAt("other.log", {-33.0, 151.0}, 20));
    QVERIFY(chart.Way().Count() == 0 && std::isnan(chart.Vehicle().x()));
    QVERIFY(built.wait(patience));
    QCOMPARE(chart.Way().Count(), i64(20));
    QVERIFY(chart.Grid().Projection().falseNorth > 0.0);
}

void tst_ZrRecordingChart::cursorBeforeItIsBuilt()
{
    const auto recording = LineAt("line.log", {44.0, -63.0});
    ZrRecordingChart chart;
    QSignalSpy built(&chart, &ZrRecordingChart::Built);
    chart.SetRecording(recording);
    const double end = recording->Times()->End();
    chart.SetCursor(end);
    QVERIFY(std::isnan(chart.Vehicle().x()));
    QVERIFY(built.wait(patience));
    QCOMPARE(chart.Vehicle(), chart.ToWorld(recording->PositionAt(end)));
}

/// A right angle of 200 m legs with a radius of 50 m: 2 · 150 m straight, and a quarter of a circle.
void tst_ZrRecordingChart::planWithItsTurns()
{
    const ZrLocalFrame frame({44.0, -63.0});
    ZrWpts route;
    for (const ZrLocalPoint at : {ZrLocalPoint{0, 0}, ZrLocalPoint{0, 200}, ZrLocalPoint{200, 200}}) {
        const ZrGeoPoint place = frame.ToGeo(at);
        route.Add(place.lat, place.lng, eZrWptBlue, ZrWpts::eAddTail);
    }
    route.GetAt(route.FindIndex(1))->r = 50.0;
    const QString path = File("planned.log");
    SonarLine line;
    line.pings = 10;
    QVERIFY(
        Log(path).AddItem(rtMissionPlan, 0, 0, line.time, ZrPlanRecord::Encode(route)).Add(line).Commit());
    const auto recording = Load(path);
    QCOMPARE(recording->Plan().size(), std::size_t(3));
    QCOMPARE(recording->PlanWay().size(), std::size_t(2));
    ZrRecordingChart chart;
    QSignalSpy built(&chart, &ZrRecordingChart::Built);
    chart.SetRecording(recording);
    QVERIFY(built.wait(patience));
    const ZrTrackLod& way = chart.Plan();
    QVERIFY2(way.Count() > 15, qPrintable(QString::number(way.Count())));
    double length = 0.0;
    double nearest = 1e9;
    const QPointF corner = chart.ToWorld(recording->Plan()[1]);
    for (i64 i = 0; i < way.Count(); ++i) {
        if (i > 0)
            length += std::hypot((way[i] - way[i - 1]).x(), (way[i] - way[i - 1]).y());
        nearest = std::min(nearest, std::hypot((way[i] - corner).x(), (way[i] - corner).y()));
    }
    QVERIFY2(std::fabs(length - (300.0 + 50.0 * std::acos(-1.0) / 2.0)) < 0.5,
        qPrintable(QString::number(length)));
    // The arc passes 50 · (√2 − 1) m from the corner.
    QVERIFY2(std::fabs(nearest - 20.71) < 0.2, qPrintable(QString::number(nearest)));
    // Texts keep clear of its waypoints, also of this one beside the way.
    ZrMapView view;
    view.SetSize(400, 400);
    view.SetCentre(corner);
    view.SetScale(1.0);
    ZrMapObstacles obstacles;
    obstacles.m_markers = chart.Marks();
    obstacles.Look(view, 1.0);
    QVERIFY(obstacles.HasMark(QRectF(198, 198, 4, 4)));
    QVERIFY(!obstacles.HasMark(QRectF(218, 198, 4, 4)));
}

void tst_ZrRecordingChart::eventsAndFingers()
{
    const auto recording = LineAt("line.log", {44.0, -63.0});
    ZrRecordingChart chart;
    QSignalSpy built(&chart, &ZrRecordingChart::Built);
    chart.SetRecording(recording);
    QVERIFY(built.wait(patience));
    ZrMapView view;
    view.SetSize(400, 400);
    view.SetCentre(chart.Bounds().center());
    view.SetScale(0.1);
    const ZrSteadyTime& times = *recording->Times();
    const QPointF at = view.ToPixel(chart.ToWorld(recording->PositionAt(times.Times()[30])));
    QCOMPARE(chart.TimeAt(view, at + QPointF(0.3, 5.0), 8.0, 8.0), times.Times()[30]);
    QVERIFY(std::isnan(chart.TimeAt(view, at + QPointF(0.0, 9.0), 8.0, 8.0)));
    // An event goes before the place of the way that is nearer.
    recording->Events().Add(ZrLogEvt(times.LogTime(times.Times()[33]), esUser, QStringLiteral("something")));
    QCOMPARE(chart.EventAt(view, at, 100.0), -1);
    chart.ShowEvents();
    QCOMPARE(chart.EventAt(view, at, 100.0), 0);
    const double time = chart.TimeAt(view, at, 8.0, 8.0);
    QVERIFY(std::fabs(time - times.Times()[33]) < 1e-3);
    QCOMPARE(chart.TimeAt(view, at, 8.0, 0.5), times.Times()[30]);
}

void tst_ZrRecordingChart::withoutPositions()
{
    const QString path = File("nowhere.log");
    SonarLine line;
    line.hasNav = [](int) { return false; };
    QVERIFY(sonar_test::WriteLine(path, line));
    ZrRecordingChart chart;
    QSignalSpy built(&chart, &ZrRecordingChart::Built);
    chart.SetRecording(Load(path));
    QVERIFY(built.wait(patience));
    QVERIFY(!chart.HasOrigin());
    chart.SetCursor(1.0);
    chart.ShowEvents();
    QVERIFY(std::isnan(chart.Vehicle().x()));
    QVERIFY(chart.Bounds().isNull());
}

/// Told once, of the recording set last.
void tst_ZrRecordingChart::anotherMeanwhile()
{
    const auto recording = LineAt("line.log", {44.0, -63.0});
    ZrRecordingChart chart;
    QSignalSpy built(&chart, &ZrRecordingChart::Built);
    chart.SetRecording(m_long);
    chart.SetRecording(m_long);
    chart.SetRecording(recording);
    QVERIFY(chart.IsBuilding());
    QTRY_VERIFY_WITH_TIMEOUT(!chart.IsBuilding(), patience);
    QCOMPARE(built.size(), 1);
    QCOMPARE(chart.Way().Count(), i64(100));
    // The work that was ended has let go of its recording.
    QCOMPARE(m_long.use_count(), 1L);
}

void tst_ZrRecordingChart::nullMeanwhile()
{
    ZrRecordingChart chart;
    QSignalSpy built(&chart, &ZrRecordingChart::Built);
    chart.SetRecording(m_long);
    chart.SetRecording(nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(!chart.IsBuilding(), patience);
    QCOMPARE(built.size(), 0);
    QVERIFY(chart.Way().Count() == 0 && !chart.HasOrigin());
}

void tst_ZrRecordingChart::goneMeanwhile()
{
    {
        ZrRecordingChart chart;
        chart.SetRecording(m_long);
    }
    QCOMPARE(m_long.use_count(), 1L);
}

/// The thread of the window takes over what was made; it makes nothing of it.
void tst_ZrRecordingChart::millionPositions()
{
    ZrRecordingChart chart;
    QSignalSpy built(&chart, &ZrRecordingChart::Built);
    const std::size_t before = counted_new::Bytes();
    chart.SetRecording(m_long);
    QVERIFY(chart.Way().Count() == 0);
    QVERIFY(built.wait(patience));
    const std::size_t bytes = counted_new::Bytes() - before;
    QCOMPARE(chart.Way().Count(), i64(million));
    QVERIFY2(bytes < 65536, qPrintable(QString::number(bytes)));
    chart.SetCursor(m_long->Times()->End());
    QVERIFY(std::isfinite(chart.Vehicle().x()));
}

QTEST_MAIN(tst_ZrRecordingChart)
#include "tst_ZrRecordingChart.moc"
