// Lines of a long log on demand: the window around a view, and the tiles in memory.

#include "ZrKit/map/ZrWaterfallLayout.h"
#include "ZrKit/map/ZrWaterfallTiles.h"
#include "ZrKit/map/ZrWaterfallWindow.h"

#include <QtTest/QtTest>

#include <set>
#include <thread>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

ZrWaterfallLine LineOf(i64 number)
{
    ZrWaterfallLine line;
    line.time = static_cast<double>(number);
    line.along = 0.5 * static_cast<double>(number);
    line.range = {20.0, 20.0};
    line.samples = {std::vector<u8>{static_cast<u8>(number % 251)}, {}};
    return line;
}

/// A log of which only some lines are at hand.
class Log : public IZrWaterfallSource
{
public:
    i64 count;
    std::set<i64> missing;
    std::vector<i64> asked;

    explicit Log(i64 lines)
        : count(lines)
    {
    }

    i64 LineCount() const override { return count; }

    bool Fetch(i64 line, ZrWaterfallLine& content) override
    {
        asked.push_back(line);
        if (line < 0 || line >= count || missing.count(line) != 0)
            return false;
        content = LineOf(line);
        return true;
    }
};

ZrWaterfallView ViewOf(double end, int height = 20)
{
    ZrWaterfallView view;
    view.rect = QRect(0, 0, 100, height);
    view.end = end;
    return view;
}

std::vector<ZrWaterfallLine> TileOf(i64 tile, int lines = ZrWaterfallTiles::TileLines)
{
    std::vector<ZrWaterfallLine> content;
    for (int i = 0; i < lines; ++i)
        content.push_back(LineOf(tile * ZrWaterfallTiles::TileLines + i));
    return content;
}

} // namespace

class tst_ZrWaterfallWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fetchesWhatIsShown_data();
    void fetchesWhatIsShown();
    void fetchesOnce();
    void renews();
    void heldTiles();
    void tellsWhatIsMissing();
    void scrubsThroughMillions();
    void logGrows();
    void speedCorrected();
    void moreLinesThanTheRing();
    void nonsense_data();
    void nonsense();
    void tilesGiveLines();
    void oldTilesGo();
    void wantedTiles();
    void wrongTiles();
    void tilesOfAGrowingLog();
    void tilesFromOtherThreads();
};

void tst_ZrWaterfallWindow::fetchesWhatIsShown_data()
{
    QTest::addColumn<double>("end");
    QTest::addColumn<i64>("first"); // of 1,000 lines, 20 shown
    QTest::addColumn<i64>("last");
    QTest::newRow("end of the log") << notANumber << i64(980) << i64(999);
    QTest::newRow("beyond") << 5000.0 << i64(980) << i64(999);
    QTest::newRow("inside") << 500.0 << i64(480) << i64(499);
    QTest::newRow("between lines") << 500.5 << i64(480) << i64(500);
    QTest::newRow("beginning") << 7.0 << i64(0) << i64(6);
}

void tst_ZrWaterfallWindow::fetchesWhatIsShown()
{
    QFETCH(double, end);
    QFETCH(i64, first);
    QFETCH(i64, last);
    ZrWaterfallRing ring(64, 1);
    Log log(1000);
    ZrWaterfallWindow window(ring, log);
    QVERIFY(window.Update(ViewOf(end)));
    QVERIFY(window.Missing().empty());
    QCOMPARE(i64(log.asked.size()), last - first + 1);
    const ZrWaterfallLayout layout(ring, ViewOf(end));
    QCOMPARE(layout.Rows().back().line, first);
    QCOMPARE(layout.Rows().front().line, last);
    for (const ZrWaterfallLayout::Row& row : layout.Rows()) {
        QVERIFY(row.isThere);
        QCOMPARE(ring.At(row.line).time, static_cast<double>(row.line));
    }
}

void tst_ZrWaterfallWindow::fetchesOnce()
{
    ZrWaterfallRing ring(64, 1);
    Log log(1000);
    ZrWaterfallWindow window(ring, log);
    window.Update(ViewOf(500.0));
    log.asked.clear();
    QVERIFY(!window.Update(ViewOf(500.0)));
    QVERIFY(log.asked.empty());
    QVERIFY(window.Update(ViewOf(503.0)));
    QCOMPARE(log.asked, (std::vector<i64>{500, 501, 502}));
    log.asked.clear();
    QVERIFY(!window.Update(ViewOf(501.0))); // back
    QVERIFY(log.asked.empty());
    QVERIFY(window.Update(ViewOf(540.0))); // out of the window: some of it stays
    log.asked.clear();
    QVERIFY(!window.Update(ViewOf(540.0)));
}

