// Survey lines that are planned beside the thread that shows them.

#include "ZrKit/planning/ZrSurveyPattern.h"
#include "ZrKit/planning/ZrSurveyPlanner.h"
#include "ZrUtil/ZrWpts.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <memory>

namespace {

/// A square of about \p km kilometres.
ZrArea Square(double km)
{
    const double lat = km / 111.2;
    const double lng = lat / std::cos(0.8727); // at 50 degrees north
    return {QStringLiteral("Bucht ä"),
        {{50.0, -4.0}, {50.0, -4.0 + lng}, {50.0 + lat, -4.0 + lng}, {50.0 + lat, -4.0}}};
}

ZrSurveyPatternSettings Spaced(double metres)
{
    ZrSurveyPatternSettings settings;
    settings.lineSpacing = metres;
    settings.turnRadius = 5.0;
    return settings;
}

} // namespace

class tst_ZrSurveyPlanner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty();
    void plansAsThePatternDoes();
    void corridor();
    void latestWins();
    void nobodyWaits();
    void problems_data();
    void problems();
    void tooManyWaypoints();
    void problemGoesWithThePlan();
    void endsWhilePlanning();
};

void tst_ZrSurveyPlanner::startsEmpty()
{
    const ZrSurveyPlanner planner;
    QVERIFY(planner.IsCurrent());
    QVERIFY(planner.Plan().lines.empty());
    QVERIFY(planner.Waypoints().empty());
    QCOMPARE(planner.Error(), QString());
}

void tst_ZrSurveyPlanner::plansAsThePatternDoes()
{
    ZrSurveyPlanner planner;
    QSignalSpy ready(&planner, &ZrSurveyPlanner::Ready);
    planner.Make(Square(1.0), Spaced(50.0));
    QVERIFY(!planner.IsCurrent());
    QTRY_COMPARE(ready.count(), 1);
    QVERIFY(planner.IsCurrent());
    ZrSurveyPattern pattern;
    QVERIFY(pattern.Make(Square(1.0), Spaced(50.0)));
    QCOMPARE(planner.Plan().lines.size(), pattern.Plan().lines.size());
    QVERIFY(planner.Plan().lines.size() > 15);
    // The waypoints are those of a route that it is appended to.
    ZrWpts route;
    pattern.Plan().AppendTo(route);
    QCOMPARE(static_cast<int>(planner.Waypoints().size()), route.GetCount());
    ZrListPos* pos = route.GetHeadPos();
    for (const ZrWpt& made : planner.Waypoints()) {
        const ZrWpt& wpt = *route.GetNext(pos);
        QCOMPARE(made.lat, wpt.lat);
        QCOMPARE(made.lng, wpt.lng);
        QCOMPARE(made.name, wpt.name);
        QCOMPARE(made.colour, wpt.colour);
        QCOMPARE(made.gridId, planner.Waypoints().front().gridId);
        QVERIFY(!made.gridId.isNull());
    }
}

void tst_ZrSurveyPlanner::corridor()
{
    ZrSurveyPlanner planner;
    ZrSurveyCorridorSettings settings;
    settings.linesLeft = settings.linesRight = 2;
    planner.Make({{50.0, -4.0}, {50.01, -4.0}}, settings);
    QTRY_VERIFY(planner.IsCurrent());
    QCOMPARE(planner.Plan().lines.size(), std::size_t(5));
}

/// Of a hundred steps of a slider two are planned: the first, and what the slider was left at.
void tst_ZrSurveyPlanner::latestWins()
{
    ZrSurveyPlanner planner;
    QSignalSpy ready(&planner, &ZrSurveyPlanner::Ready);
    for (int i = 0; i < 100; ++i)
        planner.Make(Square(1.0), Spaced(150.0 - i));
    QTRY_VERIFY(planner.IsCurrent());
    QCOMPARE(planner.Runs(), 2);
    QCOMPARE(ready.count(), 2);
    QCOMPARE(planner.Plan().lines.size(), std::size_t(20));
    // That of before was told in between, as one that is not current.
    planner.Make(Square(1.0), Spaced(100.0));
    planner.Make(Square(1.0), Spaced(200.0));
    QVector<bool> current;
    connect(&planner, &ZrSurveyPlanner::Ready, this, [&] { current.append(planner.IsCurrent()); });
    QTRY_VERIFY(planner.IsCurrent());
    QCOMPARE(current, QVector<bool>({false, true}));
}

