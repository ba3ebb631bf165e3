// Positions as people read them, in the style in force.

#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrUnitsState.h"

#include <QtTest>

#include <limits>

class tst_ZrPositionShown : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void styles();
    void degrees_data();
    void degrees();
    void grid_data();
    void grid();
    void notFinite();
    void ofDetail();
};

void tst_ZrPositionShown::styles()
{
    const ZrUnitsState state;
    for (const int style : {1, 2, 3, 5, 6, 7}) {
        ZrUnits::SetGeoStyle(eGeoStyle(style));
        const QStringList expected({ZrUnits::GetLatString(51.5), ZrUnits::GetLngString(-1.25)});
        QCOMPARE(ZrPositionShown::Parts(51.5, -1.25), expected);
        QCOMPARE(ZrPositionShown::Text(51.5, -1.25), expected.join(QStringLiteral("  ")));
    }
}

void tst_ZrPositionShown::degrees_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<QStringList>("parts");
    const auto row
        = [](const char* name, int style, double lat, double lng, const char* north, const char* east) {
              QTest::newRow(name) << style << lat << lng
                                  << QStringList({QString::fromUtf8(north), QString::fromUtf8(east)});
          };
    row("signed", eGeoSignedDeg, 51.5, -1.25, "+51.5000000°", "-1.2500000°");
    row("letters", eGeoDeg, 51.5, -1.25, "51.5000000° N", "1.2500000° W");
    row("rounded", eGeoDeg, 48.443128674, -68.8, "48.4431287° N", "68.8000000° W");
    row("rounded up to a whole", eGeoSignedDeg, -0.99999999, 179.99999999, "-1.0000000°", "+180.0000000°");
    row("nothing", eGeoDeg, 0.0, -0.0, "0.0000000° N", "0.0000000° E");
    row("ends", eGeoSignedDeg, -90.0, 180.0, "-90.0000000°", "+180.0000000°");
}

void tst_ZrPositionShown::degrees()
{
    const ZrUnitsState state;
    QFETCH(int, style);
    QFETCH(double, lat);
    QFETCH(double, lng);
    ZrUnits::SetGeoStyle(eGeoStyle(style));
    QTEST(ZrPositionShown::Parts(lat, lng), "parts");
}

void tst_ZrPositionShown::grid_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<QString>("zone");
    QTest::newRow("north") << 51.5 << -1.25 << "30 N";
    QTest::newRow("south") << -33.9 << 151.2 << "56 S";
    QTest::newRow("equator") << 0.0 << 3.0 << "31 N";
    QTest::newRow("edge west") << 10.0 << 6.0 << "32 N";
    QTest::newRow("edge east") << 10.0 << 5.999999 << "31 N";
    QTest::newRow("first") << 10.0 << -180.0 << "1 N";
    QTest::newRow("last") << 10.0 << 179.999 << "60 N";
    QTest::newRow("date line") << 10.0 << 180.0 << "1 N";
    QTest::newRow("around") << 10.0 << 361.0 << "31 N";
}

void tst_ZrPositionShown::grid()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(QString, zone);
    const ZrUnitsState state;
    ZrUnits::SetGeoStyle(eGeoUTM);
    ZrUnits::CalcUTM(51.5, -1.25);
    const double before = ZrUnits::utm.lngOrigin;
    const QStringList parts = ZrPositionShown::Parts(lat, lng);
    QCOMPARE(parts.size(), 3);
    QCOMPARE(parts[0], zone);
    QCOMPARE(ZrUnits::utm.lngOrigin, before);
    QString east;
    QString north;
    ZrUnits::GetENStrings(
        lat, std::remainder(lng, 360.0) == 180.0 ? -180.0 : std::remainder(lng, 360.0), east, north);
    QCOMPARE(parts[1], east);
    QCOMPARE(parts[2], north);
}

void tst_ZrPositionShown::notFinite()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (const double wrong : {nan, inf, -inf}) {
        QVERIFY(ZrPositionShown::Parts(wrong, 1.0).isEmpty());
        QVERIFY(ZrPositionShown::Parts(1.0, wrong).isEmpty());
        QCOMPARE(ZrPositionShown::Text(wrong, wrong), QString());
    }
}

void tst_ZrPositionShown::ofDetail()
{
    const ZrUnitsState state;
    const QString noted = QStringLiteral("48.4457404, -68.8281234");
    for (const int style : {int(eGeoSignedDeg), int(eGeoDeg), int(eGeoUTM)}) {
        ZrUnits::SetGeoStyle(eGeoStyle(style));
        const QString shown = ZrPositionShown::Text(48.4457404, -68.8281234);
        QVERIFY(!shown.isEmpty() && shown != noted);
        QCOMPARE(ZrPositionShown::OfDetail(noted), shown);
        QCOMPARE(ZrPositionShown::OfDetail(QStringLiteral("-8.0000000, 168.0000000")),
            ZrPositionShown::Text(-8.0, 168.0));
        for (const char* other :
            {"", "48.4457404", "48.44, -68.82", "at 48.4457404, -68.8281234", "48.4457404, -68.8281234 wreck",
                "90.0000001, 0.0000000", "0.0000000, 180.0000001", "1, 2", "nan, nan"})
            QCOMPARE(ZrPositionShown::OfDetail(QLatin1String(other)), QLatin1String(other));
    }
}

QTEST_APPLESS_MAIN(tst_ZrPositionShown)
#include "tst_ZrPositionShown.moc"
