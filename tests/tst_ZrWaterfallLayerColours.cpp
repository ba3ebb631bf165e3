// Slant correction and colours of the waterfall layer, in both kinds of context.

#include "WaterfallLayerTest.h"

class tst_ZrWaterfallLayerColours : public WaterfallLayerTest
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data() { AddContexts(); }

    void init() { Begin(); }

    void cleanup() { End(); }

    void slantCorrection_data();
    void slantCorrection();
    void slantCorrectionOfEachLine();
    void waterColumn();
    void unknownAltitude();
    void rangesAtTheirScale();
    void colours_data();
    void colours();
    void slopeIsByRange();
    void steepSlopes();
    void nonsenseUniforms();
    void palettes();
    void palettesOutOfRange();
    void opacity();
    void smoothHasNoSeams();
};

void tst_ZrWaterfallLayerColours::slantCorrection_data()
{
    QTest::addColumn<double>("altitude");
    QTest::addColumn<int>("sides");
    for (const double altitude : {0.5, 3.0, 10.0, 25.0, 60.0, 200.0}) {
        QTest::addRow("%g m, both", altitude) << altitude << int(ZrWaterfallSettings::bothSides);
        QTest::addRow("%g m, port", altitude) << altitude << int(ZrWaterfallSettings::portOnly);
    }
}

/// Line n is bright up to a slant range, which reaches over the seabed to where the square root says.
void tst_ZrWaterfallLayerColours::slantCorrection()
{
    QFETCH(double, altitude);
    QFETCH(int, sides);
    constexpr int samples = 4096;
    const double reach = std::hypot(40.0, altitude); // slant range of the samples; 32 m are shown
    const double share = altitude / reach;
    ZrWaterfallRing ring(side, samples);
    std::vector<int> bright;
    for (int n = 0; n < side; ++n) {
        const int count = static_cast<int>(samples * (share + (1.0 - share) * (n + 0.5) / side));
        bright.push_back(count);
        ZrWaterfallLine line = LineOf(samples, [=](int, int sample) { return sample < count ? 255 : 0; });
        line.range = {reach, reach};
        line.altitude = altitude;
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.sides = static_cast<ZrWaterfallSettings::eSides>(sides);
    m_layer->m_view.slantCorrected = true;
    m_layer->m_view.range = 32.0;
    const QImage image = Painted();
    const bool both = sides == ZrWaterfallSettings::bothSides;
    const int columns = both ? side / 2 : side;
    for (int y = 0; y < side; ++y) {
        const double slant = bright[static_cast<std::size_t>(side - 1 - y)] * reach / samples;
        const double ground = std::sqrt(std::max(slant * slant - altitude * altitude, 0.0)) * columns / 32.0;
        for (int x = 0; x < side; ++x) {
            const double out = std::fabs(x + 0.5 - columns);
            const bool isBright = Is(image.pixelColor(x, y), 255);
            const bool isDark = Is(image.pixelColor(x, y), 0);
            QVERIFY(isBright != isDark);
            if (std::fabs(out - ground) > 1.0)
                QVERIFY2(isBright == (out < ground), qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }
}

/// Neighbouring lines from different altitudes: each by its own.
void tst_ZrWaterfallLayerColours::slantCorrectionOfEachLine()
{
    constexpr int samples = 2048;
    ZrWaterfallRing ring(side, samples);
    const auto altitudeOf = [](int n) { return 5.0 + 0.3 * (n % 17) + 4.0 * (n % 2); };
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line
            = LineOf(samples, [](int, int sample) { return sample < samples / 2 ? 255 : 0; });
        line.range = {40.0, 40.0};
        line.altitude = altitudeOf(n);
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.slantCorrected = true;
    m_layer->m_view.range = 32.0;
    const QImage image = Painted();
    for (int y = 0; y < side; ++y) {
        const double ground = std::sqrt(20.0 * 20.0 - std::pow(altitudeOf(side - 1 - y), 2.0));
        for (int x = 0; x < side; ++x) {
            const double out = std::fabs(x + 0.5 - 32.0);
            if (std::fabs(out - ground) > 1.0)
                QVERIFY(Is(image.pixelColor(x, y), out < ground ? 255 : 0));
        }
    }
}

/// Above the seabed: shown in slant range, cut away over ground; nothing is left of a line that ends there.
void tst_ZrWaterfallLayerColours::waterColumn()
{
    ZrWaterfallRing ring(side, 32);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = LineOf(32, [](int, int sample) { return sample < 20 ? 0 : 255; });
        line.altitude = n < 32 ? 20.0 : 32.0;
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.range = 32.0;
    QCOMPARE(
        Mismatch(Painted(), [](int x, int) { return std::abs(2 * x + 1 - 64) < 40 ? 0 : 255; }), QString());
    m_layer->m_view.slantCorrected = true;
    const double end = std::sqrt(32.0 * 32.0 - 20.0 * 20.0); // 24.98
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) { return y >= 32 && std::fabs(x + 0.5 - 32.0) < end ? 255 : -1; }),
        QString());
}

