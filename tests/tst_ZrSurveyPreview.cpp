// What survey lines make of a plan, before they are part of it: the same to the last digit.

#include "ZrKit/planning/ZrPlanDocument.h"
#include "ZrKit/planning/ZrSurveyCorridor.h"
#include "ZrKit/planning/ZrSurveyPattern.h"
#include "ZrKit/planning/ZrSurveyPatternSettings.h"
#include "ZrKit/planning/ZrSurveyPlanner.h"
#include "ZrKit/planning/ZrSurveyPreview.h"
#include "ZrUtil/ZrWpt.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QThread>
#include <QTranslator>
#include <QtTest>

#include <atomic>
#include <cmath>
#include <functional>
#include <memory>
#include <utility>

namespace {

const ZrArea bay{QStringLiteral("Bay"), {{50.0, -4.0}, {50.0, -3.996}, {50.002, -3.996}, {50.002, -4.0}}};

ZrSurveyPlan Pattern(double radius)
{
    ZrSurveyPatternSettings settings;
    settings.lineSpacing = 30.0;
    settings.turnRadius = radius;
    settings.overshoot = 10.0;
    settings.spdType = eRouteSpeedOwn;
    settings.speed = 1.5;
    ZrSurveyPattern pattern;
    pattern.Make(bay, settings);
    return pattern.Plan();
}

ZrSurveyPlan Corridor()
{
    ZrSurveyCorridorSettings settings;
    settings.lineSpacing = 20.0;
    settings.linesLeft = settings.linesRight = 2;
    settings.turnRadius = 5.0;
    ZrSurveyCorridor corridor;
    corridor.Make({{50.0, -4.0}, {50.002, -3.998}, {50.001, -3.994}}, settings);
    return corridor.Plan();
}

/// Around the bay, with turns.
void AddRoute(ZrPlanDocument& plan, int count)
{
    for (int i = 0; i < count; ++i) {
        ZrWpt* wpt
            = plan.History().Add(49.998 + 0.003 * (i % 2), -4.004 + 0.004 * i, eZrWptBlue, ZrWpts::eAddTail);
        wpt->r = 20.0;
    }
    plan.Edited();
}

int Count(ZrPlanDocument& plan, ZrRouteFinding::eSeverity severity)
{
    const auto& findings = plan.Findings();
    return static_cast<int>(std::count_if(findings.begin(), findings.end(),
        [severity](const ZrRouteFinding& finding) { return finding.severity == severity; }));
}

/// Is asked for the text of each finding, in the thread of the check.
class Texts : public QTranslator
{
public:
    explicit Texts(std::function<void(const char* context)> asked)
        : m_asked(std::move(asked))
    {
        QCoreApplication::installTranslator(this);
    }

    ~Texts() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(
        const char* context, const char* /*text*/, const char* /*disambiguation*/, int /*n*/) const override
    {
        m_asked(context);
        return QString();
    }

private:
    std::function<void(const char*)> m_asked;
};

/// A plan with something to say of each of many waypoints, and of each way between them.
ZrSurveyPreview::Base Troubled()
{
    ZrSurveyPreview::Base base;
    base.route.linked = true;
    for (int i = 0; i < 2000; ++i)
        base.route.Add(50.0, -4.0 + 0.001 * (i / 2), eZrWptBlue, ZrWpts::eAddTail);
    base.check.noGo = {{QStringLiteral("Sea"), {{49.0, -5.0}, {49.0, -2.0}, {51.0, -2.0}, {51.0, -5.0}}}};
    return base;
}

} // namespace

class tst_ZrSurveyPreview : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asApplied_data();
    void asApplied();
    void turnsAreRound();
    void bendsAreOfTheirLine();
    void nothing();
    void indexOfNone();
    void tooFarAway();
    void veryLong();
    void planner();
    void cancelled();
    void endsWhileItIsChecked();
};

void tst_ZrSurveyPreview::asApplied_data()
{
    QTest::addColumn<int>("waypoints");
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("isClosed");
    QTest::addColumn<bool>("isCorridor");
    QTest::newRow("empty plan") << 0 << 0 << false << false;
    QTest::newRow("at the end") << 3 << 3 << false << false;
    QTest::newRow("at the beginning") << 3 << 0 << false << false;
    QTest::newRow("between") << 4 << 2 << false << false;
    QTest::newRow("closed") << 4 << 4 << true << false;
    QTest::newRow("closed alone") << 0 << 0 << true << false;
    QTest::newRow("corridor") << 3 << 3 << false << true;
}

