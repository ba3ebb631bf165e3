#include "ZrUtil/ZrRingBuf.h"

#include <QtTest>

#include <deque>
#include <memory>
#include <utility>

using zr::ZrRingBuf;

namespace {

/// Pushes \p total running numbers into a buffer of capacity \p N and compares it, after each push, with a
/// plain queue that drops its front, and with the stated index arithmetic.
template <int N> void CompareWithQueue(int total)
{
    ZrRingBuf<int, N> ring;
    std::deque<int> queue;
    for (int k = 0; k < total; ++k) {
        ring.push(k);
        queue.push_back(k);
        if (queue.size() > std::size_t(N))
            queue.pop_front();
        QCOMPARE(ring.count, int(queue.size()));
        QCOMPARE(ring.head, k < N ? 0 : (k + 1) % N);
        for (int i = 0; i < ring.count; ++i) {
            QCOMPARE(ring.items[(ring.head + i) % N], queue[std::size_t(i)]);
            QCOMPARE(ring.at(i), queue[std::size_t(i)]);
        }
    }
}

} // namespace

class tst_ZrRingBuf : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmptyWithDefaultItems();
    void fourthPushIntoThreeDropsTheOldest();
    void fillsWithoutMovingHead();
    void capacityOneKeepsTheNewest();
    void arithmeticHoldsOverManyWraps();
    void capacityIsThatOfTheArray();
    void pushOfOwnEntryIsSafe();
    void moveOnlyValuesArePushed();
    void movedInTextTakesTheOverwrittenOne();
    void copyIsIndependent();
};

void tst_ZrRingBuf::startsEmptyWithDefaultItems()
{
    const ZrRingBuf<int, 3> ring;
    QCOMPARE(ring.head, 0);
    QCOMPARE(ring.count, 0);
    for (const int item : ring.items)
        QCOMPARE(item, 0);
}

void tst_ZrRingBuf::fourthPushIntoThreeDropsTheOldest()
{
    ZrRingBuf<char, 3> ring;
    for (const char c : {'a', 'b', 'c', 'd'})
        ring.push(c);
    QCOMPARE(ring.head, 1);
    QCOMPARE(ring.count, 3);
    QCOMPARE(ring.at(0), 'b');
    QCOMPARE(ring.at(1), 'c');
    QCOMPARE(ring.at(2), 'd');
    // In storage order the newest lies where the oldest was.
    QCOMPARE(ring.items[0], 'd');
    QCOMPARE(ring.items[1], 'b');
    QCOMPARE(ring.items[2], 'c');
}

void tst_ZrRingBuf::fillsWithoutMovingHead()
{
    ZrRingBuf<int, 3> ring;
    for (int k = 1; k <= 3; ++k) {
        ring.push(10 * k);
        QCOMPARE(ring.head, 0);
        QCOMPARE(ring.count, k);
        QCOMPARE(ring.items[k - 1], 10 * k);
    }
}

void tst_ZrRingBuf::capacityOneKeepsTheNewest()
{
    ZrRingBuf<QString, 1> ring;
    for (const char* text : {"a", "b", "c"}) {
        ring.push(QString::fromLatin1(text));
        QCOMPARE(ring.head, 0);
        QCOMPARE(ring.count, 1);
        QCOMPARE(ring.items[0], QString::fromLatin1(text));
    }
}

void tst_ZrRingBuf::arithmeticHoldsOverManyWraps()
{
    CompareWithQueue<1>(10);
    CompareWithQueue<2>(101);
    CompareWithQueue<3>(1000);
    CompareWithQueue<7>(5000);
    CompareWithQueue<64>(64 * 20 + 1);
}

void tst_ZrRingBuf::capacityIsThatOfTheArray()
{
    ZrRingBuf<int, 1000> ring;
    QCOMPARE(int(std::size(ring.items)), 1000);
    for (int k = 0; k < 1001; ++k)
        ring.push(k);
    QCOMPARE(ring.head, 1);
    QCOMPARE(ring.count, 1000);
    QCOMPARE(ring.at(0), 1);
    QCOMPARE(ring.at(999), 1000);
    QCOMPARE(ring.items[0], 1000);
}

void tst_ZrRingBuf::pushOfOwnEntryIsSafe()
{
    ZrRingBuf<QString, 2> ring;
    ring.push(QStringLiteral("a"));
    ring.push(QStringLiteral("b"));
    // The oldest entry is copied onto itself and so becomes the newest.
    ring.push(ring.at(0));
    QCOMPARE(ring.at(0), QStringLiteral("b"));
    QCOMPARE(ring.at(1), QStringLiteral("a"));
}

void tst_ZrRingBuf::moveOnlyValuesArePushed()
{
    ZrRingBuf<std::unique_ptr<int>, 2> ring;
    for (int k = 0; k < 5; ++k)
        ring.push(std::make_unique<int>(k));
    QCOMPARE(*ring.at(0), 3);
    QCOMPARE(*ring.at(1), 4);
}

void tst_ZrRingBuf::movedInTextTakesTheOverwrittenOne()
{
    ZrRingBuf<QString, 1> ring;
    ring.push(QStringLiteral("old"));
    QString text = QStringLiteral("new");
    ring.push(std::move(text));
    QCOMPARE(ring.at(0), QStringLiteral("new"));
    QCOMPARE(text, QStringLiteral("old"));
}

void tst_ZrRingBuf::copyIsIndependent()
{
    ZrRingBuf<int, 2> ring;
    ring.push(1);
    ZrRingBuf<int, 2> copy = ring;
    ring.push(2);
    ring.push(3);
    QCOMPARE(copy.count, 1);
    QCOMPARE(copy.at(0), 1);
    copy = ring;
    QCOMPARE(copy.head, 1);
    QCOMPARE(copy.at(1), 3);
}

QTEST_GUILESS_MAIN(tst_ZrRingBuf)
#include "tst_ZrRingBuf.moc"
