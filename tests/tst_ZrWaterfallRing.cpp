// Lines in rows: what lies where, what is new, what is missing.

#include "ZrKit/map/ZrWaterfallRing.h"

#include <QtTest/QtTest>

#include <cmath>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

ZrWaterfallLine LineOf(std::vector<u8> port, std::vector<u8> starboard = {9})
{
    ZrWaterfallLine line;
    line.samples = {std::move(port), std::move(starboard)};
    line.range = {10.0, 20.0};
    return line;
}

ZrWaterfallLine AltitudeOf(double altitude)
{
    ZrWaterfallLine line = LineOf({1});
    line.altitude = altitude;
    return line;
}

ZrWaterfallLine AlongOf(double along)
{
    ZrWaterfallLine line = LineOf({1});
    line.along = along;
    return line;
}

QString Text(const std::vector<ZrWaterfallRing::Run>& runs)
{
    QStringList texts;
    for (const ZrWaterfallRing::Run& run : runs)
        texts << QStringLiteral("%1@%2x%3").arg(run.line).arg(run.row).arg(run.count);
    return texts.join(QLatin1Char(' '));
}

QString Text(const std::vector<ZrWaterfallRing::Lines>& missing)
{
    QStringList texts;
    for (const ZrWaterfallRing::Lines& lines : missing)
        texts << QStringLiteral("%1-%2").arg(lines.first).arg(lines.end);
    return texts.join(QLatin1Char(' '));
}

QByteArray Bytes(zr::span<const u8> bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

} // namespace

class tst_ZrWaterfallRing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty();
    void sizesAreLimited_data();
    void sizesAreLimited();
    void withoutRoom();
    void appends();
    void oldestGoes();
    void rowsOfASide();
    void lineWithoutSamples_data();
    void lineWithoutSamples();
    void reduces_data();
    void reduces();
    void reducesUnevenly();
    void newRows_data();
    void newRows();
    void runs_data();
    void runs();
    void windowOfALog();
    void windowKeepsWhatItHas();
    void windowOfAHugeLog();
    void windowEnds();
    void putOutside();
    void altitudesAreHeld();
    void altitudeOfEverything_data();
    void altitudeOfEverything();
    void usualStep();
    void longestRange();
    void clears();
    void idsDiffer();
};

void tst_ZrWaterfallRing::startsEmpty()
{
    const ZrWaterfallRing ring(8, 4);
    QCOMPARE(ring.Capacity(), 8);
    QCOMPARE(ring.Width(), 4);
    QCOMPARE(ring.First(), i64(0));
    QCOMPARE(ring.End(), i64(0));
    QVERIFY(!ring.Has(0));
    QVERIFY(!ring.Has(-1));
    QVERIFY(!ring.HasSide(sidePort));
    QVERIFY(ring.RowsSince(0).empty());
    QVERIFY(ring.Runs(-100, 100).empty());
    QVERIFY(std::isnan(ring.Altitude(0)));
    QCOMPARE(ring.UsualStep(), 0.0);
    QCOMPARE(ring.LongestRange(true), 0.0);
}

void tst_ZrWaterfallRing::sizesAreLimited_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("capacity");
    QTest::addColumn<int>("bytes");
    constexpr int most = std::numeric_limits<int>::max();
    QTest::newRow("usual") << 2048 << 1024 << 2048 << 1024;
    QTest::newRow("one") << 1 << 1 << 1 << 1;
    QTest::newRow("negative") << -5 << 8 << 0 << 0;
    QTest::newRow("no width") << 8 << 0 << 0 << 0;
    QTest::newRow("negative width") << 8 << -1 << 0 << 0;
    QTest::newRow("many lines") << most << 1 << 65536 << 1;
    QTest::newRow("wide") << 2 << most << 2 << 65536;
    QTest::newRow("both") << most << most << 8192 << 65536;
}

void tst_ZrWaterfallRing::sizesAreLimited()
{
    QFETCH(int, lines);
    QFETCH(int, width);
    const ZrWaterfallRing ring(lines, width);
    QTEST(ring.Capacity(), "capacity");
    QTEST(ring.Width(), "bytes");
    QVERIFY(2 * i64(ring.Capacity()) * ring.Width() <= ZrWaterfallRing::MostBytes);
}