void tst_ZrSurveyPreview::asApplied()
{
    QFETCH(int, waypoints);
    QFETCH(int, index);
    QFETCH(bool, isClosed);
    QFETCH(bool, isCorridor);
    ZrPlanDocument plan((QString()));
    AddRoute(plan, waypoints);
    plan.Route().closed = isClosed;
    plan.SetNoGo({{QStringLiteral("Rock"), {{50.0005, -3.999}, {50.001, -3.999}, {50.001, -3.998}}}});
    plan.SetMargin(5.0);
    const ZrSurveyPlan lines = isCorridor ? Corridor() : Pattern(10.0);
    const std::vector<ZrWpt> made = lines.Waypoints();
    QVERIFY(made.size() > 8);
    ZrSurveyPreview::Base base;
    base.route = plan.Route();
    base.index = index;
    base.check.noGo = plan.NoGo();
    base.check.margin = plan.Margin();
    const ZrSurveyPreview preview = ZrSurveyPreview::Of(base, lines, made);
    QCOMPARE(base.route.GetCount(), waypoints);

    QVERIFY(plan.History().InsertPattern(made, index));
    plan.Edited();
    QCOMPARE(preview.whole.waypoints, plan.Route().GetCount());
    QCOMPARE(preview.whole.lines, plan.LineCount());
    QCOMPARE(preview.whole.lines, static_cast<int>(lines.lines.size()));
    QCOMPARE(preview.whole.length, plan.Path().Length());
    QCOMPARE(preview.whole.duration, plan.Path().Duration());
    QCOMPARE(preview.whole.errors, Count(plan, ZrRouteFinding::eError));
    QCOMPARE(preview.whole.warnings, Count(plan, ZrRouteFinding::eWarning));
    QVERIFY(preview.whole.errors > 0);

    // What is drawn is the way of the plan, but for what it had before.
    const auto ways = plan.Path().LegLines();
    const int end = index + static_cast<int>(made.size());
    std::size_t at = 0;
    double length = 0.0;
    for (std::size_t i = 0; i < plan.Path().Legs().size(); ++i) {
        const ZrRouteLeg& leg = plan.Path().Legs()[i];
        const bool isFromNew = leg.from >= index && leg.from < end;
        const bool isToNew = leg.to >= index && leg.to < end;
        if (!isFromNew && !isToNew)
            continue;
        QVERIFY(at < preview.legs.size());
        QVERIFY(preview.legs[at].points == ways[i]);
        const ZrWpt* from = plan.Route().GetAt(plan.Route().FindIndex(leg.from));
        const bool isLine = isFromNew && isToNew && leg.to > leg.from
            && (from->name.endsWith(QLatin1String(" S")) || from->name.contains(QLatin1String(" B")));
        QCOMPARE(preview.legs[at].isLine, isLine);
        if (isFromNew && isToNew && leg.to > leg.from)
            length += leg.length;
        ++at;
    }
    QCOMPARE(at, preview.legs.size());
    QCOMPARE(preview.length, length);
}

/// Shorter than from corner to corner by what every turn of a quarter circle leaves out.
void tst_ZrSurveyPreview::turnsAreRound()
{
    const double radius = 10.0;
    const ZrSurveyPlan lines = Pattern(radius);
    const ZrSurveyPreview preview = ZrSurveyPreview::Of({}, lines, lines.Waypoints());
    int corners = 0;
    for (const ZrSurveyWaypoint& waypoint : lines.waypoints)
        corners += waypoint.role == ZrSurveyWaypoint::Turn ? 1 : 0;
    QVERIFY(corners > 4);
    const double left = corners * (2.0 - std::acos(-1.0) / 2.0) * radius;
    QVERIFY2(std::fabs(lines.pathLength - preview.length - left) < 1.0,
        qPrintable(QStringLiteral("%1 of %2").arg(preview.length).arg(lines.pathLength)));
    // Without any radius there is nothing to round.
    const ZrSurveyPlan square = Pattern(0.0);
    const ZrSurveyPreview same = ZrSurveyPreview::Of({}, square, square.Waypoints());
    QVERIFY(std::fabs(square.pathLength - same.length) < 0.1);
}