/// What takes long takes long elsewhere: the plan is asked for and nothing is there when `Make` returns.
void tst_ZrSurveyPlanner::nobodyWaits()
{
    ZrSurveyPlanner planner;
    QSignalSpy ready(&planner, &ZrSurveyPlanner::Ready);
    planner.Make(Square(19.0), Spaced(2.0));
    QVERIFY(!planner.IsCurrent());
    QVERIFY(planner.Plan().lines.empty());
    QCOMPARE(ready.count(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(ready.count(), 1, 60000);
    QVERIFY(planner.Plan().lines.size() > 9000);
}

void tst_ZrSurveyPlanner::problems_data()
{
    QTest::addColumn<double>("km");
    QTest::addColumn<double>("spacing");
    QTest::addColumn<QString>("text");
    QTest::newRow("too many lines") << 50.0 << 1.0 << "more than 10000 lines";
    QTest::newRow("no spacing") << 1.0 << 0.0 << "line spacing";
    QTest::newRow("no number") << 1.0 << std::nan("") << "line spacing";
    QTest::newRow("no area") << 0.0 << 10.0 << "";
}

void tst_ZrSurveyPlanner::problems()
{
    QFETCH(double, km);
    QFETCH(double, spacing);
    QFETCH(QString, text);
    ZrSurveyPlanner planner;
    planner.Make(Square(km), Spaced(spacing));
    QTRY_VERIFY(planner.IsCurrent());
    QVERIFY(!planner.Error().isEmpty());
    QVERIFY2(planner.Error().contains(text), qPrintable(planner.Error()));
    QVERIFY(planner.Waypoints().empty());
    QVERIFY(planner.Plan().waypoints.empty());
}

/// More than a route may have are told with the limit, and not made.
void tst_ZrSurveyPlanner::tooManyWaypoints()
{
    std::vector<ZrGeoPoint> guide;
    for (int i = 0; i < 400; ++i)
        guide.push_back({50.0 + 1e-4 * i, -4.0 + (i % 2) * 1e-6});
    ZrSurveyCorridorSettings settings;
    settings.lineSpacing = 1.0;
    settings.linesLeft = settings.linesRight = 350;
    ZrSurveyPlanner planner;
    planner.Make(guide, settings);
    QTRY_VERIFY_WITH_TIMEOUT(planner.IsCurrent(), 60000);
    QVERIFY2(planner.Error().contains(QString::number(ZrSurveyPlanner::MostWaypoints)),
        qPrintable(planner.Error()));
    QVERIFY(planner.Waypoints().empty());
}

void tst_ZrSurveyPlanner::problemGoesWithThePlan()
{
    ZrSurveyPlanner planner;
    planner.Make(Square(1.0), Spaced(0.0));
    QTRY_VERIFY(!planner.Error().isEmpty());
    planner.Make(Square(1.0), Spaced(100.0));
    QTRY_VERIFY(planner.IsCurrent());
    QCOMPARE(planner.Error(), QString());
    QVERIFY(!planner.Waypoints().empty());
}

void tst_ZrSurveyPlanner::endsWhilePlanning()
{
    for (int i = 0; i < 5; ++i) {
        auto planner = std::make_unique<ZrSurveyPlanner>();
        QSignalSpy ready(planner.get(), &ZrSurveyPlanner::Ready);
        planner->Make(Square(19.0), Spaced(2.0));
        planner->Make(Square(19.0), Spaced(3.0));
        planner.reset();
        QCoreApplication::processEvents();
        QCOMPARE(ready.count(), 0);
    }
}

QTEST_GUILESS_MAIN(tst_ZrSurveyPlanner)
#include "tst_ZrSurveyPlanner.moc"