/// Lines that have changed are fetched once more as far as the ring has them; one that is not at hand stays.
void tst_ZrWaterfallWindow::renews()
{
    ZrWaterfallRing ring(64, 1);
    Log log(1000);
    ZrWaterfallWindow window(ring, log);
    window.Update(ViewOf(500.0));
    const u64 before = ring.Revision();
    log.asked.clear();
    log.missing = {491};
    window.Renew(490, 495);
    QCOMPARE(log.asked, (std::vector<i64>{490, 491, 492, 493, 494}));
    QCOMPARE(ring.Revision(), before + 4);
    QVERIFY(ring.Has(491) && ring.At(491).revision <= before);
    log.asked.clear();
    // Beyond the ring, before the log, behind it, in no order: nothing.
    window.Renew(100, 200);
    window.Renew(-10, -5);
    window.Renew(5000, 6000);
    window.Renew(495, 490);
    QVERIFY(log.asked.empty());
    window.Renew(std::numeric_limits<i64>::min(), std::numeric_limits<i64>::max());
    QCOMPARE(log.asked.size(), std::size_t(20));
}

void tst_ZrWaterfallWindow::heldTiles()
{
    ZrWaterfallTiles tiles(10000, 1000000);
    for (const i64 tile : {0, 3, 4})
        QVERIFY(tiles.Put(tile, TileOf(tile)));
    const auto held = [&tiles](i64 first, i64 end) {
        std::vector<i64> numbers = tiles.Held(first, end);
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    };
    QCOMPARE(held(0, 10000), (std::vector<i64>{0, 3, 4}));
    QCOMPARE(held(256, 768), std::vector<i64>());
    QCOMPARE(held(256, 769), std::vector<i64>{3});
    QCOMPARE(held(1023, 1025), (std::vector<i64>{3, 4}));
    QCOMPARE(held(255, 255), std::vector<i64>());
    QCOMPARE(held(-50, 0), std::vector<i64>());
}

void tst_ZrWaterfallWindow::tellsWhatIsMissing()
{
    ZrWaterfallRing ring(64, 1);
    Log log(1000);
    for (const i64 line : {485, 486, 490, 600})
        log.missing.insert(line);
    ZrWaterfallWindow window(ring, log);
    QVERIFY(window.Update(ViewOf(500.0)));
    QCOMPARE(window.Missing().size(), std::size_t(2));
    QCOMPARE(window.Missing()[0].first, i64(485));
    QCOMPARE(window.Missing()[0].end, i64(487));
    QCOMPARE(window.Missing()[1].first, i64(490));
    QCOMPARE(window.Missing()[1].end, i64(491));
    QVERIFY(!window.Update(ViewOf(500.0)));
    log.missing.erase(486);
    QVERIFY(window.Update(ViewOf(500.0)));
    QCOMPARE(window.Missing()[0].end, i64(486));
    // Before anything at all is there.
    Log slow(1000);
    for (i64 line = 0; line < 1000; ++line)
        slow.missing.insert(line);
    ZrWaterfallRing empty(64, 1);
    ZrWaterfallWindow waiting(empty, slow);
    QVERIFY(!waiting.Update(ViewOf(500.0)));
    QCOMPARE(waiting.Missing().size(), std::size_t(1));
    QCOMPARE(waiting.Missing()[0].first, i64(480));
    QCOMPARE(waiting.Missing()[0].end, i64(500));
}

void tst_ZrWaterfallWindow::scrubsThroughMillions()
{
    constexpr i64 lines = 5000000;
    ZrWaterfallRing ring(2048, 1);
    Log log(lines);
    ZrWaterfallWindow window(ring, log);
    for (i64 i = 0; i < 200; ++i) {
        const i64 end = 1000 + i * 3999989 % (lines - 1000);
        log.asked.clear();
        window.Update(ViewOf(static_cast<double>(end), 800));
        QVERIFY(window.Missing().empty());
        QVERIFY(log.asked.size() <= 801U);
        for (i64 line = end - 800; line < end; ++line)
            QVERIFY(ring.Has(line) && ring.Samples(line, sidePort)[0] == line % 251);
    }
}

void tst_ZrWaterfallWindow::logGrows()
{
    ZrWaterfallRing ring(64, 1);
    Log log(10);
    ZrWaterfallWindow window(ring, log);
    window.Update(ViewOf(notANumber));
    QCOMPARE(ring.End(), i64(10));
    for (int i = 0; i < 300; ++i) {
        log.asked.clear();
        ++log.count;
        QVERIFY(window.Update(ViewOf(notANumber)));
        QCOMPARE(log.asked, std::vector<i64>{log.count - 1});
        QCOMPARE(ZrWaterfallLayout(ring, ViewOf(notANumber)).Rows().front().line, log.count - 1);
    }
    log.count = 5; // another log
    window.Update(ViewOf(notANumber));
    QCOMPARE(ZrWaterfallLayout(ring, ViewOf(notANumber)).End(), 5.0);
}