void tst_ZrSurveyPreview::bendsAreOfTheirLine()
{
    const ZrSurveyPlan lines = Corridor();
    const ZrSurveyPreview preview = ZrSurveyPreview::Of({}, lines, lines.Waypoints());
    // A bend each.
    const auto main = std::count_if(
        preview.legs.begin(), preview.legs.end(), [](const ZrSurveyPreview::Leg& leg) { return leg.isLine; });
    QCOMPARE(static_cast<std::size_t>(main), 2 * lines.lines.size());
}

void tst_ZrSurveyPreview::nothing()
{
    const ZrSurveyPreview none;
    QVERIFY(none.legs.empty());
    QCOMPARE(none.whole.waypoints, 0);
    ZrPlanDocument plan((QString()));
    AddRoute(plan, 3);
    ZrSurveyPreview::Base base;
    base.route = plan.Route();
    const ZrSurveyPreview preview = ZrSurveyPreview::Of(base, ZrSurveyPlan(), {});
    QVERIFY(preview.legs.empty());
    QCOMPARE(preview.length, 0.0);
    QCOMPARE(preview.whole.waypoints, 3);
    QCOMPARE(preview.whole.length, plan.Path().Length());
}

/// The nearest that there is.
void tst_ZrSurveyPreview::indexOfNone()
{
    const ZrSurveyPlan lines = Pattern(10.0);
    const int count = static_cast<int>(lines.waypoints.size());
    for (const int index : {-5, 1000}) {
        ZrSurveyPreview::Base base;
        base.index = index;
        const ZrSurveyPreview preview = ZrSurveyPreview::Of(base, lines, lines.Waypoints());
        QCOMPARE(preview.whole.waypoints, count);
        QCOMPARE(static_cast<int>(preview.legs.size()), count - 1);
    }
}

/// A plan that no way can be told of, with the lines as without.
void tst_ZrSurveyPreview::tooFarAway()
{
    ZrPlanDocument plan((QString()));
    plan.History().Add(-30.0, 120.0, eZrWptBlue, ZrWpts::eAddTail);
    ZrSurveyPreview::Base base;
    base.route = plan.Route();
    base.index = 1;
    const ZrSurveyPlan lines = Pattern(10.0);
    const ZrSurveyPreview preview = ZrSurveyPreview::Of(base, lines, lines.Waypoints());
    QVERIFY(std::isnan(preview.whole.length));
    QVERIFY(std::isnan(preview.length));
    QVERIFY(preview.whole.errors > 0);
}

/// What would take long is left out, and that is told.
void tst_ZrSurveyPreview::veryLong()
{
    const ZrSurveyPlan lines = Pattern(10.0);
    const std::vector<ZrWpt> made = lines.Waypoints();
    ZrPlanDocument plan((QString()));
    QVERIFY(plan.History().InsertPattern(
        std::vector<ZrWpt>(ZrSurveyPreview::MostChecked - made.size(), made.front()), 0));
    ZrSurveyPreview::Base base;
    base.route = plan.Route();
    base.index = plan.Route().GetCount();
    const ZrSurveyPreview most = ZrSurveyPreview::Of(base, lines, made);
    QVERIFY(most.whole.isChecked);
    QVERIFY(most.whole.warnings > 10000); // at the place of the one before
    base.route.AddTail(new ZrWpt(made.front()));
    ++base.index;
    const ZrSurveyPreview more = ZrSurveyPreview::Of(base, lines, made);
    QVERIFY(!more.whole.isChecked);
    QCOMPARE(more.whole.waypoints, ZrSurveyPreview::MostChecked + 1);
    QCOMPARE(more.whole.warnings, 0);
    QCOMPARE(more.legs.size(), most.legs.size());
}

