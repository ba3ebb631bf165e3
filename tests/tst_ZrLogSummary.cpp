#include "ZrKit/review/ZrLogSummary.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

ZrLogItem MakeItem(u16 type, u16 sub, u16 source, double time, u32 data, u32 stored, bool compressed = false)
{
    ZrLogItem item;
    item.type = type;
    item.sub = sub;
    item.source = source;
    item.time = time;
    item.dataSize = data;
    item.storedSize = stored;
    item.compressed = compressed ? 1 : 0;
    return item;
}

const ZrLogSummary::Type* Find(const ZrLogSummary& summary, u16 type, u16 sub)
{
    for (const auto& [key, entry] : summary.Types()) {
        if (entry.key == CRecType(sub, type))
            return &entry;
    }
    return nullptr;
}

} // namespace

class tst_ZrLogSummary : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void startsEmpty();
    void countsByTypeAndSub();
    void typesStandInOrder();
    void extentsAreEarliestAndLatest();
    void clockStepsBackAreCounted();
    void timesThatAreNoNumbersAreLeftOut();
    void rateIsIntervalsOverTime();
    void rateNeedsASpan();
    void bytesDoNotWrapAt32Bits();
};

void tst_ZrLogSummary::startsEmpty()
{
    const ZrLogSummary summary;
    QCOMPARE(summary.Items(), u64(0));
    QVERIFY(summary.Types().empty());
    QVERIFY(std::isnan(summary.FirstTime()));
    QVERIFY(std::isnan(summary.LastTime()));
    QCOMPARE(summary.BackwardJumps(), u64(0));
}

void tst_ZrLogSummary::countsByTypeAndSub()
{
    ZrLogSummary summary;
    summary.Add(MakeItem(17, 0, 1, 10.0, 100, 100));
    summary.Add(MakeItem(17, 1, 1, 10.0, 300, 70, true));
    summary.Add(MakeItem(17, 0, 2, 11.0, 50, 20, true));
    summary.Add(MakeItem(17, 0, 1, 12.0, 0, 0));
    QCOMPARE(summary.Items(), u64(4));
    QCOMPARE(summary.Types().size(), std::size_t(2));
    const ZrLogSummary::Type* port = Find(summary, 17, 0);
    QVERIFY(port);
    QCOMPARE(port->count, u64(3));
    QCOMPARE(port->dataBytes, u64(150));
    QCOMPARE(port->storedBytes, u64(120));
    QCOMPARE(port->compressed, u64(1));
    QCOMPARE(port->sources, (std::set<u16>{1, 2}));
    const ZrLogSummary::Type* starboard = Find(summary, 17, 1);
    QVERIFY(starboard);
    QCOMPARE(starboard->count, u64(1));
    QCOMPARE(starboard->dataBytes, u64(300));
    QCOMPARE(starboard->storedBytes, u64(70));
    QCOMPARE(starboard->compressed, u64(1));
}

void tst_ZrLogSummary::typesStandInOrder()
{
    ZrLogSummary summary;
    for (const auto& [type, sub] : {std::pair{65535, 0}, {2, 1}, {2, 0}, {0, 65535}, {70, 3}})
        summary.Add(MakeItem(static_cast<u16>(type), static_cast<u16>(sub), 0, 0.0, 0, 0));
    QStringList order;
    for (const auto& [key, type] : summary.Types())
        order << QStringLiteral("%1:%2").arg(type.key.type).arg(type.key.sub);
    QCOMPARE(order.join(QLatin1Char(' ')), QStringLiteral("0:65535 2:0 2:1 70:3 65535:0"));
}

void tst_ZrLogSummary::extentsAreEarliestAndLatest()
{
    ZrLogSummary summary;
    summary.Add(MakeItem(1, 0, 0, 50.0, 0, 0));
    summary.Add(MakeItem(1, 0, 0, 70.0, 0, 0));
    summary.Add(MakeItem(2, 0, 0, 40.0, 0, 0));
    summary.Add(MakeItem(1, 0, 0, 60.0, 0, 0));
    QCOMPARE(summary.FirstTime(), 40.0);
    QCOMPARE(summary.LastTime(), 70.0);
    QCOMPARE(Find(summary, 1, 0)->firstTime, 50.0);
    QCOMPARE(Find(summary, 1, 0)->lastTime, 70.0);
    QCOMPARE(Find(summary, 2, 0)->firstTime, 40.0);
    QCOMPARE(Find(summary, 2, 0)->lastTime, 40.0);
}

void tst_ZrLogSummary::clockStepsBackAreCounted()
{
    ZrLogSummary summary;
    for (const double time : {1.0, 2.0, 2.0, 1.5, 1.6, 1.0, 9.0})
        summary.Add(MakeItem(1, 0, 0, time, 0, 0));
    QCOMPARE(summary.BackwardJumps(), u64(2));
}

void tst_ZrLogSummary::timesThatAreNoNumbersAreLeftOut()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    ZrLogSummary summary;
    for (const double time : {nan, 5.0, infinity, 6.0, -infinity, nan, 7.0})
        summary.Add(MakeItem(1, 0, 0, time, 0, 0));
    summary.Add(MakeItem(2, 0, 0, nan, 0, 0));
    QCOMPARE(summary.Items(), u64(8));
    QCOMPARE(summary.FirstTime(), 5.0);
    QCOMPARE(summary.LastTime(), 7.0);
    QCOMPARE(summary.BackwardJumps(), u64(0));
    QVERIFY(std::isnan(Find(summary, 2, 0)->firstTime));
    QVERIFY(std::isnan(Find(summary, 2, 0)->Rate()));
}

void tst_ZrLogSummary::rateIsIntervalsOverTime()
{
    // Eleven items an eighth of a second apart: eight a second, as far as binary fractions are exact.
    ZrLogSummary summary;
    for (int i = 0; i <= 10; ++i)
        summary.Add(MakeItem(1, 0, 0, 100.0 + 0.125 * i, 0, 0));
    QCOMPARE(Find(summary, 1, 0)->Rate(), 8.0);
}

void tst_ZrLogSummary::rateNeedsASpan()
{
    ZrLogSummary summary;
    summary.Add(MakeItem(1, 0, 0, 100.0, 0, 0));
    QVERIFY(std::isnan(Find(summary, 1, 0)->Rate()));
    summary.Add(MakeItem(1, 0, 0, 100.0, 0, 0));
    QVERIFY(std::isnan(Find(summary, 1, 0)->Rate()));
}

void tst_ZrLogSummary::bytesDoNotWrapAt32Bits()
{
    ZrLogSummary summary;
    for (int i = 0; i < 3; ++i)
        summary.Add(MakeItem(1, 0, 0, 0.0, 0xFFFFFFFFu, 0xFFFFFFFEu));
    QCOMPARE(Find(summary, 1, 0)->dataBytes, u64(3) * 0xFFFFFFFFu);
    QCOMPARE(Find(summary, 1, 0)->storedBytes, u64(3) * 0xFFFFFFFEu);
}

QTEST_GUILESS_MAIN(tst_ZrLogSummary)
#include "tst_ZrLogSummary.moc"
