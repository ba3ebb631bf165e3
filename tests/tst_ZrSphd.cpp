#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrSphd.h"

#include <QtTest>

#include <cstddef>
#include <type_traits>

static_assert(std::is_trivially_copyable_v<ZrSphd> && sizeof(ZrSphd) == 4 * sizeof(double));
static_assert(offsetof(ZrSphd, semiMajor) < offsetof(ZrSphd, semiMinor)
    && offsetof(ZrSphd, semiMinor) < offsetof(ZrSphd, eccentricitySqr)
    && offsetof(ZrSphd, eccentricitySqr) < offsetof(ZrSphd, flattening));

class tst_ZrSphd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsAsWrittenDown();
    void isStoredUnderItsKeys();
    void isLoaded();
    void missingKeysLeaveTheValues();
    void brokenValues();
};

void tst_ZrSphd::startsAsWrittenDown()
{
    const ZrSphd s;
    // To the last bit: the digits are part of recorded grid values.
    QVERIFY(s.semiMajor == 6378137.0);
    QVERIFY(s.semiMinor == 6356752.314);
    QVERIFY(s.eccentricitySqr == 0.006694380023);
    QVERIFY(s.flattening == 298.2572);
}

void tst_ZrSphd::isStoredUnderItsKeys()
{
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistStoring, object);
    ZrSphd s;
    s.serialise(module);
    QCOMPARE(object,
        (QJsonObject{
            {QStringLiteral("semi-major"), 6378137.0},
            {QStringLiteral("semi-minor"), 6356752.314},
            {QStringLiteral("flattening"), 298.2572},
            {QStringLiteral("eccentricity sqr"), 0.006694380023},
        }));
}

void tst_ZrSphd::isLoaded()
{
    QJsonObject object{
        {QStringLiteral("semi-major"), 1.5},
        {QStringLiteral("semi-minor"), 2.5},
        {QStringLiteral("flattening"), 3.5},
        {QStringLiteral("eccentricity sqr"), 4.5},
    };
    zr::ZrSetModule module(zr::ePersistLoading, object);
    ZrSphd s;
    s.serialise(module);
    // None is derived from another.
    QCOMPARE(s.semiMajor, 1.5);
    QCOMPARE(s.semiMinor, 2.5);
    QCOMPARE(s.flattening, 3.5);
    QCOMPARE(s.eccentricitySqr, 4.5);
}

void tst_ZrSphd::missingKeysLeaveTheValues()
{
    QJsonObject object{{QStringLiteral("semi-minor"), 6356256.909}};
    zr::ZrSetModule module(zr::ePersistLoading, object);
    ZrSphd s;
    s.semiMajor = 6377563.396;
    s.serialise(module);
    QCOMPARE(s.semiMajor, 6377563.396);
    QCOMPARE(s.semiMinor, 6356256.909);
    QCOMPARE(s.flattening, 298.2572);
    QCOMPARE(s.eccentricitySqr, 0.006694380023);
}

void tst_ZrSphd::brokenValues()
{
    QJsonObject object{{QStringLiteral("semi-major"), QJsonValue()}};
    zr::ZrSetModule module(zr::ePersistLoading, object);
    ZrSphd s;
    s.serialise(module);
    QVERIFY(std::isnan(s.semiMajor));
    QCOMPARE(s.semiMinor, 6356752.314);
}

QTEST_GUILESS_MAIN(tst_ZrSphd)
#include "tst_ZrSphd.moc"