/// 20 m on 50 pixels: a line is 1.25 pixels high.
void tst_ZrWaterfallWindow::speedCorrected()
{
    ZrWaterfallRing ring(64, 1);
    Log log(1000);
    ZrWaterfallWindow window(ring, log);
    ZrWaterfallView view = ViewOf(500.0);
    view.speedCorrected = true;
    window.Update(view);
    QVERIFY(window.Missing().empty());
    const ZrWaterfallLayout layout(ring, view);
    QVERIFY(layout.IsSpeedCorrected());
    QCOMPARE(layout.Rows().front().line, i64(499));
    QCOMPARE(layout.Rows().back().line, i64(484));
    QVERIFY(layout.Missing().empty());
}

void tst_ZrWaterfallWindow::moreLinesThanTheRing()
{
    ZrWaterfallRing ring(64, 1);
    Log log(1000);
    ZrWaterfallWindow window(ring, log);
    window.Update(ViewOf(500.0, 300));
    QCOMPARE(log.asked.size(), std::size_t(64));
    const ZrWaterfallLayout layout(ring, ViewOf(500.0, 300));
    QCOMPARE(layout.Rows().front().line, i64(499));
    QCOMPARE(layout.Rows().back().line, i64(436));
}

void tst_ZrWaterfallWindow::nonsense_data()
{
    QTest::addColumn<i64>("lines");
    QTest::addColumn<int>("capacity");
    QTest::addColumn<double>("end");
    QTest::addColumn<double>("pixelsPerLine");
    QTest::addColumn<int>("height");
    constexpr double infinite = std::numeric_limits<double>::infinity();
    QTest::newRow("no lines") << i64(0) << 64 << notANumber << 1.0 << 20;
    QTest::newRow("negative") << i64(-7) << 64 << 3.0 << 1.0 << 20;
    QTest::newRow("no room") << i64(100) << 0 << 50.0 << 1.0 << 20;
    QTest::newRow("no height") << i64(100) << 64 << 50.0 << 1.0 << 0;
    QTest::newRow("end infinite") << i64(100) << 64 << -infinite << 1.0 << 20;
    QTest::newRow("no scale") << i64(100) << 64 << 50.0 << 0.0 << 20;
    QTest::newRow("NaN scale") << i64(100) << 64 << 50.0 << notANumber << 20;
    QTest::newRow("tiny scale") << i64(100) << 64 << 50.0 << 1e-300 << 20;
    QTest::newRow("infinite scale") << i64(100) << 64 << 50.0 << infinite << 20;
}

void tst_ZrWaterfallWindow::nonsense()
{
    QFETCH(i64, lines);
    QFETCH(int, capacity);
    QFETCH(double, end);
    QFETCH(double, pixelsPerLine);
    QFETCH(int, height);
    ZrWaterfallRing ring(capacity, 1);
    Log log(lines);
    ZrWaterfallWindow window(ring, log);
    ZrWaterfallView view = ViewOf(end, height);
    view.pixelsPerLine = pixelsPerLine;
    window.Update(view);
    window.Update(view);
    QVERIFY(window.Missing().empty());
    for (const i64 line : log.asked)
        QVERIFY(line >= 0 && line < lines);
}

void tst_ZrWaterfallWindow::tilesGiveLines()
{
    ZrWaterfallTiles tiles(1000, 1 << 20);
    QCOMPARE(tiles.LineCount(), i64(1000));
    ZrWaterfallLine line;
    QVERIFY(!tiles.Fetch(300, line));
    QVERIFY(tiles.Put(1, TileOf(1)));
    QVERIFY(tiles.Fetch(256, line));
    QCOMPARE(line.time, 256.0);
    QVERIFY(tiles.Fetch(511, line));
    QCOMPARE(line.time, 511.0);
    for (const i64 other : {i64(255), i64(512), i64(-1), i64(1000), std::numeric_limits<i64>::max()})
        QVERIFY(!tiles.Fetch(other, line));
    QCOMPARE(line.time, 511.0);
    QVERIFY(tiles.Put(3, TileOf(3, 232))); // the last one is shorter
    QVERIFY(tiles.Fetch(999, line));
}

