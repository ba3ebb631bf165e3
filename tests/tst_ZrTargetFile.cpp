// Targets as events and as files for other programs.

#include "ZrKit/survey/ZrTargetEvent.h"
#include "ZrKit/survey/ZrTargetFile.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest/QtTest>

#include <cmath>

namespace {

ZrSonarTarget Wreck()
{
    ZrSonarTarget target;
    target.name = QStringLiteral("Wreck, \"bow\" ö");
    target.remark = QStringLiteral("sharp; two pieces");
    target.spot = {150, sideStarboard, 600.5};
    target.time = 1378847610.25;
    target.position = {48.445123456, -68.828123456};
    target.slantRange = 52.1044;
    target.groundRange = 50.3;
    target.altitude = 13.3;
    target.length = 3.2;
    target.height = 0.851;
    return target;
}

bool IsSame(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || std::fabs(a - b) < 6e-4;
}

} // namespace

class tst_ZrTargetFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eventAndBack();
    void eventOfLittle();
    void otherEvents_data();
    void otherEvents();
    void csv();
    void geoJson();
    void writes();
    void failures();
};

void tst_ZrTargetFile::eventAndBack()
{
    const ZrSonarTarget target = Wreck();
    const ZrLogEvt evt = ZrTargetEvent::ToEvent(target);
    QCOMPARE(evt.text, target.name);
    QCOMPARE(evt.time, target.time);
    QCOMPARE(evt.src, esUser);
    QCOMPARE(evt.detail,
        QStringLiteral(
            "Target 48.44512346, -68.82812346; starboard, ping 150, sample 600.5; slant range 52.104 m; "
            "ground range 50.300 m; altitude 13.300 m; length 3.200 m; height 0.851 m; sharp; two pieces"));
    ZrSonarTarget again;
    QVERIFY(ZrTargetEvent::ToTarget(evt, again));
    QCOMPARE(again.name, target.name);
    QCOMPARE(again.remark, target.remark);
    QCOMPARE(again.spot.ping, target.spot.ping);
    QCOMPARE(again.spot.side, target.spot.side);
    QCOMPARE(again.spot.sample, target.spot.sample);
    QCOMPARE(again.time, target.time);
    QVERIFY(std::fabs(again.position.lat - target.position.lat) < 1e-8);
    QVERIFY(std::fabs(again.position.lng - target.position.lng) < 1e-8);
    for (const auto value : {&ZrSonarTarget::slantRange, &ZrSonarTarget::groundRange,
             &ZrSonarTarget::altitude, &ZrSonarTarget::length, &ZrSonarTarget::width, &ZrSonarTarget::height})
        QVERIFY(IsSame(again.*value, target.*value));
}

/// Nothing is known but where in the picture.
void tst_ZrTargetFile::eventOfLittle()
{
    ZrSonarTarget target;
    target.time = 10.0;
    target.position = {std::nan(""), std::nan("")};
    const ZrLogEvt evt = ZrTargetEvent::ToEvent(target, QStringLiteral("Ziel"));
    QCOMPARE(evt.text, QStringLiteral("Ziel"));
    ZrSonarTarget again;
    QVERIFY2(ZrTargetEvent::ToTarget(evt, again), qPrintable(evt.detail));
    QVERIFY(!again.position.IsValid());
    QVERIFY(std::isnan(again.length));
    QCOMPARE(again.spot.side, sidePort);
}

void tst_ZrTargetFile::otherEvents_data()
{
    QTest::addColumn<QString>("detail");
    QTest::newRow("empty") << QString();
    QTest::newRow("words") << QStringLiteral("Target sighted at the bow");
    QTest::newRow("no side") << QStringLiteral("Target 48.4, -68.8; ping 150, sample 600.5");
    QTest::newRow("cut off") << QStringLiteral("Target 48.4, -68.8; port, ping 150, sam");
    QTest::newRow("no number") << QStringLiteral("Target 48.4.4, -68.8; port, ping 150, sample 600.5");
    QTest::newRow("ping too large") << QStringLiteral(
        "Target 48.4, -68.8; port, ping 99999999999999999999999, sample 600.5");
    QTest::newRow("goes on") << QStringLiteral("Target 48.4, -68.8; port, ping 150, sample 600.5m");
}