void tst_ZrWaterfallRing::withoutRoom()
{
    ZrWaterfallRing ring(0, 0);
    QCOMPARE(ring.Append(LineOf({1})), i64(-1));
    ring.SetWindow(5);
    QVERIFY(!ring.Put(5, LineOf({1})));
    QVERIFY(!ring.Has(5));
    QVERIFY(ring.Runs(0, 10).empty());
    QCOMPARE(Text(ring.Missing(0, 10)), QStringLiteral("0-10"));
    QCOMPARE(ring.LongestRange(true), 0.0);
}

void tst_ZrWaterfallRing::appends()
{
    ZrWaterfallRing ring(4, 3);
    ZrWaterfallLine line = LineOf({1, 2, 3}, {4, 5});
    line.time = 1234.5;
    line.altitude = 6.0;
    line.along = 77.0;
    QCOMPARE(ring.Append(line), i64(0));
    QVERIFY(ring.Has(0));
    const ZrWaterfallRing::Entry& entry = ring.At(0);
    QCOMPARE(entry.line, i64(0));
    QCOMPARE(entry.time, 1234.5);
    QCOMPARE(entry.altitude, 6.0);
    QCOMPARE(entry.along, 77.0);
    QCOMPARE(entry.range[sidePort], 10.0);
    QCOMPARE(entry.range[sideStarboard], 20.0);
    QCOMPARE(entry.count[sidePort], 3);
    QCOMPARE(entry.count[sideStarboard], 2);
    QCOMPARE(Bytes(ring.Samples(0, sidePort)), QByteArray("\x01\x02\x03"));
    QCOMPARE(Bytes(ring.Samples(0, sideStarboard)), QByteArray("\x04\x05"));
    QVERIFY(ring.HasSide(sidePort) && ring.HasSide(sideStarboard));
}

void tst_ZrWaterfallRing::oldestGoes()
{
    ZrWaterfallRing ring(4, 1);
    for (int i = 0; i < 11; ++i)
        QCOMPARE(ring.Append(LineOf({static_cast<u8>(i)})), i64(i));
    QCOMPARE(ring.First(), i64(7));
    QCOMPARE(ring.End(), i64(11));
    QVERIFY(!ring.Has(6));
    QVERIFY(!ring.Has(11));
    for (int i = 7; i < 11; ++i) {
        QVERIFY(ring.Has(i));
        QCOMPARE(ring.Samples(i, sidePort)[0], static_cast<u8>(i));
        QCOMPARE(ring.Row(i), i % 4);
    }
}

void tst_ZrWaterfallRing::rowsOfASide()
{
    ZrWaterfallRing ring(3, 2);
    for (int i = 1; i <= 4; ++i)
        ring.Append(LineOf({static_cast<u8>(i), static_cast<u8>(10 * i)}, {static_cast<u8>(100 + i)}));
    // Row after row; the rest of a row repeats the last sample.
    QCOMPARE(Bytes({ring.Bytes(sidePort), 6}), QByteArray("\x04\x28\x02\x14\x03\x1e"));
    QCOMPARE(Bytes({ring.Bytes(sideStarboard), 6}), QByteArray("\x68\x68\x66\x66\x67\x67"));
}

void tst_ZrWaterfallRing::lineWithoutSamples_data()
{
    QTest::addColumn<double>("range");
    QTest::addColumn<bool>("hasSamples");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("usual") << 5.0 << true << true;
    QTest::newRow("no samples") << 5.0 << false << false;
    QTest::newRow("no range") << 0.0 << true << false;
    QTest::newRow("negative") << -5.0 << true << false;
    QTest::newRow("NaN") << notANumber << true << false;
    QTest::newRow("infinite") << infinite << true << false;
}

void tst_ZrWaterfallRing::lineWithoutSamples()
{
    QFETCH(double, range);
    QFETCH(bool, hasSamples);
    QFETCH(bool, isShown);
    ZrWaterfallRing ring(3, 2);
    ZrWaterfallLine line = LineOf(hasSamples ? std::vector<u8>{1, 2} : std::vector<u8>{}, {});
    line.range = {range, range};
    ring.Append(line);
    QCOMPARE(ring.At(0).count[sidePort], isShown ? 2 : 0);
    QCOMPARE(ring.At(0).range[sidePort], isShown ? range : 0.0);
    QCOMPARE(ring.HasSide(sidePort), isShown);
    QVERIFY(!ring.HasSide(sideStarboard));
    QVERIFY(ring.Has(0)); // a ping it is nevertheless
}

