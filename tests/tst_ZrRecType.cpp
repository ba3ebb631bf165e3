#include "ZrUtil/ZrRecType.h"

#include <QtTest/QtTest>

#include <cstddef>
#include <cstring>
#include <type_traits>

static_assert(sizeof(CRecType) == 4);
static_assert(offsetof(CRecType, sub) == 0 && offsetof(CRecType, type) == 2, "the low half comes first");
static_assert(std::is_trivially_copyable_v<CRecType>);
static_assert(std::is_convertible_v<eRecordType, CRecType>, "a record type stands for its key");
static_assert(!std::is_convertible_v<int, CRecType>, "a bare number is no key");
static_assert(!std::is_convertible_v<int, eRecordType>);
static_assert(CRecType(rtEvent) == CRecType(0, 3), "keys are usable in constant expressions");

class tst_ZrRecType : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isZeroByDefault();
    void takesSubTypeThenType();
    void convertsFromARecordType();
    void knowsTheTypesOfTheLibrary();
    void acceptsTypesOfApplications();
    void keepsTheLow16BitsOfARecordType();
    void equalsWhenBothHalvesAreEqual_data();
    void equalsWhenBothHalvesAreEqual();
};

void tst_ZrRecType::isZeroByDefault()
{
    const CRecType key;
    QCOMPARE(key.sub, u16(0));
    QCOMPARE(key.type, u16(0));
}

void tst_ZrRecType::takesSubTypeThenType()
{
    const CRecType key(0x0102, 0x0304);
    QCOMPARE(key.sub, u16(0x0102));
    QCOMPARE(key.type, u16(0x0304));
    u16 halves[2];
    std::memcpy(halves, &key, sizeof halves);
    QCOMPARE(halves[0], u16(0x0102));
    QCOMPARE(halves[1], u16(0x0304));
}

void tst_ZrRecType::convertsFromARecordType()
{
    const CRecType key = rtMissionPlan;
    QCOMPARE(key.sub, u16(0));
    QCOMPARE(key.type, u16(70));
}

void tst_ZrRecType::knowsTheTypesOfTheLibrary()
{
    QCOMPARE(static_cast<int>(rtSerialText), 2);
    QCOMPARE(static_cast<int>(rtEvent), 3);
    QCOMPARE(static_cast<int>(rtMissionPlan), 70);
}

void tst_ZrRecType::acceptsTypesOfApplications()
{
    QCOMPARE(CRecType(static_cast<eRecordType>(0)), CRecType(0, 0));
    QCOMPARE(CRecType(static_cast<eRecordType>(12345)), CRecType(0, 12345));
    QCOMPARE(CRecType(static_cast<eRecordType>(65535)), CRecType(0, 65535));
}

void tst_ZrRecType::keepsTheLow16BitsOfARecordType()
{
    QCOMPARE(CRecType(static_cast<eRecordType>(0x10005)), CRecType(0, 5));
    QCOMPARE(CRecType(static_cast<eRecordType>(-1)), CRecType(0, 65535));
}

void tst_ZrRecType::equalsWhenBothHalvesAreEqual_data()
{
    QTest::addColumn<int>("sub");
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("equal");
    QTest::newRow("both halves") << 5 << 9 << true;
    QTest::newRow("other sub-type") << 6 << 9 << false;
    QTest::newRow("other type") << 5 << 8 << false;
    QTest::newRow("halves exchanged") << 9 << 5 << false;
    QTest::newRow("neither") << 0 << 0 << false;
}

void tst_ZrRecType::equalsWhenBothHalvesAreEqual()
{
    QFETCH(int, sub);
    QFETCH(int, type);
    QFETCH(bool, equal);
    const CRecType a(5, 9);
    const CRecType b(static_cast<u16>(sub), static_cast<u16>(type));
    QCOMPARE(a == b, equal);
    QCOMPARE(b == a, equal);
    QCOMPARE(a != b, !equal);
}

QTEST_GUILESS_MAIN(tst_ZrRecType)
#include "tst_ZrRecType.moc"