void tst_ZrTargetFile::otherEvents()
{
    QFETCH(QString, detail);
    ZrLogEvt evt(10.0, esUser, QStringLiteral("Target"));
    evt.detail = detail;
    ZrSonarTarget target = Wreck();
    QVERIFY(!ZrTargetEvent::ToTarget(evt, target));
    QCOMPARE(target.name, Wreck().name);
}

void tst_ZrTargetFile::csv()
{
    ZrSonarTarget nowhere;
    nowhere.position = {std::nan(""), std::nan("")};
    const QStringList lines
        = QString::fromUtf8(ZrTargetFile::Csv({Wreck(), nowhere})).split(QStringLiteral("\r\n"));
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines[0],
        QStringLiteral(
            "name,time,latitude,longitude,side,ping,sample,slant_range,ground_range,altitude,length,"
            "width,height,remark"));
    QCOMPARE(lines[1],
        QStringLiteral(
            "\"Wreck, \"\"bow\"\" ö\",2013-09-10T21:13:30.250Z,48.44512346,-68.82812346,starboard,150,"
            "600.5,52.104,50.300,13.300,3.200,,0.851,sharp; two pieces"));
    QCOMPARE(lines[2], QStringLiteral(",,,,port,0,0.0,,,,,,,"));
}

void tst_ZrTargetFile::geoJson()
{
    ZrSonarTarget nowhere;
    nowhere.position = {std::nan(""), std::nan("")};
    const QJsonObject root = QJsonDocument::fromJson(ZrTargetFile::GeoJson({Wreck(), nowhere})).object();
    QCOMPARE(root[QStringLiteral("type")].toString(), QStringLiteral("FeatureCollection"));
    const QJsonArray features = root[QStringLiteral("features")].toArray();
    QCOMPARE(features.size(), 2);
    const QJsonObject wreck = features[0].toObject();
    const QJsonArray at
        = wreck[QStringLiteral("geometry")].toObject()[QStringLiteral("coordinates")].toArray();
    QCOMPARE(at[0].toDouble(), -68.82812346);
    QCOMPARE(at[1].toDouble(), 48.44512346);
    const QJsonObject properties = wreck[QStringLiteral("properties")].toObject();
    QCOMPARE(properties[QStringLiteral("name")].toString(), Wreck().name);
    QCOMPARE(properties[QStringLiteral("time")].toString(), QStringLiteral("2013-09-10T21:13:30.250Z"));
    QCOMPARE(properties[QStringLiteral("length")].toDouble(), 3.2);
    QVERIFY(properties[QStringLiteral("width")].isNull());
    QVERIFY(features[1].toObject()[QStringLiteral("geometry")].isNull());
    QVERIFY(features[1].toObject()[QStringLiteral("properties")].toObject()[QStringLiteral("time")].isNull());
}

void tst_ZrTargetFile::writes()
{
    const QTemporaryDir folder;
    ZrTargetFile file;
    for (const char* name : {"t.csv", "t.geojson", "t.JSON"}) {
        const QString path = folder.filePath(QLatin1String(name));
        QVERIFY2(file.Write({Wreck()}, path), qPrintable(file.Error()));
        QFile written(path);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(written.readAll(),
            path.endsWith(QLatin1String(".csv")) ? ZrTargetFile::Csv({Wreck()})
                                                 : ZrTargetFile::GeoJson({Wreck()}));
    }
    // A list without targets is a file without any.
    QVERIFY(file.Write({}, folder.filePath(QStringLiteral("none.geojson"))));
}

void tst_ZrTargetFile::failures()
{
    const QTemporaryDir folder;
    ZrTargetFile file;
    QVERIFY(!file.Write({Wreck()}, folder.filePath(QStringLiteral("t.txt"))));
    QVERIFY(file.Error().contains(QStringLiteral(".geojson")));
    const QString path = folder.filePath(QStringLiteral("t.csv"));
    QVERIFY(QDir().mkdir(path));
    QVERIFY(!file.Write({Wreck()}, path));
    QVERIFY2(file.Error().contains(path), qPrintable(file.Error()));
    QVERIFY(!file.Write({Wreck()}, QStringLiteral("/proc/nowhere/t.csv")));
    QVERIFY(!file.Error().isEmpty());
    QVERIFY(file.Write({Wreck()}, folder.filePath(QStringLiteral("after.csv"))));
    QVERIFY(file.Error().isEmpty());
}

QTEST_GUILESS_MAIN(tst_ZrTargetFile)
#include "tst_ZrTargetFile.moc"