void tst_ZrWaterfallRing::reduces_data()
{
    QTest::addColumn<QByteArray>("in");
    QTest::addColumn<QByteArray>("mean"); // of 4 bytes
    QTest::addColumn<QByteArray>("max");
    const auto row = [](const char* name, QByteArray in, QByteArray mean, QByteArray max) {
        QTest::newRow(name) << in << mean << max;
    };
    const auto b = [](std::initializer_list<int> values) {
        QByteArray bytes;
        for (const int v : values)
            bytes.append(static_cast<char>(v));
        return bytes;
    };
    row("nothing", {}, b({0, 0, 0, 0}), b({0, 0, 0, 0}));
    row("one", b({7}), b({7, 7, 7, 7}), b({7, 7, 7, 7}));
    row("fewer", b({1, 2, 9}), b({1, 2, 9, 9}), b({1, 2, 9, 9}));
    row("as many", b({1, 2, 3, 255}), b({1, 2, 3, 255}), b({1, 2, 3, 255}));
    row("twice", b({0, 255, 10, 20, 3, 3, 0, 1}), b({128, 15, 3, 1}), b({255, 20, 3, 1}));
    // Five to four: each covers one and a quarter.
    row("five", b({100, 0, 0, 0, 200}), b({80, 0, 0, 160}), b({100, 0, 0, 200}));
    // (0 + 60 × 0.5) / 1.5 and so on.
    row("six", b({0, 60, 0, 0, 0, 30}), b({20, 20, 0, 20}), b({60, 60, 0, 30}));
    row("white", QByteArray(997, '\xff'), b({255, 255, 255, 255}), b({255, 255, 255, 255}));
}

void tst_ZrWaterfallRing::reduces()
{
    QFETCH(QByteArray, in);
    const zr::span<const u8> samples(
        reinterpret_cast<const u8*>(in.constData()), static_cast<std::size_t>(in.size()));
    std::vector<u8> out(4, 77);
    ZrWaterfallRing::Reduce(samples, out, ZrWaterfallRing::reduceMean);
    QTEST(Bytes(out), "mean");
    ZrWaterfallRing::Reduce(samples, out, ZrWaterfallRing::reduceMax);
    QTEST(Bytes(out), "max");
    ZrWaterfallRing::Reduce(samples, {}, ZrWaterfallRing::reduceMean);
}

/// A single bright sample is never lost to the strongest, wherever it lies, and never beyond its neighbours.
void tst_ZrWaterfallRing::reducesUnevenly()
{
    for (const std::size_t wide : {101U, 777U, 100000U}) {
        for (const std::size_t width : {1U, 7U, 100U}) {
            std::vector<u8> out(width);
            for (std::size_t at = 0; at < wide; at += wide / 50) {
                std::vector<u8> in(wide, 0);
                in[at] = 200;
                ZrWaterfallRing::Reduce(in, out, ZrWaterfallRing::reduceMax);
                const std::size_t from = at * width / wide;
                const std::size_t to = ((at + 1) * width - 1) / wide;
                for (std::size_t i = 0; i < width; ++i)
                    QCOMPARE(int(out[i]), i >= from && i <= to ? 200 : 0);
            }
            ZrWaterfallRing::Reduce(std::vector<u8>(wide, 91), out, ZrWaterfallRing::reduceMean);
            QVERIFY(std::all_of(out.begin(), out.end(), [](u8 v) { return v == 91; }));
        }
    }
}

void tst_ZrWaterfallRing::newRows_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("lines");
    QTest::addColumn<QString>("rows"); // line@row x count, of a ring of 8
    QTest::newRow("none") << 3 << 0 << QString();
    QTest::newRow("first") << 0 << 1 << QStringLiteral("0@0x1");
    QTest::newRow("some") << 2 << 3 << QStringLiteral("2@2x3");
    QTest::newRow("to the end") << 5 << 3 << QStringLiteral("5@5x3");
    QTest::newRow("around the end") << 6 << 4 << QStringLiteral("8@0x2 6@6x2");
    QTest::newRow("all but one") << 9 << 7 << QStringLiteral("9@1x7");
    QTest::newRow("all") << 5 << 8 << QStringLiteral("8@0x8");
    QTest::newRow("more than all") << 5 << 100 << QStringLiteral("104@0x8");
}

void tst_ZrWaterfallRing::newRows()
{
    QFETCH(int, before);
    QFETCH(int, lines);
    ZrWaterfallRing ring(8, 2);
    for (int i = 0; i < before; ++i)
        ring.Append(LineOf({1}));
    const u64 revision = ring.Revision();
    QVERIFY(ring.RowsSince(revision).empty());
    for (int i = 0; i < lines; ++i)
        ring.Append(LineOf({1}));
    QTEST(Text(ring.RowsSince(revision)), "rows");
}