/// Held from the line before, or from the first known one; without any nothing can be corrected.
void tst_ZrWaterfallLayerColours::unknownAltitude()
{
    const auto step = [](int, int sample) { return sample < 20 ? 255 : 0; };
    ZrWaterfallRing ring(side, 32);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = LineOf(32, step);
        line.altitude = n % 3 == 0 ? notANumber : n % 3 == 1 ? -4.0 : infinite;
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.range = 32.0;
    m_layer->m_view.slantCorrected = true;
    const auto flat = [](int x, int) { return std::abs(2 * x + 1 - 64) < 40 ? 255 : 0; };
    QCOMPARE(Mismatch(Painted(), flat), QString());

    ZrWaterfallLine known = LineOf(32, step);
    known.altitude = 12.0;
    QVERIFY(ring.Put(30, known));
    const QImage image = Painted();
    for (int y = 0; y < side; ++y) {
        QVERIFY(Is(image.pixelColor(32 + 14, y), 255)); // to √(20² − 12²) = 16
        QVERIFY(Is(image.pixelColor(32 + 18, y), 0));
    }
}

/// The range was changed twice: each line at its scale, in one picture.
void tst_ZrWaterfallLayerColours::rangesAtTheirScale()
{
    ZrWaterfallRing ring(side, 64);
    const auto rangeOf = [](int n) { return n < 20 ? 32.0 : n < 40 ? 16.0 : 128.0; };
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = LineOf(64, [](int, int sample) { return sample < 32 ? 255 : 0; });
        line.range = {rangeOf(n), rangeOf(n)};
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.range = 32.0;
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) {
                     const double out = std::fabs(x + 0.5 - 32.0);
                     const double range = rangeOf(side - 1 - y);
                     return out > range ? -1 : out < range / 2.0 ? 255 : 0;
                 }),
        QString());
    m_layer->m_view.range = 0.0; // all there is: 128 m, four to a pixel
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) {
                     const double out = std::fabs(x + 0.5 - 32.0) * 4.0;
                     const double range = rangeOf(side - 1 - y);
                     return out > range ? -1 : out < range / 2.0 ? 255 : 0;
                 }),
        QString());
}

void tst_ZrWaterfallLayerColours::colours_data()
{
    QTest::addColumn<float>("gain");
    QTest::addColumn<float>("clamp");
    QTest::addColumn<float>("slope");
    QTest::newRow("plain") << 0.0F << 0.0F << 0.0F;
    QTest::newRow("gain") << 0.5F << 0.0F << 0.0F;
    QTest::newRow("gain beyond white") << 3.0F << 0.0F << 0.0F;
    QTest::newRow("less gain") << -0.5F << 0.0F << 0.0F;
    QTest::newRow("clamp") << 0.0F << 0.25F << 0.0F;
    QTest::newRow("clamp below 0") << 0.0F << -0.25F << 0.0F;
    QTest::newRow("slope") << 0.0F << 0.0F << 0.5F;
    QTest::newRow("slope down") << 0.0F << 0.0F << -0.5F;
    QTest::newRow("all") << 0.75F << 0.125F << 0.25F;
}

