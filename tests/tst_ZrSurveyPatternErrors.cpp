// What a survey pattern refuses, in which words, and that nothing is left of the plan before.

#include "GeoPlane.h"
#include "ZrKit/planning/ZrIntervals.h"
#include "ZrKit/planning/ZrSurveyPattern.h"
#include "ZrKit/planning/ZrSurveyRing.h"

#include <QElapsedTimer>
#include <QtTest/QtTest>

#include <functional>
#include <limits>

namespace {

using Settings = ZrSurveyPatternSettings;
using Change = std::function<void(Settings&)>;

constexpr double nan_ = std::numeric_limits<double>::quiet_NaN();
constexpr double inf_ = std::numeric_limits<double>::infinity();

/// Corners by metres around 48 N.
ZrArea Around(const Plane& ring)
{
    return {QStringLiteral("area"), GeoPlane({48.4789, -68.5147}).From(ring)};
}

ZrArea Square(double side)
{
    const double half = side / 2.0;
    return Around({{-half, -half}, {-half, half}, {half, half}, {half, -half}});
}

/// Teeth of 1 m with gaps of 1 m.
Plane Comb(int teeth, double height)
{
    Plane ring{{2.0 * teeth, -10.0}, {0.0, -10.0}};
    for (int i = 0; i < teeth; ++i) {
        ring.push_back({2.0 * i, 0.0});
        ring.push_back({2.0 * i, height});
        ring.push_back({2.0 * i + 1.0, height});
        ring.push_back({2.0 * i + 1.0, 0.0});
    }
    ring.push_back({2.0 * teeth, 0.0});
    return ring;
}

QVector<QPair<double, double>> Pairs(const ZrIntervals& intervals)
{
    QVector<QPair<double, double>> pairs;
    for (const ZrInterval& interval : intervals.All())
        pairs.append({interval.from, interval.to});
    return pairs;
}

} // namespace

Q_DECLARE_METATYPE(ZrArea)
Q_DECLARE_METATYPE(Change)

class tst_ZrSurveyPatternErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areas_data();
    void areas();
    void goodAreas_data();
    void goodAreas();
    void settings_data();
    void settings();
    void tooManyLines();
    void manyCorners();
    void marginLeavesNothing();
    void failureEmptiesThePlan();
    void intervals();
};

