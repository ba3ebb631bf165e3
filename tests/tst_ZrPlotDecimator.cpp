// The few points that draw a series as all of them would.

#include "ZrKit/review/ZrPlotDecimator.h"
#include "ZrKit/review/ZrTimeLine.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr float gap = std::numeric_limits<float>::quiet_NaN();

using Point = ZrPlotDecimator::Point;
using Points = std::vector<Point>;

struct Made
{
    std::shared_ptr<ZrSteadyTime> times = std::make_shared<ZrSteadyTime>();
    ZrPlotSeries series{times};

    Made() = default;

    /// A value each second.
    explicit Made(const std::vector<float>& values)
    {
        for (const float value : values)
            Add(static_cast<double>(times->Count()), value);
    }

    void Add(double time, float value)
    {
        times->Append(time);
        series.Append(value);
    }
};

std::vector<double> Edges(double begin, double end, int columns)
{
    std::vector<double> edges;
    for (int i = 0; i <= columns; ++i)
        edges.push_back(begin + (end - begin) * i / columns);
    return edges;
}

/// "x:y" of all points, "|" where the line is interrupted.
QString Text(const Points& points)
{
    QStringList parts;
    for (const Point& point : points) {
        parts << (std::isnan(point.y) ? QStringLiteral("|")
                                      : QStringLiteral("%1:%2").arg(double(point.x)).arg(double(point.y)));
    }
    return parts.join(QLatin1Char(' '));
}

/// What must hold of all results; empty when it does.
QString Faults(const Points& points, std::size_t columns)
{
    if (points.size() > 4 * columns + 2)
        return QStringLiteral("%1 points in %2 columns").arg(points.size()).arg(columns);
    float x = 0.0f;
    bool broken = true; // no interruption in front of the first point, and none twice
    std::vector<int> counts(columns + 1);
    for (const Point& point : points) {
        if (!(point.x >= x) || point.x > static_cast<float>(columns))
            return QStringLiteral("x %1 behind %2").arg(double(point.x)).arg(double(x));
        x = point.x;
        if (std::isnan(point.y) && broken)
            return QStringLiteral("interrupted twice at %1").arg(double(x));
        broken = std::isnan(point.y);
    }
    return QString();
}

/// The extents of the line in each column, as a person sees them.
std::vector<ZrPlotSeries::Extent> Seen(const Points& points, std::size_t columns)
{
    std::vector<ZrPlotSeries::Extent> seen(columns);
    for (const Point& point : points) {
        const auto column = std::min(static_cast<std::size_t>(point.x), columns - 1);
        if (!std::isnan(point.y))
            seen[column].Add({point.y, point.y});
    }
    return seen;
}

} // namespace

class tst_ZrPlotDecimator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void small_data();
    void small();
    void edgesAreInterpolated();
    void stepsThatAreTooLong();
    void nothingToDraw();
    void equalTimes();
    void atMostFourPointsAColumn_data();
    void atMostFourPointsAColumn();
    void showsWhatAllPointsShow();
    void cutGaps();
    void workFallsWhenZoomingIn();
};

void tst_ZrPlotDecimator::small_data()
{
    QTest::addColumn<QVector<float>>("values"); // a value each second
    QTest::addColumn<int>("columns"); // one for each second or more of them
    QTest::addColumn<QString>("expected");

    QTest::newRow("one") << QVector<float>{5} << 1 << QStringLiteral("0.5:5");
    QTest::newRow("two") << QVector<float>{5, 6} << 1 << QStringLiteral("0:5 1:6");
    QTest::newRow("two, wide") << QVector<float>{5, 6} << 10 << QStringLiteral("0:5 10:6");
    QTest::newRow("unknown between") << QVector<float>{1, gap, 3} << 2 << QStringLiteral("0:1 | 2:3");
    QTest::newRow("unknown first") << QVector<float>{gap, 2, 3} << 2 << QStringLiteral("1:2 2:3");
    QTest::newRow("unknown last") << QVector<float>{1, 2, gap} << 2 << QStringLiteral("0:1 1:2 |");
    QTest::newRow("all unknown") << QVector<float>{gap, gap, gap} << 2 << QString();
    QTest::newRow("column, first smallest")
        << QVector<float>{1, 5, 3, 2} << 1 << QStringLiteral("0.5:1 0.5:5 0.5:2");
    QTest::newRow("column, near the largest")
        << QVector<float>{4, 5, 1, 2} << 1 << QStringLiteral("0.5:4 0.5:5 0.5:1 0.5:2");
    QTest::newRow("column, even") << QVector<float>{4, 4, 4, 4} << 1 << QStringLiteral("0.5:4");
    QTest::newRow("column, unknown inside")
        << QVector<float>{4, gap, 1, 2} << 1 << QStringLiteral("0.5:4 0.5:1 0.5:2");
    QTest::newRow("column, unknown first")
        << QVector<float>{gap, 3, 1, 2} << 1 << QStringLiteral("0.5:1 0.5:3");
    QTest::newRow("column, unknown last")
        << QVector<float>{3, 1, 2, gap} << 1 << QStringLiteral("0.5:3 0.5:1 |");
    QTest::newRow("column, all unknown") << QVector<float>{gap, gap, gap, gap} << 1 << QString();
    QTest::newRow("columns, one unknown") << QVector<float>{1, 2, 1, gap, gap, gap, 3, 4, 3, 3} << 3
                                          << QStringLiteral("0.5:1 0.5:2 0.5:1 | 2.5:3 2.5:4 2.5:3");
}