/// ((i − r) / (1 − r)) × (1 + gain), r growing with range.
void tst_ZrWaterfallLayerColours::colours()
{
    QFETCH(float, gain);
    QFETCH(float, clamp);
    QFETCH(float, slope);
    ZrWaterfallRing ring(side, 32);
    for (int n = 0; n < side; ++n)
        ring.Append(Even(32, 4 * n));
    m_layer->SetRing(&ring);
    m_layer->m_gain = gain;
    m_layer->m_clamp = clamp;
    m_layer->m_slope = slope;
    const QImage image = Painted();
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const double i = 4.0 * (side - 1 - y) / 255.0;
            const double q = std::fabs(x + 0.5 - 32.0) / 32.0;
            const double r = static_cast<double>(clamp) + static_cast<double>(slope) * q;
            const double out = std::clamp((i - r) / (1.0 - r) * (1.0 + static_cast<double>(gain)), 0.0, 1.0);
            QVERIFY2(Is(image.pixelColor(x, y), out * 255.0),
                qPrintable(QStringLiteral("%1, %2: %3").arg(x).arg(y).arg(out * 255.0)));
        }
    }
}

/// The slope is by the range shown, whatever the range and the number of samples of a line.
void tst_ZrWaterfallLayerColours::slopeIsByRange()
{
    ZrWaterfallRing ring(side, 128);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = Even(n < 32 ? 128 : 40, 200);
        line.range = {n < 16 ? 32.0 : 64.0, n < 16 ? 32.0 : 64.0};
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.range = 64.0;
    m_layer->m_slope = 0.5F;
    const QImage image = Painted();
    for (int y = 0; y < side; ++y) {
        for (const int x : {33, 40, 47, 20}) {
            const double q = std::fabs(x + 0.5 - 32.0) / 32.0;
            const double out = (200.0 / 255.0 - 0.5 * q) / (1.0 - 0.5 * q) * 255.0;
            bool any = false; // the slope is right to a hundredth
            for (const double off : {-1.0, 0.0, 1.0})
                any = any || Is(image.pixelColor(x, y), out + off);
            QVERIFY2(any, qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }
}

/// As far as there are samples a slope may be steep; where r would come to 1 it is limited, or all turned
/// white.
void tst_ZrWaterfallLayerColours::steepSlopes()
{
    ZrWaterfallRing near(side, 16);
    for (int n = 0; n < side; ++n)
        near.Append(Even(16, 200));
    m_layer->SetRing(&near);
    m_layer->m_view.range = 32.0;
    m_layer->m_slope = 1.5F;
    const QImage image = Painted();
    for (const int x : {32, 38, 44}) {
        const double r = 1.5 * (x + 0.5 - 32.0) / 32.0;
        bool any = false; // the slope is right to a hundredth
        for (const double off : {-2.0, -1.0, 0.0, 1.0, 2.0})
            any = any
                || Is(image.pixelColor(x, 5), std::max((200.0 / 255.0 - r) / (1.0 - r) * 255.0, 0.0) + off);
        QVERIFY2(any, qPrintable(QString::number(x)));
    }
    // Over ground the slant range goes beyond the range shown.
    ZrWaterfallRing high(side, 100);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = Even(100, 100);
        line.altitude = 60.0;
        high.Append(line);
    }
    m_layer->SetRing(&high);
    m_layer->m_view.slantCorrected = true;
    m_layer->m_slope = 0.9F;
    QCOMPARE(Mismatch(Painted(), [](int, int) { return 0; }), QString());
}

/// No division by zero, no number that is none reaches the shader.
void tst_ZrWaterfallLayerColours::nonsenseUniforms()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const QImage plain = Painted();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    m_layer->m_gain = m_layer->m_clamp = m_layer->m_slope = nan;
    QCOMPARE(gl::Difference(Painted(), plain), QString());
    constexpr float inf = std::numeric_limits<float>::infinity();
    m_layer->m_gain = 0.0F;
    m_layer->m_clamp = inf; // as 0.95: only what is brighter shows
    m_layer->m_slope = inf;
    ZrWaterfallRing dark(side, 32);
    for (int n = 0; n < side; ++n)
        dark.Append(Even(32, 200));
    m_layer->SetRing(&dark);
    QCOMPARE(Mismatch(Painted(), [](int, int) { return 0; }), QString());
}

