// The way of a vehicle in a scene: trail and sea floor, long ones made in a worker.

#include "CountedNew.h"
#include "ZrKit/scene/ZrSceneSurface.h"
#include "ZrKit/scene/ZrSceneWay.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr int patience = 60000; ///< milliseconds
constexpr std::size_t million = 1000000;

std::vector<ZrScenePlace> Places(std::size_t count, double lat = 48.0)
{
    std::vector<ZrScenePlace> places;
    places.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto at = static_cast<double>(i);
        places.push_back({lat + 1e-3 * std::sin(at * 1e-3), -68.0 + 1e-3 * std::cos(at * 1.3e-3), 5.0, 10.0});
    }
    return places;
}

} // namespace

class tst_ZrSceneWay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void empty();
    void fewAtOnce();
    void longOneInAWorker();
    void unknownPlaces();
    void growsLive();
    void clearedMeanwhile();
    void anotherMeanwhile();
    void goneMeanwhile();
    void millionPlaces();
};

void tst_ZrSceneWay::empty()
{
    ZrSceneSurface scene;
    ZrSceneWay way(scene);
    way.Append({});
    QVERIFY(!way.HasOrigin() && !way.IsBuilding() && !way.IsWorking());
    QVERIFY(std::isnan(way.ToScene(48.0, -68.0, 1.0).x()));
    way.Clear();
    QCOMPARE(way.Count(), std::size_t(0));
}

void tst_ZrSceneWay::fewAtOnce()
{
    ZrSceneSurface scene;
    ZrSceneWay way(scene);
    QSignalSpy origin(&way, &ZrSceneWay::OriginChanged);
    const auto places = Places(ZrSceneWay::AtOnce);
    way.Append(places);
    QCOMPARE(scene.Trail().size(), places.size());
    QCOMPARE(origin.size(), 1);
    QVERIFY(!way.IsBuilding());
    // The first place is the origin; 1/1000 degree of a meridian is 111.2 m.
    const QVector3D first = way.ToScene(places[0].lat, places[0].lng, 5.0);
    QVERIFY(std::fabs(first.x()) < 1e-3F && std::fabs(first.y()) < 1e-3F);
    QCOMPARE(first.z(), -5.0F);
    QVERIFY(std::fabs(way.ToScene(places[0].lat + 0.001, places[0].lng, 0.0).y() - 111.2F) < 0.5F);
    QCOMPARE(way.ToScene(places[0].lat, places[0].lng, unknown).z(), 0.0F);
    QVERIFY(std::isnan(way.ToScene(unknown, 1.0, 0.0).x()));
    QVERIFY(std::isnan(way.ToScene(91.0, 1.0, 0.0).x()));
    // The floor of these too is not for this thread.
    QVERIFY(scene.Floor().IsEmpty() && way.IsWorking());
    QTRY_VERIFY_WITH_TIMEOUT(!way.IsWorking(), patience);
    QVERIFY(!scene.Floor().IsEmpty());
    QVERIFY(std::fabs(scene.Floor().Lowest() + 15.0F) < 0.01F);
}

void tst_ZrSceneWay::longOneInAWorker()
{
    ZrSceneSurface scene;
    ZrSceneWay way(scene);
    QSignalSpy changed(&way, &ZrSceneWay::Changed);
    way.Append(Places(ZrSceneWay::AtOnce + 1));
    QCOMPARE(way.Count(), ZrSceneWay::AtOnce + 1);
    QVERIFY(way.IsBuilding() && way.IsWorking());
    QVERIFY(scene.Trail().empty() && !way.HasOrigin());
    QTRY_VERIFY_WITH_TIMEOUT(!way.IsWorking(), patience);
    QVERIFY(!way.IsBuilding() && way.HasOrigin());
    QVERIFY(!changed.isEmpty());
    QCOMPARE(scene.Trail().size(), ZrSceneWay::AtOnce + 1);
    QVERIFY(!scene.Floor().IsEmpty());
}