void tst_ZrWaterfallRing::runs_data()
{
    QTest::addColumn<int>("lines"); // appended to a ring of 8
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("end");
    QTest::addColumn<QString>("runs");
    QTest::addColumn<QString>("missing");
    const QString none;
    QTest::newRow("all") << 5 << 0 << 5 << QStringLiteral("0@0x5") << none;
    QTest::newRow("part") << 5 << 1 << 3 << QStringLiteral("1@1x2") << none;
    QTest::newRow("beyond") << 5 << 3 << 9 << QStringLiteral("3@3x2") << QStringLiteral("5-9");
    QTest::newRow("wrapped") << 13 << 5 << 13 << QStringLiteral("5@5x3 8@0x5") << none;
    QTest::newRow("gone") << 13 << 2 << 7 << QStringLiteral("5@5x2") << QStringLiteral("2-5");
    QTest::newRow("behind the end") << 13 << 9 << 12 << QStringLiteral("9@1x3") << none;
    QTest::newRow("nothing") << 13 << 9 << 9 << none << none;
    QTest::newRow("backwards") << 13 << 9 << 7 << none << none;
    QTest::newRow("far away") << 13 << 100 << 103 << none << QStringLiteral("100-103");
}

void tst_ZrWaterfallRing::runs()
{
    QFETCH(int, lines);
    QFETCH(int, first);
    QFETCH(int, end);
    ZrWaterfallRing ring(8, 2);
    for (int i = 0; i < lines; ++i)
        ring.Append(LineOf({1}));
    QTEST(Text(ring.Runs(first, end)), "runs");
    QTEST(Text(ring.Missing(first, end)), "missing");
}

void tst_ZrWaterfallRing::windowOfALog()
{
    ZrWaterfallRing ring(8, 1);
    ring.SetWindow(1000003);
    QCOMPARE(ring.First(), i64(1000003));
    QCOMPARE(ring.End(), i64(1000011));
    QCOMPARE(Text(ring.Missing(1000003, 1000011)), QStringLiteral("1000003-1000011"));
    for (const i64 line : {1000005, 1000004, 1000009, 1000008})
        QVERIFY(ring.Put(line, LineOf({static_cast<u8>(line % 100)})));
    QCOMPARE(Text(ring.Runs(0, 2000000)), QStringLiteral("1000004@4x2 1000008@0x2"));
    QCOMPARE(Text(ring.Missing(1000003, 1000011)),
        QStringLiteral("1000003-1000004 1000006-1000008 1000010-1000011"));
    QCOMPARE(ring.Samples(1000009, sidePort)[0], u8(9));
}

void tst_ZrWaterfallRing::windowKeepsWhatItHas()
{
    ZrWaterfallRing ring(8, 1);
    ring.SetWindow(100);
    for (i64 line = 100; line < 108; ++line)
        ring.Put(line, LineOf({1}));
    const u64 revision = ring.Revision();
    ring.SetWindow(103);
    QVERIFY(ring.RowsSince(revision).empty());
    QCOMPARE(Text(ring.Missing(103, 111)), QStringLiteral("108-111"));
    QVERIFY(!ring.Has(102));
    ring.SetWindow(98); // what was not overwritten is back
    QCOMPARE(Text(ring.Missing(98, 106)), QStringLiteral("98-100"));
    ring.SetWindow(200);
    QCOMPARE(Text(ring.Missing(200, 208)), QStringLiteral("200-208"));
}

void tst_ZrWaterfallRing::windowOfAHugeLog()
{
    ZrWaterfallRing ring(8, 1);
    constexpr i64 most = std::numeric_limits<i64>::max();
    ring.SetWindow(most);
    QCOMPARE(ring.First(), most - 8);
    QVERIFY(ring.Put(most - 1, LineOf({1})));
    QVERIFY(ring.Has(most - 1));
    QVERIFY(!ring.Has(most));
    ring.SetWindow(std::numeric_limits<i64>::min());
    QCOMPARE(ring.First(), i64(0));
}

void tst_ZrWaterfallRing::windowEnds()
{
    ZrWaterfallRing ring(8, 1);
    ring.SetWindow(10, 13);
    QCOMPARE(ring.End(), i64(13));
    QVERIFY(!ring.Put(13, LineOf({1})));
    ring.SetWindow(10, 5);
    QCOMPARE(ring.End(), i64(10));
    ring.SetWindow(10, 1000);
    QCOMPARE(ring.End(), i64(18));
}