void tst_ZrWaterfallLayerColours::palettes()
{
    QVERIFY(m_surface->m_palCount > 3);
    ZrWaterfallRing ring(side, 1);
    for (int n = 0; n < side; ++n)
        ring.Append(Even(1, 4 * n));
    m_layer->SetRing(&ring);
    for (int palette = -1; palette < m_surface->m_palCount; ++palette) {
        m_layer->m_palette = palette;
        m_surface->m_palIndex = 3; // for -1
        const QImage image = Painted();
        for (int y = 0; y < side; ++y)
            QVERIFY(Is(image.pixelColor(5, y), 4.0 * (side - 1 - y), palette < 0 ? 3 : palette));
    }
}

void tst_ZrWaterfallLayerColours::palettesOutOfRange()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    m_layer->m_palette = m_surface->m_palCount - 1;
    const QImage last = Painted();
    m_layer->m_palette = 1000;
    QCOMPARE(gl::Difference(Painted(), last), QString());
    m_layer->m_palette = 0;
    const QImage first = Painted();
    m_layer->m_palette = -1;
    m_surface->m_palIndex = -7;
    QCOMPARE(gl::Difference(Painted(), first), QString());
}

/// Black lets the background through by 1 - alpha, white not at all.
void tst_ZrWaterfallLayerColours::opacity()
{
    ZrWaterfallRing ring(side, 1);
    for (int n = 0; n < side; ++n)
        ring.Append(Even(1, n < 32 ? 0 : 255));
    m_layer->SetRing(&ring);
    m_layer->m_alpha = 0.25F;
    const QImage image = Painted();
    QVERIFY(Is(image.pixelColor(9, 9), 255));
    const QColor black = m_palettes.pixelColor(0, 15);
    const auto mix = [](int under, int over) { return qRound(under * 0.75 + over * 0.25); };
    const QColor expected(mix(background.red(), black.red()), mix(background.green(), black.green()),
        mix(background.blue(), black.blue()), image.pixelColor(9, 50).alpha());
    QVERIFY(gl::Distance(image.pixelColor(9, 50), expected) <= 2);
    m_layer->m_alpha = 0.0F;
    QVERIFY(Painted().pixelColor(9, 50).rgb() == background.rgb());
}

/// The newest line is black, the oldest, which lies beside it in the texture, white: they must not mix, nor
/// must rows that hold nothing.
void tst_ZrWaterfallLayerColours::smoothHasNoSeams()
{
    m_layer->m_isSmooth = true;
    m_layer->m_view.pixelsPerLine = 8.0;
    for (const int lines : {4, 8, 11}) {
        ZrWaterfallRing ring(8, 4);
        for (int n = 0; n < lines; ++n)
            ring.Append(Even(4, n < lines - 4 ? 255 : 0));
        m_layer->SetRing(&ring);
        const QImage image = Painted();
        for (int y = 0; y < 4 * 8 - 4; ++y)
            QVERIFY2(Is(image.pixelColor(40, y), 0), qPrintable(QString::number(y)));
        if (lines == 4)
            continue;
        // Half-way between the middles of two neighbours half of each.
        QVERIFY(Is(image.pixelColor(40, 31), 255.0 * 7 / 16));
        QVERIFY(Is(image.pixelColor(40, 32), 255.0 * 9 / 16));
        const int rest = std::min(lines, 8) * 8;
        for (int y = 4 * 8 + 4; y < rest; ++y)
            QVERIFY2(Is(image.pixelColor(40, y), 255), qPrintable(QString::number(y)));
    }
}

GL_TEST_MAIN(tst_ZrWaterfallLayerColours)
#include "tst_ZrWaterfallLayerColours.moc"