void tst_ZrWaterfallWindow::oldTilesGo()
{
    const i64 one = 256 * i64(sizeof(ZrWaterfallLine) + 1);
    ZrWaterfallTiles tiles(100000, 3 * one);
    for (const i64 tile : {1, 2, 3})
        QVERIFY(tiles.Put(tile, TileOf(tile)));
    QCOMPARE(tiles.Bytes(), 3 * one);
    ZrWaterfallLine line;
    QVERIFY(tiles.Fetch(256, line)); // the first one was asked for last
    QVERIFY(tiles.Put(4, TileOf(4)));
    QVERIFY(tiles.Fetch(256, line));
    QVERIFY(!tiles.Fetch(512, line));
    QVERIFY(tiles.Fetch(768, line));
    QVERIFY(tiles.Put(4, TileOf(4))); // again: counted once
    QCOMPARE(tiles.Bytes(), 3 * one);
    ZrWaterfallTiles small(1000, 1);
    QVERIFY(small.Put(0, TileOf(0)));
    QVERIFY(small.Fetch(3, line));
    QVERIFY(small.Put(1, TileOf(1)));
    QVERIFY(small.Fetch(300, line));
    QVERIFY(!small.Fetch(3, line));
}

void tst_ZrWaterfallWindow::wantedTiles()
{
    ZrWaterfallTiles tiles(2000, 1 << 20);
    tiles.Put(2, TileOf(2));
    tiles.Put(3, TileOf(3, 100)); // lines 768 to 867
    using Lines = std::vector<ZrWaterfallRing::Lines>;
    QCOMPARE(tiles.Wanted(Lines{}), std::vector<i64>{});
    QCOMPARE(tiles.Wanted(Lines{{0, 1}}), std::vector<i64>{0});
    QCOMPARE(tiles.Wanted(Lines{{0, 1024}}), (std::vector<i64>{0, 1, 3}));
    QCOMPARE(tiles.Wanted(Lines{{10, 12}, {20, 30}, {255, 256}}), std::vector<i64>{0});
    QCOMPARE(tiles.Wanted(Lines{{800, 868}}), std::vector<i64>{});
    QCOMPARE(tiles.Wanted(Lines{{800, 869}}), std::vector<i64>{3});
    QCOMPARE(tiles.Wanted(Lines{{1900, 100000}}), std::vector<i64>{7});
    QCOMPARE(tiles.Wanted(Lines{{-50, 3}, {5000, 6000}}), std::vector<i64>{0});
}

void tst_ZrWaterfallWindow::wrongTiles()
{
    ZrWaterfallTiles tiles(1000, 1 << 20);
    QVERIFY(!tiles.Put(-1, TileOf(0)));
    QVERIFY(!tiles.Put(4, TileOf(4)));
    QVERIFY(tiles.Put(0, TileOf(0, 1000))); // no more than belong to it
    ZrWaterfallLine line;
    QVERIFY(!tiles.Fetch(256, line));
    QVERIFY(tiles.Put(1, {}));
    QVERIFY(!tiles.Fetch(256, line));
    ZrWaterfallTiles none(-5, 1 << 20);
    QCOMPARE(none.LineCount(), i64(0));
    QVERIFY(!none.Put(0, TileOf(0)));
    QVERIFY(!none.Fetch(0, line));
}

void tst_ZrWaterfallWindow::tilesOfAGrowingLog()
{
    ZrWaterfallTiles tiles(100, 1 << 20);
    tiles.Put(0, TileOf(0, 100));
    ZrWaterfallRing ring(64, 1);
    ZrWaterfallWindow window(ring, tiles);
    QVERIFY(window.Update(ViewOf(notANumber)));
    QVERIFY(tiles.Wanted(window.Missing()).empty());
    tiles.SetLineCount(110);
    QVERIFY(!window.Update(ViewOf(notANumber)));
    QCOMPARE(tiles.Wanted(window.Missing()), std::vector<i64>{0});
    tiles.Put(0, TileOf(0, 110));
    QVERIFY(window.Update(ViewOf(notANumber)));
    QVERIFY(window.Missing().empty());
}

void tst_ZrWaterfallWindow::tilesFromOtherThreads()
{
    constexpr i64 count = 40;
    ZrWaterfallTiles tiles(count * ZrWaterfallTiles::TileLines, 8 * 256 * i64(sizeof(ZrWaterfallLine)));
    std::vector<std::thread> workers;
    for (i64 w = 0; w < 2; ++w) {
        workers.emplace_back([&tiles, w] {
            for (i64 round = 0; round < 10; ++round) {
                for (i64 tile = w; tile < count; tile += 2)
                    tiles.Put(tile, TileOf(tile));
            }
        });
    }
    ZrWaterfallLine line;
    bool isRight = true;
    for (i64 i = 0; i < 20000; ++i) {
        const i64 number = i * 7919 % (count * ZrWaterfallTiles::TileLines);
        if (tiles.Fetch(number, line))
            isRight = isRight && line.time == static_cast<double>(number);
    }
    for (std::thread& worker : workers)
        worker.join();
    QVERIFY(isRight);
    QVERIFY(tiles.Bytes() > 0);
}

QTEST_GUILESS_MAIN(tst_ZrWaterfallWindow)
#include "tst_ZrWaterfallWindow.moc"