void tst_ZrWaterfallRing::putOutside()
{
    ZrWaterfallRing ring(8, 1);
    QVERIFY(!ring.Put(0, LineOf({1})));
    ring.SetWindow(10);
    const u64 revision = ring.Revision();
    for (const i64 line : {i64(9), i64(18), i64(-1), std::numeric_limits<i64>::max()})
        QVERIFY(!ring.Put(line, LineOf({1})));
    QCOMPARE(ring.Revision(), revision);
}

void tst_ZrWaterfallRing::altitudesAreHeld()
{
    ZrWaterfallRing ring(8, 1);
    for (const double altitude : {notANumber, 0.0, 5.0, notANumber, -1.0, infinite, 7.0, notANumber})
        ring.Append(AltitudeOf(altitude));
    const double expected[] = {5.0, 5.0, 5.0, 5.0, 5.0, 5.0, 7.0, 7.0};
    for (int i = 0; i < 8; ++i)
        QCOMPARE(ring.Altitude(i), expected[i]);
    // Its line gone, nothing is known of it.
    for (int i = 0; i < 3; ++i)
        ring.Append(AltitudeOf(notANumber));
    QCOMPARE(ring.Altitude(3), 7.0);
    QVERIFY(std::isnan(ring.Altitude(2)));
    for (int i = 0; i < 6; ++i)
        ring.Append(AltitudeOf(notANumber));
    QVERIFY(std::isnan(ring.Altitude(14)));
}

void tst_ZrWaterfallRing::altitudeOfEverything_data()
{
    QTest::addColumn<i64>("line");
    QTest::newRow("before") << i64(-1);
    QTest::newRow("after") << i64(1);
    QTest::newRow("far") << std::numeric_limits<i64>::max();
}

void tst_ZrWaterfallRing::altitudeOfEverything()
{
    QFETCH(i64, line);
    ZrWaterfallRing ring(8, 1);
    ring.Append(AltitudeOf(3.0));
    QVERIFY(std::isnan(ring.Altitude(line)));
}

void tst_ZrWaterfallRing::usualStep()
{
    ZrWaterfallRing ring(16, 1);
    for (const double along : {0.0, 0.0, 1.0, 3.0, notANumber, 9.0, 12.0, 112.0})
        ring.Append(AlongOf(along));
    QCOMPARE(ring.UsualStep(), 3.0); // of 1, 2, 3, 100
    ZrWaterfallRing still(16, 1);
    for (int i = 0; i < 10; ++i)
        still.Append(AlongOf(5.0));
    QCOMPARE(still.UsualStep(), 0.0);
}

void tst_ZrWaterfallRing::longestRange()
{
    ZrWaterfallRing ring(4, 1);
    ZrWaterfallLine line = AltitudeOf(12.0);
    ring.Append(line);
    QCOMPARE(ring.LongestRange(false), 20.0);
    QCOMPARE(ring.LongestRange(true), 16.0); // √(20² − 12²)
    line.range = {30.0, 0.0};
    line.altitude = 50.0; // all in the water column
    ring.Append(line);
    QCOMPARE(ring.LongestRange(false), 30.0);
    QCOMPARE(ring.LongestRange(true), 16.0);
}

void tst_ZrWaterfallRing::clears()
{
    ZrWaterfallRing ring(4, 1);
    for (int i = 0; i < 6; ++i)
        ring.Append(AltitudeOf(3.0));
    const u64 revision = ring.Revision();
    ring.Clear();
    QVERIFY(ring.Revision() > revision);
    QCOMPARE(ring.End(), i64(0));
    QVERIFY(!ring.Has(0));
    QVERIFY(!ring.HasSide(sidePort));
    QVERIFY(std::isnan(ring.Altitude(0)));
    QCOMPARE(ring.Append(LineOf({1})), i64(0));
    QCOMPARE(Text(ring.RowsSince(revision)), QStringLiteral("0@0x1"));
}

void tst_ZrWaterfallRing::idsDiffer()
{
    const ZrWaterfallRing a(1, 1);
    const ZrWaterfallRing b(1, 1);
    QVERIFY(a.Id() != b.Id());
    QVERIFY(a.Id() != 0);
}

QTEST_GUILESS_MAIN(tst_ZrWaterfallRing)
#include "tst_ZrWaterfallRing.moc"
