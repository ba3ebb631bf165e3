// Corridors along guides of many shapes. Guides are drawn and results are measured on a plane that shares no
// formula with the planner.

#include "GeoPlane.h"
#include "ZrKit/planning/ZrSurveyCorridor.h"

#include <QElapsedTimer>
#include <QtTest/QtTest>

#include <cmath>
#include <functional>
#include <limits>

namespace {

using Settings = ZrSurveyCorridorSettings;
using Change = std::function<void(Settings&)>;
using Guide = std::vector<ZrGeoPoint>;

constexpr double nan_ = std::numeric_limits<double>::quiet_NaN();
constexpr double inf_ = std::numeric_limits<double>::infinity();

} // namespace

Q_DECLARE_METATYPE(Change)
Q_DECLARE_METATYPE(Guide)

class tst_ZrSurveyCorridorErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void guides_data();
    void guides();
    void settings_data();
    void settings();
    void absurdSizes();
    void failureEmptiesThePlan();

private:
    GeoPlane m_plane{{48.4789, -68.5147}};
};

void tst_ZrSurveyCorridorErrors::guides_data()
{
    QTest::addColumn<Guide>("guide");
    QTest::addColumn<QString>("error"); // empty: a good guide
    const QString few = QStringLiteral("The guide has fewer than two different points.");
    QTest::newRow("empty") << Guide{} << few;
    QTest::newRow("one point") << Guide{{1, 2}} << few;
    QTest::newRow("one place, three times") << Guide{{1, 2}, {1, 2}, {1, 2}} << few;
    QTest::newRow("NaN") << Guide{{1, 2}, {nan_, 2}, {2, 2}}
                         << QStringLiteral("Point 2 of the guide is no position on the earth.");
    QTest::newRow("infinite") << Guide{{1, inf_}, {1, 2}}
                              << QStringLiteral("Point 1 of the guide is no position on the earth.");
    QTest::newRow("pole") << Guide{{88.9, 2}, {-89.5, 2}}
                          << QStringLiteral("Point 2 of the guide lies beyond 89 degrees of latitude.");
    QTest::newRow("too long") << Guide{{1, 2}, {3, 2}}
                              << QStringLiteral("The guide is too long: point 1 lies more than 100 km, or 15 "
                                                "degrees of longitude, from its middle.");
    QTest::newRow("there and back") << Guide{{1, 2}, {1.01, 2},
        {1, 2}} << QStringLiteral("The guide bends by more than 150 degrees at 1.010000, 2.000000.");
    QTest::newRow("points repeated") << Guide{{1, 2}, {1, 2}, {1.01, 2}, {1.01, 2}} << QString();
    QTest::newRow("straight on") << Guide{{1, 2}, {1.01, 2}, {1.02, 2}, {1.03, 2}} << QString();
    QTest::newRow("crosses itself") << Guide{{1, 2}, {1.01, 2}, {1.01, 2.01}, {1.005, 2.01}, {1.005, 1.99}}
                                    << QString();
    QTest::newRow("across the antimeridian") << Guide{{1, 179.99}, {1.001, 180}, {1, -179.99}} << QString();
}

void tst_ZrSurveyCorridorErrors::guides()
{
    QFETCH(Guide, guide);
    QFETCH(QString, error);
    ZrSurveyCorridor corridor;
    QCOMPARE(corridor.Make(guide, {}), error.isEmpty());
    QCOMPARE(corridor.Error(), error);
    QCOMPARE(corridor.Plan().waypoints.empty(), !error.isEmpty());
    if (error.isEmpty())
        QCOMPARE(corridor.Plan().lines.size(), std::size_t{3});
}

void tst_ZrSurveyCorridorErrors::settings_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, Change change, const char* error) {
        QTest::newRow(name) << std::move(change) << QString::fromUtf8(error);
    };
    row(
        "spacing 0", [](Settings& s) { s.lineSpacing = 0.0; },
        "The line spacing must be a number of metres of 0.01 or more; it is 0.");
    row(
        "spacing NaN", [](Settings& s) { s.lineSpacing = nan_; },
        "The line spacing must be a number of metres of 0.01 or more; it is nan.");
    row(
        "left negative", [](Settings& s) { s.linesLeft = -1; },
        "The number of lines beside the guide must be from 0 to 1000; it is -1.");
    row(
        "right huge", [](Settings& s) { s.linesRight = std::numeric_limits<int>::max(); },
        "The number of lines beside the guide must be from 0 to 1000; it is 2147483647.");
    row(
        "no lines",
        [](Settings& s) {
            s.linesLeft = s.linesRight = 0;
            s.centreLine = false;
        },
        "A corridor needs at least one line.");
    row(
        "too wide", [](Settings& s) { s.lineSpacing = 10001.0; },
        "The lines would lie more than 10000 m from the guide.");
    row(
        "overshoot NaN", [](Settings& s) { s.overshoot = nan_; },
        "The overshoot must be a number from 0 to 10000; it is nan.");
    row(
        "order", [](Settings& s) { s.order = static_cast<Settings::eOrder>(7); },
        "There is no line order 7.");
}

void tst_ZrSurveyCorridorErrors::settings()
{
    QFETCH(Change, change);
    QFETCH(QString, error);
    Settings settings;
    change(settings);
    ZrSurveyCorridor corridor;
    QVERIFY(!corridor.Make(m_plane.From(Plane{{0, 0}, {100, 0}}), settings));
    QCOMPARE(corridor.Error(), error);
}

void tst_ZrSurveyCorridorErrors::absurdSizes()
{
    Guide guide;
    for (int i = 0; i < ZrSurveyCorridor::maxPoints; ++i)
        guide.push_back({48.0 + 1e-6 * i, -68.0 + 2e-5 * std::sin(i / 40.0)});
    Settings settings;
    settings.lineSpacing = 1.0;
    settings.linesLeft = settings.linesRight = 20;
    ZrSurveyCorridor corridor;
    QElapsedTimer timer;
    timer.start();
    // The guide bends with a radius of 13 m; outer lines lose many legs.
    QVERIFY2(corridor.Make(guide, settings), qPrintable(corridor.Error()));
    QCOMPARE(corridor.Plan().lines.size(), std::size_t{41});
    QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
    settings.linesLeft = settings.linesRight = 50;
    QVERIFY(!corridor.Make(guide, settings));
    QCOMPARE(corridor.Error(),
        QStringLiteral("101 lines along a guide of 10000 points are more than 1000000 waypoints."));
    guide.push_back({48.1, -68.0});
    QVERIFY(!corridor.Make(guide, settings));
    QCOMPARE(corridor.Error(), QStringLiteral("The guide has 10001 points, more than 10000."));
}

void tst_ZrSurveyCorridorErrors::failureEmptiesThePlan()
{
    ZrSurveyCorridor corridor;
    QVERIFY(corridor.Make(m_plane.From(Plane{{0, 0}, {100, 0}}), {}));
    QVERIFY(!corridor.Plan().lines.empty());
    QVERIFY(!corridor.Make({}, {}));
    QVERIFY(corridor.Plan().lines.empty() && corridor.Plan().waypoints.empty());
    QVERIFY(corridor.Make(m_plane.From(Plane{{0, 0}, {100, 0}}), {}));
    QVERIFY(corridor.Error().isEmpty());
}

QTEST_APPLESS_MAIN(tst_ZrSurveyCorridorErrors)
#include "tst_ZrSurveyCorridorErrors.moc"