void tst_ZrPlotDecimator::small()
{
    QFETCH(QVector<float>, values);
    QFETCH(int, columns);
    QFETCH(QString, expected);
    const Made made(std::vector<float>(values.begin(), values.end()));
    ZrPlotDecimator decimator;
    const Points points = decimator.Decimate(made.series, Edges(0.0, values.size() - 1, columns));
    QCOMPARE(Text(points), expected);
    QCOMPARE(Faults(points, static_cast<std::size_t>(columns)), QString());
}

void tst_ZrPlotDecimator::edgesAreInterpolated()
{
    const Made made({0, 10, 20, 30});
    ZrPlotDecimator decimator;
    QCOMPARE(
        Text(decimator.Decimate(made.series, Edges(0.5, 2.5, 2))), QStringLiteral("0:5 0.5:10 1.5:20 2:25"));
    // Between two records.
    QCOMPARE(Text(decimator.Decimate(made.series, Edges(1.25, 1.75, 5))), QStringLiteral("0:12.5 5:17.5"));
    QCOMPARE(Text(decimator.Decimate(made.series, Edges(1.0, 2.0, 5))), QStringLiteral("0:10 5:20"));
    // Beyond the records there is nothing.
    QCOMPARE(Text(decimator.Decimate(made.series, Edges(2.5, 10.0, 15))), QStringLiteral("0:25 1:30"));
    QCOMPARE(Text(decimator.Decimate(made.series, Edges(-2.0, 0.5, 5))), QStringLiteral("4:0 5:5"));
    QCOMPARE(Text(decimator.Decimate(made.series, Edges(4.0, 5.0, 5))), QString());
    const Made broken({0, gap, 20});
    QCOMPARE(Text(decimator.Decimate(broken.series, Edges(0.5, 1.5, 2))), QString());
}

void tst_ZrPlotDecimator::stepsThatAreTooLong()
{
    Made made;
    for (const double time : {0.0, 1.0, 10.0, 11.0})
        made.Add(time, static_cast<float>(time));
    ZrPlotDecimator decimator;
    QCOMPARE(Text(decimator.Decimate(made.series, Edges(0, 11, 11))), QStringLiteral("0:0 1:1 10:10 11:11"));
    decimator.mostStep = 5.0;
    QCOMPARE(
        Text(decimator.Decimate(made.series, Edges(0, 11, 11))), QStringLiteral("0:0 1:1 | 10:10 11:11"));
    // Nothing comes in from the other side of the gap.
    QCOMPARE(Text(decimator.Decimate(made.series, Edges(5, 11, 6))), QStringLiteral("5:10 6:11"));
    QCOMPARE(Text(decimator.Decimate(made.series, Edges(0, 5, 5))), QStringLiteral("0:0 1:1"));
}

void tst_ZrPlotDecimator::nothingToDraw()
{
    ZrPlotDecimator decimator;
    const Made made({1, 2, 3});
    QVERIFY(decimator.Decimate(ZrPlotSeries(), Edges(0, 1, 10)).empty());
    QVERIFY(decimator.Decimate(made.series, std::vector<double>()).empty());
    QVERIFY(decimator.Decimate(made.series, std::vector<double>{1.0}).empty());
    QVERIFY(decimator.Decimate(made.series, std::vector<double>{unknown, unknown}).empty());
    Made timeless;
    timeless.Add(unknown, 1.0f);
    timeless.Add(unknown, 2.0f);
    QCOMPARE(Faults(decimator.Decimate(timeless.series, Edges(0, 1, 10)), 10), QString());
}

void tst_ZrPlotDecimator::equalTimes()
{
    Made made;
    for (int i = 0; i < 100; ++i)
        made.Add(7.0, static_cast<float>(i));
    ZrPlotDecimator decimator;
    const Points points = decimator.Decimate(made.series, Edges(7.0, 7.0, 4));
    QCOMPARE(Text(points), QStringLiteral("3.5:0 3.5:99"));
    QCOMPARE(Text(decimator.Decimate(made.series, Edges(6.0, 8.0, 2))), QStringLiteral("1.5:0 1.5:99"));
}