/// Made beside the thread that shows it, of the plan and the speeds of the moment.
void tst_ZrSurveyPreview::planner()
{
    ZrPlanDocument plan((QString()));
    AddRoute(plan, 3);
    ZrSurveyPatternSettings settings;
    settings.lineSpacing = 30.0;
    settings.spdType = eRouteSpeedMedium;
    ZrSurveyPlanner planner;
    QSignalSpy ready(&planner, &ZrSurveyPlanner::Ready);
    QCOMPARE(planner.Preview().whole.waypoints, 0);
    auto base = std::make_shared<ZrSurveyPreview::Base>();
    base->route = plan.Route();
    base->index = 3;
    planner.SetBase(base);
    const float before = ZrWpts::s_msMedium;
    ZrWpts::s_msMedium = before / 2.0F;
    planner.Make(bay, settings);
    ZrWpts::s_msMedium = before;
    QTRY_COMPARE(ready.count(), 1);
    const int count = static_cast<int>(planner.Waypoints().size());
    QCOMPARE(planner.Preview().whole.waypoints, 3 + count);
    const double slow = planner.Preview().whole.duration;
    planner.Make(bay, settings);
    QTRY_COMPARE(ready.count(), 2);
    QVERIFY(planner.Preview().whole.duration < slow);
    planner.SetBase(nullptr);
    planner.Make(bay, settings);
    QTRY_COMPARE(ready.count(), 3);
    QCOMPARE(planner.Preview().whole.waypoints, count);
    // Where there are no lines there is no preview.
    planner.Make(ZrArea(), settings);
    QTRY_COMPARE(ready.count(), 4);
    QVERIFY(!planner.Error().isEmpty());
    QCOMPARE(planner.Preview().whole.waypoints, 0);
    QVERIFY(planner.Preview().legs.empty());
}

/// Wherever the check is, it ends there.
void tst_ZrSurveyPreview::cancelled()
{
    const ZrSurveyPlan lines = Pattern(10.0);
    const std::vector<ZrWpt> made = lines.Waypoints();
    std::atomic<bool> cancel{false};
    ZrSurveyPreview::Base base = Troubled();
    const ZrSurveyPreview whole = ZrSurveyPreview::Of(base, lines, made);
    QVERIFY(whole.whole.warnings >= 1000 && whole.whole.errors >= 1000);
    base.check.cancel = &cancel;
    const ZrSurveyPreview same = ZrSurveyPreview::Of(base, lines, made);
    QCOMPARE(same.whole.warnings, whole.whole.warnings);
    QCOMPARE(same.whole.errors, whole.whole.errors);
    QCOMPARE(same.legs.size(), whole.legs.size());
    for (const char* where : {"ZrRouteCheck", "ZrAreaCheck"}) {
        int asked = 0;
        const Texts texts([&](const char* context) {
            cancel = cancel || qstrcmp(context, where) == 0;
            asked += cancel ? 1 : 0;
        });
        cancel = false;
        const ZrSurveyPreview preview = ZrSurveyPreview::Of(base, lines, made);
        QVERIFY(preview.legs.empty());
        QCOMPARE(preview.whole.waypoints, 0);
        // Of the waypoint, or the piece of way, that it was at.
        QVERIFY2(asked > 0 && asked < 10, qPrintable(QString::number(asked)));
    }
    // Nothing is begun.
    int asked = 0;
    const Texts texts([&asked](const char* /*context*/) { ++asked; });
    QVERIFY(ZrSurveyPreview::Of(base, lines, made).legs.empty());
    QCOMPARE(asked, 0);
}

/// Who closes the window does not wait for the rest of the check.
void tst_ZrSurveyPreview::endsWhileItIsChecked()
{
    QSemaphore begun;
    std::atomic<int> asked{0};
    const Texts texts([&](const char* context) {
        if (qstrcmp(context, "ZrAreaCheck") == 0 && asked++ == 0) {
            begun.release();
            QThread::msleep(500); // until the planner is told to end
        }
    });
    ZrSurveyPatternSettings settings;
    settings.lineSpacing = 30.0;
    {
        ZrSurveyPlanner planner;
        planner.SetBase(std::make_shared<const ZrSurveyPreview::Base>(Troubled()));
        planner.Make(bay, settings);
        QVERIFY(begun.tryAcquire(1, 60000));
    }
    QVERIFY2(asked < 10, qPrintable(QString::number(asked)));
}

QTEST_GUILESS_MAIN(tst_ZrSurveyPreview)
#include "tst_ZrSurveyPreview.moc"
