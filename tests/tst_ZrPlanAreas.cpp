// Areas and the ring that is being drawn, as values.

#include "ZrKit/planning/ZrPlanAreas.h"
#include "ZrKit/planning/ZrPlanSketch.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

#include <functional>
#include <limits>

namespace {

const double NaN = std::numeric_limits<double>::quiet_NaN();

const ZrArea harbour{
    QStringLiteral("Häfen 港"), {{50.0, -4.0}, {50.01, -4.0}, {50.01, -3.99}, {50.0, -3.99}}};

QJsonObject Json(const char* text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace

class tst_ZrPlanAreas : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTrip();
    void badJson();
    void equality();
    void words();
    void sketchRoundTrip();
    void badSketch();
};

void tst_ZrPlanAreas::roundTrip()
{
    const ZrPlanAreas all{{harbour}, {harbour, {QString(), {{-90.0, 180.0}}}}, 12.5};
    QJsonObject root{{QStringLiteral("waypoints"), 3}};
    all.ToJson(root);
    QCOMPARE(root[QLatin1String("waypoints")].toInt(), 3);
    QVERIFY(ZrPlanAreas::FromJson(root) == all);
    QVERIFY(!all.IsEmpty());
    QVERIFY(ZrPlanAreas().IsEmpty());
}

void tst_ZrPlanAreas::badJson()
{
    QVERIFY(ZrPlanAreas::FromJson({}).IsEmpty());
    const ZrPlanAreas read = ZrPlanAreas::FromJson(
        Json(R"({"areas": [{"name": "a", "ring": [[1, 2], [1, 91], "x", [3]]}, {"ring": []}, 7],)"
             R"( "no-go": "none", "margin": "wide"})"));
    QCOMPARE(read.areas.size(), std::size_t(1));
    QCOMPARE(read.areas[0].ring.size(), std::size_t(1));
    QCOMPARE(read.areas[0].ring[0].lat, 2.0);
    QVERIFY(read.noGo.empty());
    QCOMPARE(read.margin, 0.0);
}

void tst_ZrPlanAreas::equality()
{
    const ZrPlanAreas a{{harbour}, {harbour}, 3.0};
    const auto differs = [&a](const std::function<void(ZrPlanAreas&)>& edit) {
        ZrPlanAreas b = a;
        edit(b);
        return a != b;
    };
    QVERIFY(!differs([](ZrPlanAreas&) {}));
    QVERIFY(differs([](ZrPlanAreas& b) { b.margin = 3.0000001; }));
    QVERIFY(differs([](ZrPlanAreas& b) { b.areas[0].name = QStringLiteral("x"); }));
    QVERIFY(differs([](ZrPlanAreas& b) { b.noGo[0].ring[1].lat += 1e-12; }));
    QVERIFY(differs([](ZrPlanAreas& b) { b.areas[0].ring.pop_back(); }));
    QVERIFY(differs([](ZrPlanAreas& b) { b.noGo.clear(); }));
    ZrPlanAreas strange;
    strange.areas = {{QString(), {{NaN, 1.0}}}};
    QVERIFY(strange == ZrPlanAreas(strange)); // or it would be edited for ever
}

void tst_ZrPlanAreas::words()
{
    QCOMPARE(ZrPlanAreas().Text(), QString());
    QCOMPARE((ZrPlanAreas{{harbour}, {}, 0.0}).Text(), QStringLiteral("1 area"));
    QCOMPARE((ZrPlanAreas{{harbour, harbour}, {harbour}, 5.0}).Text(),
        QStringLiteral("2 areas, 1 no-go area, the distance to no-go areas"));
    QCOMPARE((ZrPlanAreas{{}, {harbour, harbour}, 0.0}).Text(), QStringLiteral("2 no-go areas"));
}

void tst_ZrPlanAreas::sketchRoundTrip()
{
    const ZrPlanSketch sketch{{{50.0, -4.0}, {50.1, -4.0}}, true, 2, true};
    QVERIFY(ZrPlanSketch::FromJson(sketch.ToJson()) == sketch);
    ZrPlanSketch other = sketch;
    other.isNoGo = false;
    QVERIFY(other != sketch);
    other = sketch;
    other.edited = 1;
    QVERIFY(other != sketch);
}

void tst_ZrPlanAreas::badSketch()
{
    QVERIFY(ZrPlanSketch::FromJson({}) == ZrPlanSketch());
    const ZrPlanSketch read
        = ZrPlanSketch::FromJson(Json(R"({"ring": [[200, 0], [1, 2], null], "edited": -7, "no-go": 3})"));
    QCOMPARE(read.ring.size(), std::size_t(1));
    QCOMPARE(read.edited, -1);
    QVERIFY(!read.isNoGo);
}

QTEST_GUILESS_MAIN(tst_ZrPlanAreas)
#include "tst_ZrPlanAreas.moc"