void tst_ZrPlotDecimator::atMostFourPointsAColumn_data()
{
    QTest::addColumn<int>("unknownOf100");
    QTest::addColumn<double>("mostStep");
    for (const int unknownOf100 : {0, 1, 20, 80, 100}) {
        for (const double mostStep : {0.01, 1.0, 1e9})
            QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(unknownOf100).arg(mostStep)))
                << unknownOf100 << mostStep;
    }
}

void tst_ZrPlotDecimator::atMostFourPointsAColumn()
{
    QFETCH(int, unknownOf100);
    QFETCH(double, mostStep);
    std::mt19937 random(static_cast<unsigned>(unknownOf100));
    Made made;
    double time = 0.0;
    for (int i = 0; i < 20000; ++i) {
        time += std::pow(10.0, static_cast<double>(random() % 500) / 100.0 - 4.0);
        const bool isUnknown = static_cast<int>(random() % 100) < unknownOf100;
        made.Add(time, isUnknown ? gap : static_cast<float>(random() % 1000));
    }
    ZrPlotDecimator decimator;
    decimator.mostStep = mostStep;
    double length = time * 1.1;
    for (int round = 0; round < 200; ++round) {
        const double begin = (time - length) * static_cast<double>(random() % 1000) / 1000.0;
        const int columns = 1 + static_cast<int>(random() % 700);
        const Points points = decimator.Decimate(made.series, Edges(begin, begin + length, columns));
        QCOMPARE(Faults(points, static_cast<std::size_t>(columns)), QString());
        length *= 0.93;
    }
}

void tst_ZrPlotDecimator::showsWhatAllPointsShow()
{
    std::mt19937 random(17);
    Made made;
    for (int i = 0; i < 50000; ++i) {
        const double wave = std::sin(i * 0.001) * 100.0 + static_cast<double>(random() % 100) / 10.0;
        made.Add(i * 0.1, random() % 50 == 0 ? gap : static_cast<float>(wave));
    }
    ZrPlotDecimator decimator;
    const std::size_t columns = 321;
    const std::vector<double> edges = Edges(0.0, 4999.9, int(columns));
    const std::vector<ZrPlotSeries::Extent> seen = Seen(decimator.Decimate(made.series, edges), columns);
    std::size_t i = 0;
    for (std::size_t column = 0; column < columns; ++column) {
        ZrPlotSeries::Extent all;
        for (; i < 50000 && (column + 1 == columns || made.series.Times()[i] < edges[column + 1]); ++i) {
            if (!std::isnan(made.series.Value(i)))
                all.Add({made.series.Value(i), made.series.Value(i)});
        }
        QCOMPARE(seen[column].min, all.min);
        QCOMPARE(seen[column].max, all.max);
    }
}

void tst_ZrPlotDecimator::cutGaps()
{
    Made made;
    for (int i = 0; i < 10; ++i)
        made.Add(i, static_cast<float>(i));
    for (int i = 0; i < 10; ++i)
        made.Add(1000 + i, static_cast<float>(20 + i));
    ZrTimeLine line;
    line.SetLog(made.times);
    ZrPlotDecimator decimator;
    decimator.mostStep = line.LongestStep();
    const std::vector<double> edges = line.Columns(18);
    const Points points = decimator.Decimate(made.series, edges);
    QCOMPARE(Faults(points, 18), QString());
    QCOMPARE(points.size(), std::size_t(21)); // twenty records and the interruption
    QVERIFY(std::isnan(points[10].y));
    QVERIFY(std::fabs(points[9].x - 9.0f) <= 1.0f);
    QVERIFY(std::fabs(points[11].x - 9.0f) <= 1.0f);
}

void tst_ZrPlotDecimator::workFallsWhenZoomingIn()
{
    Made made;
    for (int i = 0; i < 1000000; ++i)
        made.Add(i, static_cast<float>(i % 997));
    ZrPlotDecimator decimator;
    const int columns = 1000;
    std::size_t before = 0;
    double length = 999999.0;
    for (int zoom = 0; zoom < 6; ++zoom, length /= 10.0) {
        const double begin = (999999.0 - length) / 2.0 + 0.3;
        const Points points = decimator.Decimate(made.series, Edges(begin, begin + length, columns));
        QVERIFY(points.size() <= 4u * columns + 2u);
        // A million records cost a hundred looks for each column at most.
        QVERIFY2(decimator.Looks() < 100u * columns, qPrintable(QString::number(decimator.Looks())));
        if (zoom > 0)
            QVERIFY2(decimator.Looks() < before,
                qPrintable(QStringLiteral("%1 after %2").arg(decimator.Looks()).arg(before)));
        before = decimator.Looks();
    }
    // Ten records in sight: little more than one look for each edge.
    decimator.Decimate(made.series, Edges(500000.5, 500010.5, columns));
    QVERIFY2(decimator.Looks() < 3u * columns, qPrintable(QString::number(decimator.Looks())));
}

QTEST_APPLESS_MAIN(tst_ZrPlotDecimator)
#include "tst_ZrPlotDecimator.moc"