void tst_ZrSurveyPatternErrors::areas_data()
{
    QTest::addColumn<ZrArea>("area");
    QTest::addColumn<QString>("error");
    const auto geo = [](std::vector<ZrGeoPoint> ring) { return ZrArea{QString(), std::move(ring)}; };
    const QString few = QStringLiteral("The area has fewer than three corners.");
    const QString line = QStringLiteral("The corners of the area lie on one line.");
    const QString meet = QStringLiteral("The edges of the area that begin at ");
    QTest::newRow("empty") << geo({}) << few;
    QTest::newRow("one corner") << geo({{1, 2}}) << few;
    QTest::newRow("two corners") << geo({{1, 2}, {1, 2.01}}) << few;
    QTest::newRow("two corners and the first again") << geo({{1, 2}, {1, 2.01}, {1, 2}}) << few;
    QTest::newRow("one place, many times") << geo({{1, 2}, {1, 2}, {1, 2}, {1, 2}}) << few;
    QTest::newRow("NaN latitude") << geo({{1, 2}, {nan_, 2.01}, {1.01, 2}})
                                  << QStringLiteral("Corner 2 of the area is no position on the earth.");
    QTest::newRow("NaN longitude") << geo({{1, nan_}, {1, 2.01}, {1.01, 2}})
                                   << QStringLiteral("Corner 1 of the area is no position on the earth.");
    QTest::newRow("all NaN") << geo({{nan_, nan_}, {nan_, nan_}, {nan_, nan_}})
                             << QStringLiteral("Corner 1 of the area is no position on the earth.");
    QTest::newRow("infinite") << geo({{1, 2}, {1, 2.01}, {inf_, 2}})
                              << QStringLiteral("Corner 3 of the area is no position on the earth.");
    QTest::newRow("latitude 91") << geo({{91, 2}, {1, 2.01}, {1.01, 2}})
                                 << QStringLiteral("Corner 1 of the area is no position on the earth.");
    QTest::newRow("longitude -180.1") << geo({{1, -180.1}, {1, 2.01}, {1.01, 2}})
                                      << QStringLiteral("Corner 1 of the area is no position on the earth.");
    QTest::newRow("the pole") << geo({{90, 0}, {89.9, 0}, {89.9, 90}})
                              << QStringLiteral("Corner 1 of the area lies beyond 89 degrees of latitude.");
    QTest::newRow("around the pole") << geo({{-88.99, 0}, {-88.99, 120}, {-88.99, -120}})
                                     << QStringLiteral(
                                            "The area is too large: corner 2 lies more than 100 km, or "
                                            "15 degrees of longitude, from its middle.");
    QTest::newRow("half the earth") << geo({{-40, -80}, {40, -80}, {40, 80}, {-40, 80}})
                                    << QStringLiteral(
                                           "The area is too large: corner 1 lies more than 100 km, or "
                                           "15 degrees of longitude, from its middle.");
    QTest::newRow("250 km") << geo({{0, 0}, {2.3, 0}, {2.3, 0.1}})
                            << QStringLiteral("The area is too large: corner 1 lies more than 100 km, or 15 "
                                              "degrees of longitude, from its middle.");
    QTest::newRow("on a meridian") << geo({{1, 2}, {1.01, 2}, {1.02, 2}}) << line;
    QTest::newRow("on a parallel") << geo({{60, 2}, {60, 2.3}, {60, 2.1}, {60, 2.05}}) << line;
    QTest::newRow("on a parallel across the antimeridian")
        << geo({{60, 179.9}, {60, -179.8}, {60, 180}}) << line;
    QTest::newRow("on a slant") << Around({{0, 0}, {100, 50}, {300, 150}}) << line;
    QTest::newRow("half a millimetre wide") << Around({{0, 0}, {100, 0}, {50, 0.0005}}) << line;
    QTest::newRow("there and back") << Around({{0, 0}, {100, 0}, {50, 0}, {20, 0}}) << line;
    QTest::newRow("bow tie") << Around({{0, 0}, {100, 100}, {100, 0}, {0, 100}}) << meet;
    QTest::newRow("star of one stroke")
        << Around({{0, 100}, {59, -81}, {-95, 31}, {95, 31}, {-59, -81}}) << meet;
    QTest::newRow("spike") << Around({{0, 0}, {100, 0}, {100, 50}, {100, 20}, {0, 100}}) << meet;
    QTest::newRow("loop") << Around({{0, 0}, {100, 0}, {100, 100}, {50, -50}, {0, 100}}) << meet;
    QTest::newRow("corner on an edge") << Around({{0, 0}, {100, 0}, {50, 50}, {50, 0}, {0, 100}}) << meet;
    QTest::newRow("edges along each other")
        << Around({{0, 0}, {100, 0}, {100, 100}, {60, 100}, {60, 0}, {40, 0}, {40, 100}, {0, 100}}) << meet;
    QTest::newRow("one corner twice")
        << geo({{1, 2}, {1.01, 2}, {1.01, 2.01}, {1, 2}, {0.99, 2}, {0.99, 1.99}}) << meet;
}

void tst_ZrSurveyPatternErrors::areas()
{
    QFETCH(ZrArea, area);
    QFETCH(QString, error);
    ZrSurveyPattern pattern;
    QVERIFY(!pattern.Make(area, {}));
    if (error.endsWith(QLatin1Char('.'))) {
        QCOMPARE(pattern.Error(), error);
    } else {
        QVERIFY2(pattern.Error().startsWith(error), qPrintable(pattern.Error()));
        QVERIFY(pattern.Error().endsWith(QStringLiteral(" cross or touch each other.")));
    }
    QVERIFY(pattern.Plan().waypoints.empty());
}

