// Turns between survey lines: every arc must find room in its legs, which is calculated here from the angle
// between two bearings.

#include "ZrKit/planning/ZrSurveyTurn.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double pi = 3.141592653589793;

ZrSurveyPose Pose(double x, double y, double heading)
{
    return {{x, y}, {std::sin(heading / 180.0 * pi), std::cos(heading / 180.0 * pi)}};
}

double Bearing(ZrLocalPoint a, ZrLocalPoint b)
{
    return std::atan2(b.x - a.x, b.y - a.y);
}

double Length(ZrLocalPoint a, ZrLocalPoint b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

/// What is wrong with a turn; empty when it can be run.
QString Flaw(const ZrSurveyTurn& turn, const ZrSurveyPose& from, const ZrSurveyPose& to, double radius)
{
    // A metre of each line stands for it: no arc may reach into it.
    std::vector<ZrLocalPoint> way{{from.at.x - from.ahead.x, from.at.y - from.ahead.y}, from.at};
    way.insert(way.end(), turn.corners.begin(), turn.corners.end());
    way.push_back(to.at);
    way.push_back({to.at.x + to.ahead.x, to.at.y + to.ahead.y});
    std::vector<double> tangents(way.size(), 0.0);
    for (std::size_t i = 1; i + 1 < way.size(); ++i) {
        const double bend
            = std::remainder(Bearing(way[i], way[i + 1]) - Bearing(way[i - 1], way[i]), 2.0 * pi);
        const bool corner = i > 1 && i + 2 < way.size();
        if (!corner && std::fabs(bend) > 1e-6)
            return QStringLiteral("the way bends by %1 where a line ends").arg(bend);
        tangents[i] = corner ? radius * std::tan(std::fabs(bend) / 2.0) : 0.0;
    }
    for (std::size_t i = 2; i + 1 < way.size(); ++i) {
        const double room = Length(way[i - 1], way[i]) - tangents[i - 1] - tangents[i];
        if (room < -1e-5)
            return QStringLiteral("leg %1 is %2 m too short").arg(i).arg(-room);
    }
    return {};
}

} // namespace

class tst_ZrSurveyTurn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kinds_data();
    void kinds();
    void straightAcross();
    void loop();
    void turnBackFits();
    void turnAcrossFits();
    void tangentLength();
    void noRadius();
    void notANumber();
};

void tst_ZrSurveyTurn::kinds_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::addColumn<double>("heading");
    QTest::addColumn<int>("kind");
    const int direct = ZrSurveyTurn::Direct;
    const int loop = ZrSurveyTurn::Loop;
    const int straight = ZrSurveyTurn::Straight;
    // From 0, 0 to the north, with a radius of 10 m.
    QTest::newRow("wide") << 30.0 << 0.0 << 180.0 << direct;
    QTest::newRow("two radii") << 20.0 << 0.0 << 180.0 << direct;
    QTest::newRow("two radii to the left") << -20.0 << 0.0 << 180.0 << direct;
    QTest::newRow("a little less") << 19.999 << 0.0 << 180.0 << loop;
    QTest::newRow("a little less to the left") << -19.999 << 0.0 << 180.0 << loop;
    QTest::newRow("the same line back") << 0.0 << 0.0 << 180.0 << loop;
    QTest::newRow("the same line back, from afar") << 0.0 << 500.0 << 180.0 << loop;
    QTest::newRow("straight on") << 0.0 << 50.0 << 0.0 << straight;
    QTest::newRow("straight on at once") << 0.0 << 0.0 << 0.0 << straight;
    QTest::newRow("beside, same direction") << 60.0 << 0.0 << 0.0 << direct;
    QTest::newRow("behind, same direction") << 0.0 << -100.0 << 0.0 << int(ZrSurveyTurn::TooTight);
    QTest::newRow("to the right") << 100.0 << 100.0 << 90.0 << direct;
    QTest::newRow("to the left, close by") << 5.0 << 5.0 << -90.0 << direct;
}

void tst_ZrSurveyTurn::kinds()
{
    QFETCH(double, x);
    QFETCH(double, y);
    QFETCH(double, heading);
    QFETCH(int, kind);
    const ZrSurveyPose from = Pose(0.0, 0.0, 0.0);
    const ZrSurveyPose to = Pose(x, y, heading);
    const ZrSurveyTurn turn = ZrSurveyTurn::Between(from, to, 10.0);
    QCOMPARE(int(turn.kind), kind);
    const std::size_t corners = kind == ZrSurveyTurn::Direct ? 2 : kind == ZrSurveyTurn::Loop ? 4 : 0;
    QCOMPARE(turn.corners.size(), corners);
    if (kind != ZrSurveyTurn::TooTight)
        QCOMPARE(Flaw(turn, from, to, 10.0), QString());
}