void tst_ZrSceneWay::unknownPlaces()
{
    ZrSceneSurface scene;
    ZrSceneWay way(scene);
    const double infinite = std::numeric_limits<double>::infinity();
    for (const auto& at : {ZrScenePlace{unknown, 1.0, 1.0, 1.0}, ZrScenePlace{1.0, infinite, 1.0, 1.0},
             ZrScenePlace{95.0, 1.0, 1.0, 1.0}}) {
        way.Append({&at, 1});
        QVERIFY(!way.HasOrigin());
    }
    QCOMPARE(way.Count(), std::size_t(3));
    const ZrScenePlace deep{1.0, 1.0, unknown, unknown};
    way.Append({&deep, 1});
    QVERIFY(way.HasOrigin());
    QCOMPARE(scene.Trail().size(), std::size_t(1));
    QTRY_VERIFY_WITH_TIMEOUT(!way.IsWorking(), patience);
    QVERIFY(scene.Floor().IsEmpty());
}

/// Place by place, also while a floor is made: none is lost, and the order stays.
void tst_ZrSceneWay::growsLive()
{
    ZrSceneSurface scene;
    ZrSceneWay way(scene);
    const auto places = Places(3000);
    std::size_t at = 0;
    for (; at < 2000; ++at) {
        way.Append({&places[at], 1});
        if (at % 50 == 0)
            QCoreApplication::processEvents();
    }
    way.Append({&places[at], 1000});
    QTRY_VERIFY_WITH_TIMEOUT(!way.IsWorking(), patience);
    QCOMPARE(scene.Trail().size(), places.size());
    for (std::size_t i = 0; i < places.size(); i += 97) {
        const QVector3D wanted = way.ToScene(places[i].lat, places[i].lng, places[i].depth);
        QVERIFY2((scene.Trail()[i] - wanted).length() < 1e-3F, qPrintable(QString::number(i)));
    }
    QVERIFY(!scene.Floor().IsEmpty());
}

void tst_ZrSceneWay::clearedMeanwhile()
{
    ZrSceneSurface scene;
    ZrSceneWay way(scene);
    way.Append(Places(million / 4));
    way.Clear();
    QVERIFY(!way.IsBuilding());
    QTRY_VERIFY_WITH_TIMEOUT(!way.IsWorking(), patience);
    QVERIFY(scene.Trail().empty() && scene.Floor().IsEmpty() && !way.HasOrigin());
    QCOMPARE(way.Count(), std::size_t(0));
}

void tst_ZrSceneWay::anotherMeanwhile()
{
    ZrSceneSurface scene;
    ZrSceneWay way(scene);
    way.Append(Places(million / 4));
    way.Clear();
    way.Append(Places(500, -33.0));
    QVERIFY(way.IsBuilding());
    QTRY_VERIFY_WITH_TIMEOUT(!way.IsWorking(), patience);
    QCOMPARE(scene.Trail().size(), std::size_t(500));
    QVERIFY(scene.Trail()[0].toVector2D().length() < 1e-3F);
    QVERIFY(!scene.Floor().IsEmpty());
}

void tst_ZrSceneWay::goneMeanwhile()
{
    ZrSceneSurface scene;
    {
        ZrSceneWay way(scene);
        way.Append(Places(million / 4));
    }
    QVERIFY(scene.Trail().empty());
}

/// The thread of the window keeps the places and takes over what was made of them.
void tst_ZrSceneWay::millionPlaces()
{
    ZrSceneSurface scene;
    ZrSceneWay way(scene);
    const auto places = Places(million);
    const std::size_t before = counted_new::Bytes();
    way.Append(places);
    QVERIFY(scene.Trail().empty());
    QTRY_VERIFY_WITH_TIMEOUT(!way.IsWorking(), patience);
    const std::size_t bytes = counted_new::Bytes() - before;
    QCOMPARE(scene.Trail().size(), std::size_t(ZrSceneSurface::MostTrail));
    // Its copy of the places and the line of the trail.
    const std::size_t most
        = million * sizeof(ZrScenePlace) + 4 * ZrSceneSurface::MostTrail * sizeof(QVector3D);
    QVERIFY2(bytes < most, qPrintable(QString::number(bytes)));
    QVERIFY(!scene.Floor().IsEmpty());
}

QTEST_MAIN(tst_ZrSceneWay)
#include "tst_ZrSceneWay.moc"