void tst_ZrSurveyPatternErrors::goodAreas_data()
{
    QTest::addColumn<ZrArea>("area");
    const auto geo = [](std::vector<ZrGeoPoint> ring) { return ZrArea{QString(), std::move(ring)}; };
    QTest::newRow("triangle") << Around({{0, 0}, {100, 0}, {0, 100}});
    QTest::newRow("thin") << Around({{0, 0}, {1000, 0}, {1000, 0.1}, {0, 0.1}});
    QTest::newRow("corner on a straight edge") << Around({{0, 0}, {50, 0}, {100, 0}, {0, 100}});
    QTest::newRow("closed ring") << Around({{0, 0}, {100, 0}, {0, 100}, {0, 0}});
    QTest::newRow("two millimetres apart")
        << Around({{0, 0}, {100, 0}, {100, 100}, {60, 100}, {50, 0.002}, {40, 100}, {0, 100}});
    QTest::newRow("comb") << Around(Comb(20, 100.0));
    QTest::newRow("at 88.99 degrees") << geo({{88.98, 10}, {88.99, 10}, {88.99, 10.5}, {88.98, 10.5}});
    QTest::newRow("across the antimeridian") << geo({{1, 179.99}, {1, -179.99}, {1.01, 180}});
    QTest::newRow("on the antimeridian, both ways of writing") << geo({{1, 180}, {1.01, -180}, {1, -179.99}});
}

void tst_ZrSurveyPatternErrors::goodAreas()
{
    QFETCH(ZrArea, area);
    ZrSurveyPattern pattern;
    QVERIFY2(pattern.Make(area, {}), qPrintable(pattern.Error()));
    QVERIFY(pattern.Error().isEmpty());
    QVERIFY(pattern.Plan().lineLength > 0.0);
}

void tst_ZrSurveyPatternErrors::settings_data()
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
        "spacing negative", [](Settings& s) { s.lineSpacing = -10.0; },
        "The line spacing must be a number of metres of 0.01 or more; it is -10.");
    row(
        "spacing NaN", [](Settings& s) { s.lineSpacing = nan_; },
        "The line spacing must be a number of metres of 0.01 or more; it is nan.");
    row(
        "spacing infinite", [](Settings& s) { s.lineSpacing = inf_; },
        "The line spacing must be a number of metres of 0.01 or more; it is inf.");
    row(
        "spacing tiny", [](Settings& s) { s.lineSpacing = 1e-300; },
        "The line spacing must be a number of metres of 0.01 or more; it is 1e-300.");
    row(
        "alternate negative", [](Settings& s) { s.alternateSpacing = -1.0; },
        "The alternate spacing must be a number of metres of 0.01 or more; it is -1.");
    row(
        "alternate NaN", [](Settings& s) { s.alternateSpacing = nan_; },
        "The alternate spacing must be a number of metres of 0.01 or more; it is nan.");
    row(
        "cross NaN", [](Settings& s) { s.crossSpacing = nan_; },
        "The cross spacing must be a number of metres of 0.01 or more; it is nan.");
    row(
        "cross tiny", [](Settings& s) { s.crossSpacing = 0.001; },
        "The cross spacing must be a number of metres of 0.01 or more; it is 0.001.");
    row(
        "heading infinite", [](Settings& s) { s.heading = inf_; },
        "The heading must be a number of degrees.");
    row(
        "margin negative", [](Settings& s) { s.margin = -1.0; },
        "The margin must be a number from 0 to 10000; it is -1.");
    row(
        "margin NaN", [](Settings& s) { s.margin = nan_; },
        "The margin must be a number from 0 to 10000; it is nan.");
    row(
        "smallest length NaN", [](Settings& s) { s.minLength = nan_; },
        "The smallest length must be a number from 0 to 1e+06; it is nan.");
    row(
        "overshoot negative", [](Settings& s) { s.overshoot = -0.1; },
        "The overshoot must be a number from 0 to 10000; it is -0.1.");
    row(
        "overshoot huge", [](Settings& s) { s.overshoot = 10001.0; },
        "The overshoot must be a number from 0 to 10000; it is 10001.");
    row(
        "radius NaN", [](Settings& s) { s.turnRadius = nan_; },
        "The turn radius must be a number from 0 to 10000; it is nan.");
    row(
        "radius infinite", [](Settings& s) { s.turnRadius = inf_; },
        "The turn radius must be a number from 0 to 10000; it is inf.");
    row(
        "speed NaN", [](Settings& s) { s.speed = nan_; },
        "The speed must be a number of 0 or more; it is nan.");
    row(
        "speed negative", [](Settings& s) { s.speed = -1.0; },
        "The speed must be a number of 0 or more; it is -1.");
    row(
        "depth NaN", [](Settings& s) { s.z = nan_; }, "Depth and altitude must be numbers.");
    row(
        "altitude infinite", [](Settings& s) { s.alt = -inf_; }, "Depth and altitude must be numbers.");
    row(
        "order 4", [](Settings& s) { s.order = static_cast<Settings::eOrder>(4); },
        "There is no line order 4.");
    row(
        "order -1", [](Settings& s) { s.order = static_cast<Settings::eOrder>(-1); },
        "There is no line order -1.");
    row(
        "entry 4", [](Settings& s) { s.entry = static_cast<Settings::eEntry>(4); },
        "There is no entry corner 4.");
    row(
        "ends 2", [](Settings& s) { s.ends = static_cast<Settings::eEnds>(2); },
        "There is no kind of line ends 2.");
}