void tst_ZrSurveyTurn::straightAcross()
{
    // Eastward line, the next one 40 m south of it and 15 m longer.
    const ZrSurveyTurn turn = ZrSurveyTurn::Between(Pose(100.0, 50.0, 90.0), Pose(115.0, 10.0, 270.0), 10.0);
    QCOMPARE(turn.corners.size(), std::size_t{2});
    QVERIFY(std::fabs(turn.corners[0].x - 125.02) < 1e-9 && std::fabs(turn.corners[0].y - 50.0) < 1e-9);
    QVERIFY(std::fabs(turn.corners[1].x - 125.02) < 1e-9 && std::fabs(turn.corners[1].y - 10.0) < 1e-9);
}

void tst_ZrSurveyTurn::loop()
{
    // Out, over the next line to its far side, up, back, and down on it.
    const ZrSurveyTurn turn = ZrSurveyTurn::Between(Pose(0.0, 0.0, 0.0), Pose(-5.0, 0.0, 180.0), 10.0);
    const double room = 10.02;
    const std::vector<ZrLocalPoint> expected{
        {0.0, room}, {-5.0 - 2 * room, room}, {-5.0 - 2 * room, 3 * room}, {-5.0, 3 * room}};
    QCOMPARE(turn.corners.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        QVERIFY(Length(turn.corners[i], expected[i]) < 1e-9);
}

void tst_ZrSurveyTurn::turnBackFits()
{
    std::mt19937 random(7);
    const auto within
        = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); };
    for (int i = 0; i < 5000; ++i) {
        const double radius = within(0.5, 200.0);
        const double heading = within(0.0, 360.0);
        const ZrSurveyPose from = Pose(within(-1e4, 1e4), within(-1e4, 1e4), heading);
        const double aside = within(-4.0, 4.0) * radius;
        const double along = within(-20.0, 20.0) * radius;
        ZrSurveyPose to = Pose(0.0, 0.0, heading + 180.0);
        to.at.x = from.at.x + along * from.ahead.x + aside * from.ahead.y;
        to.at.y = from.at.y + along * from.ahead.y - aside * from.ahead.x;
        const ZrSurveyTurn turn = ZrSurveyTurn::Between(from, to, radius);
        QCOMPARE(
            int(turn.kind), int(std::fabs(aside) < 2.0 * radius ? ZrSurveyTurn::Loop : ZrSurveyTurn::Direct));
        QCOMPARE(Flaw(turn, from, to, radius), QString());
    }
}

void tst_ZrSurveyTurn::turnAcrossFits()
{
    std::mt19937 random(8);
    const auto within
        = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); };
    for (int i = 0; i < 2000; ++i) {
        const double radius = within(0.5, 200.0);
        const double heading = within(0.0, 360.0);
        const ZrSurveyPose from = Pose(within(-1e4, 1e4), within(-1e4, 1e4), heading);
        const double side = random() % 2 == 0 ? 90.0 : -90.0;
        ZrSurveyPose to
            = Pose(from.at.x + within(-9, 9) * radius, from.at.y + within(-9, 9) * radius, heading + side);
        const ZrSurveyTurn turn = ZrSurveyTurn::Between(from, to, radius);
        QCOMPARE(int(turn.kind), int(ZrSurveyTurn::Direct));
        QCOMPARE(Flaw(turn, from, to, radius), QString());
    }
}

void tst_ZrSurveyTurn::tangentLength()
{
    const ZrLocalPoint a{0.0, 0.0};
    const ZrLocalPoint b{0.0, 100.0};
    QVERIFY(std::fabs(ZrSurveyTurn::TangentLength(a, b, {100.0, 100.0}, 10.0) - 10.0) < 1e-12);
    QVERIFY(std::fabs(ZrSurveyTurn::TangentLength(a, b, {-100.0, 100.0}, 10.0) - 10.0) < 1e-12);
    QCOMPARE(ZrSurveyTurn::TangentLength(a, b, {0.0, 200.0}, 10.0), 0.0);
    const double sharp = ZrSurveyTurn::TangentLength(a, b, {50.0, 50.0}, 10.0); // 135 degrees
    QVERIFY(std::fabs(sharp - 10.0 * std::tan(135.0 / 2.0 / 180.0 * pi)) < 1e-9);
    QVERIFY(std::isinf(ZrSurveyTurn::TangentLength(a, b, a, 10.0)));
}

void tst_ZrSurveyTurn::noRadius()
{
    for (const double radius : {0.0, -5.0, std::numeric_limits<double>::quiet_NaN()}) {
        const ZrSurveyTurn turn = ZrSurveyTurn::Between(Pose(0.0, 0.0, 0.0), Pose(5.0, 0.0, 180.0), radius);
        QCOMPARE(int(turn.kind), int(ZrSurveyTurn::Straight));
        QVERIFY(turn.corners.empty());
    }
}

void tst_ZrSurveyTurn::notANumber()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const ZrSurveyTurn turn = ZrSurveyTurn::Between(Pose(0.0, 0.0, 0.0), Pose(nan, 0.0, nan), 10.0);
    QCOMPARE(int(turn.kind), int(ZrSurveyTurn::TooTight));
    QVERIFY(turn.corners.empty());
}

QTEST_APPLESS_MAIN(tst_ZrSurveyTurn)
#include "tst_ZrSurveyTurn.moc"