void tst_ZrSurveyPatternErrors::settings()
{
    QFETCH(Change, change);
    QFETCH(QString, error);
    Settings settings;
    change(settings);
    ZrSurveyPattern pattern;
    QVERIFY(!pattern.Make(Square(100.0), settings));
    QCOMPARE(pattern.Error(), error);
    // Faults of the area come second.
    QVERIFY(!pattern.Make({}, settings));
    QCOMPARE(pattern.Error(), error);
}

void tst_ZrSurveyPatternErrors::tooManyLines()
{
    const QString error
        = QStringLiteral("The area would need more than 10000 lines. Choose a larger spacing.");
    Settings settings;
    settings.heading = 0.0;
    settings.lineSpacing = 0.01;
    ZrSurveyPattern pattern;
    QElapsedTimer timer;
    timer.start();
    QVERIFY2(pattern.Make(Square(100.0), settings), qPrintable(pattern.Error()));
    QCOMPARE(static_cast<int>(pattern.Plan().lines.size()), ZrSurveyPattern::maxLines);
    QVERIFY(!pattern.Make(Square(100.1), settings));
    QCOMPARE(pattern.Error(), error);
    QVERIFY(!pattern.Make(Square(100000.0), settings));
    QCOMPARE(pattern.Error(), error);
    settings.lineSpacing = 10.0;
    settings.crossSpacing = 0.01;
    QVERIFY(!pattern.Make(Square(100000.0), settings));
    QCOMPARE(pattern.Error(), error);
    // Few lines, but of many pieces each.
    settings.crossSpacing = 0.0;
    settings.heading = 90.0;
    settings.lineSpacing = 1.0;
    QVERIFY(!pattern.Make(Around(Comb(200, 100.0)), settings));
    QCOMPARE(pattern.Error(), error);
    settings.lineSpacing = 4.0;
    QVERIFY2(pattern.Make(Around(Comb(200, 100.0)), settings), qPrintable(pattern.Error()));
    QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
}

void tst_ZrSurveyPatternErrors::manyCorners()
{
    Plane ring;
    const int count = static_cast<int>(ZrSurveyRing::maxCorners);
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * geoPi * i / count;
        ring.push_back({3000.0 * std::cos(angle), 3000.0 * std::sin(angle)});
    }
    ZrSurveyPattern pattern;
    QElapsedTimer timer;
    timer.start();
    ZrArea area = Around(ring);
    Settings settings;
    settings.lineSpacing = 100.0;
    settings.heading = 17.0;
    QVERIFY2(pattern.Make(area, settings), qPrintable(pattern.Error()));
    QCOMPARE(pattern.Plan().lines.size(), std::size_t{60});
    QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
    area.ring.push_back(area.ring.front());
    QVERIFY(!pattern.Make(area, settings));
    QCOMPARE(pattern.Error(), QStringLiteral("The area has 10001 corners, more than 10000."));
}

void tst_ZrSurveyPatternErrors::marginLeavesNothing()
{
    Settings settings;
    settings.heading = 0.0;
    settings.margin = 51.0;
    ZrSurveyPattern pattern;
    QVERIFY(!pattern.Make(Square(100.0), settings));
    QCOMPARE(pattern.Error(), QStringLiteral("Within the margin of 51 m no line is 0.001 m long."));
    settings.margin = 40.0;
    settings.minLength = 25.0;
    QVERIFY(!pattern.Make(Square(100.0), settings));
    QCOMPARE(pattern.Error(), QStringLiteral("Within the margin of 40 m no line is 25 m long."));
    settings.minLength = 15.0;
    QVERIFY(pattern.Make(Square(100.0), settings));
}

void tst_ZrSurveyPatternErrors::failureEmptiesThePlan()
{
    ZrSurveyPattern pattern;
    QVERIFY(pattern.Make(Square(100.0), {}));
    QVERIFY(!pattern.Plan().waypoints.empty());
    QVERIFY(!pattern.Make({}, {}));
    QVERIFY(pattern.Plan().waypoints.empty() && pattern.Plan().lines.empty());
    QCOMPARE(pattern.Plan().pathLength, 0.0);
    QVERIFY(pattern.Make(Square(100.0), {}));
    QVERIFY(pattern.Error().isEmpty());
}

void tst_ZrSurveyPatternErrors::intervals()
{
    using List = QVector<QPair<double, double>>;
    QCOMPARE(Pairs(ZrIntervals::Union({})), List());
    QCOMPARE(Pairs(ZrIntervals::Union({{5, 6}, {1, 3}, {2, 4}, {1.5, 2}})), (List{{1, 4}, {5, 6}}));
    QCOMPARE(Pairs(ZrIntervals::Union({{1, 2}, {2, 3}})), (List{{1, 3}}));
    QCOMPARE(Pairs(ZrIntervals::Union({{1, 2}, {2.5, 3}}, 0.5)), (List{{1, 3}}));
    QCOMPARE(Pairs(ZrIntervals::Union({{1, 2}, {2.6, 3}}, 0.5)), (List{{1, 2}, {2.6, 3}}));
    const ZrIntervals some = ZrIntervals::Union({{0, 10}, {20, 30}, {40, 50}});
    QCOMPARE(Pairs(some.Without({})), Pairs(some));
    QCOMPARE(Pairs(ZrIntervals().Without(some)), List());
    QCOMPARE(Pairs(some.Without(some)), List());
    QCOMPARE(Pairs(some.Without(ZrIntervals::Union({{-5, 2}, {4, 5}, {8, 22}, {29, 60}}))),
        (List{{2, 4}, {5, 8}, {22, 29}}));
    QCOMPARE(Pairs(some.Without(ZrIntervals::Union({{10, 20}, {30, 40}}))), Pairs(some));
    QCOMPARE(Pairs(some.Without(ZrIntervals::Union({{5, 45}}))), (List{{0, 5}, {45, 50}}));
}

QTEST_APPLESS_MAIN(tst_ZrSurveyPatternErrors)
#include "tst_ZrSurveyPatternErrors.moc"
