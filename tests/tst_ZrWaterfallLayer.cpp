// What the waterfall layer draws and uploads, in both kinds of context.

#include "GlRecorder.h"
#include "WaterfallLayerTest.h"

class tst_ZrWaterfallLayer : public WaterfallLayerTest
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data() { AddContexts(); }

    void init() { Begin(); }

    void cleanup() { End(); }

    void everyPixel_data();
    void everyPixel();
    void fewLines_data();
    void fewLines();
    void rowsOfATallTexture();
    void magnified();
    void scrubbed();
    void severalTextures();
    void uploadsOnlyNewLines();
    void colourAndScrollUploadNothing();
    void drawsAndLookUps();
    void verticesAreBounded();
    void oneSideOnly();
    void oneSample();
    void manySamples();
    void nonsenseLines();
    void nothingToDraw_data();
    void nothingToDraw();
    void otherRing();
};

void tst_ZrWaterfallLayer::everyPixel_data()
{
    QTest::addColumn<int>("sides");
    QTest::addColumn<int>("newest");
    QTest::addColumn<int>("lines"); // appended to a ring of 80
    const int top = ZrWaterfallSettings::newestTop;
    const int bottom = ZrWaterfallSettings::newestBottom;
    QTest::newRow("both, newest on top") << int(ZrWaterfallSettings::bothSides) << top << 70;
    QTest::newRow("both, newest below") << int(ZrWaterfallSettings::bothSides) << bottom << 70;
    QTest::newRow("port") << int(ZrWaterfallSettings::portOnly) << top << 70;
    QTest::newRow("starboard") << int(ZrWaterfallSettings::starboardOnly) << bottom << 70;
    QTest::newRow("ring full") << int(ZrWaterfallSettings::bothSides) << top << 80;
    QTest::newRow("ring wrapped") << int(ZrWaterfallSettings::bothSides) << top << 111;
    QTest::newRow("ring wrapped, newest below") << int(ZrWaterfallSettings::bothSides) << bottom << 111;
    QTest::newRow("newest in the last row") << int(ZrWaterfallSettings::bothSides) << top << 160;
    QTest::newRow("newest in the first row") << int(ZrWaterfallSettings::bothSides) << top << 161;
}

/// One sample in one pixel: nothing is left to chance.
void tst_ZrWaterfallLayer::everyPixel()
{
    QFETCH(int, sides);
    QFETCH(int, newest);
    QFETCH(int, lines);
    const bool both = sides == ZrWaterfallSettings::bothSides;
    const int columns = both ? side / 2 : side;
    const int left = sides == ZrWaterfallSettings::starboardOnly ? 0 : columns;
    ZrWaterfallRing ring(80, columns);
    AppendPattern(ring, lines, columns);
    m_layer->SetRing(&ring);
    m_layer->m_view.sides = static_cast<ZrWaterfallSettings::eSides>(sides);
    m_layer->m_view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) {
                     const int row = newest == ZrWaterfallSettings::newestTop ? y : side - 1 - y;
                     const int sample = x < left ? left - 1 - x : x - left;
                     return Pattern(lines - 1 - row, x < left ? sidePort : sideStarboard, sample);
                 }),
        QString());
}

void tst_ZrWaterfallLayer::fewLines_data()
{
    QTest::addColumn<int>("newest");
    QTest::newRow("top") << int(ZrWaterfallSettings::newestTop);
    QTest::newRow("bottom") << int(ZrWaterfallSettings::newestBottom);
}

/// Pixels without lines, and those around the rectangle, stay as they are.
void tst_ZrWaterfallLayer::fewLines()
{
    QFETCH(int, newest);
    ZrWaterfallRing ring(80, 16);
    AppendPattern(ring, 5, 16);
    m_layer->SetRing(&ring);
    m_layer->m_view.rect = QRect(10, 7, 33, 40); // the wider half is starboard
    m_layer->m_view.range = 17.0;
    m_layer->m_view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) {
                     const int row = newest == ZrWaterfallSettings::newestTop ? y - 7 : 7 + 39 - y;
                     const int sample = x < 26 ? 25 - x : x - 26;
                     return row < 0 || row > 4 || sample > 15
                         ? -1
                         : Pattern(4 - row, x < 26 ? sidePort : sideStarboard, sample);
                 }),
        QString());
}

/// Coordinates of a tall texture need more than the ten bits of a small float.
void tst_ZrWaterfallLayer::rowsOfATallTexture()
{
    ZrWaterfallRing ring(4096, 32);
    AppendPattern(ring, 4090, 32);
    m_layer->SetRing(&ring);
    for (const double end : {4090.0, 2800.0, 1500.0}) {
        m_layer->m_view.end = end;
        QCOMPARE(Mismatch(Painted(),
                     [=](int x, int y) {
                         const int sample = x < 32 ? 31 - x : x - 32;
                         return Pattern(static_cast<i64>(end) - 1 - y, x < 32 ? 0 : 1, sample);
                     }),
            QString());
    }
}

void tst_ZrWaterfallLayer::magnified()
{
    ZrWaterfallRing ring(16, 8);
    AppendPattern(ring, 20, 8);
    m_layer->SetRing(&ring);
    m_layer->m_view.pixelsPerLine = 4.0;
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) {
                     const int sample = (x < 32 ? 31 - x : x - 32) / 4;
                     return Pattern(19 - y / 4, x < 32 ? 0 : 1, sample);
                 }),
        QString());
}

/// Back in the ring, by a fraction of a line; the edge lines are cut.
void tst_ZrWaterfallLayer::scrubbed()
{
    ZrWaterfallRing ring(64, 32);
    AppendPattern(ring, 64, 32);
    m_layer->SetRing(&ring);
    m_layer->m_view.pixelsPerLine = 8.0;
    m_layer->m_view.end = 40.25; // two pixels of line 40 are left
    const auto expected = [](int x, int y) {
        const int sample = x < 32 ? 31 - x : x - 32;
        return Pattern(40 - (y + 6) / 8, x < 32 ? 0 : 1, sample);
    };
    QCOMPARE(Mismatch(Painted(), expected), QString());
    AppendPattern(ring, 10, 32);
    QCOMPARE(Mismatch(Painted(), expected), QString()); // stands still while lines come
}

/// A ring that is too large for a texture looks the same.
void tst_ZrWaterfallLayer::severalTextures()
{
    ZrWaterfallRing ring(80, 32);
    AppendPattern(ring, 111, 32);
    m_layer->SetRing(&ring);
    const QImage whole = Painted();
    m_layer->m_mostTexels = 32;
    gl::Recorder recorder;
    QCOMPARE(gl::Difference(Painted(), whole), QString());
    QCOMPARE(recorder.uploadedBytes, qint64(2 * 80 * 32));
    recorder.Reset();
    AppendPattern(ring, 3, 32); // rows 31 to 33: the end of one texture, the beginning of the next
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(2 * 3 * 32));
    QVERIFY(recorder.draws.size() <= 6U);
    m_layer->m_mostTexels = 0;
    const QImage again = Painted();
    m_layer->m_mostTexels = 16; // narrower than the ring: the mean of two samples
    const QImage reduced = Painted();
    QVERIFY(again != reduced);
    for (int x = 32; x < side; ++x) {
        const int sample = (x - 32) / 2 * 2;
        const int sum = Pattern(113, 1, sample) + Pattern(113, 1, sample + 1);
        QVERIFY(Is(reduced.pixelColor(x, 0), (sum + 1) / 2));
    }
}

void tst_ZrWaterfallLayer::uploadsOnlyNewLines()
{
    constexpr int width = 50; // rows need no padding
    ZrWaterfallRing ring(80, width);
    m_layer->SetRing(&ring);
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));

    struct Step
    {
        int lines;
        int uploaded;
    };

    for (const Step step : {Step{60, 60}, Step{1, 1}, Step{0, 0}, Step{30, 30}, Step{1, 1}, Step{79, 79},
             Step{80, 80}, Step{500, 80}, Step{2, 2}}) {
        AppendPattern(ring, step.lines, width);
        recorder.Reset();
        Paint();
        QCOMPARE(recorder.uploadedBytes, qint64(step.uploaded) * width * 2);
    }
    QVERIFY(ring.Put(ring.End() - 10, Even(width, 3)));
    recorder.Reset();
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(width) * 2);
}

void tst_ZrWaterfallLayer::colourAndScrollUploadNothing()
{
    ZrWaterfallRing ring(80, 32);
    AppendPattern(ring, 80, 32);
    m_layer->SetRing(&ring);
    Paint();
    gl::Recorder recorder;
    m_layer->m_palette = 4;
    m_layer->m_gain = 2.0F;
    m_layer->m_slope = 0.1F;
    m_layer->m_isSmooth = true;
    m_layer->m_view.slantCorrected = true;
    m_layer->m_view.pixelsPerLine = 3.0;
    m_layer->m_view.end = 44.4;
    m_layer->m_view.range = 11.0;
    m_layer->m_view.rect = QRect(3, 4, 20, 30);
    Paint();
    QVERIFY(!recorder.draws.empty());
    QCOMPARE(recorder.uploadedBytes, qint64(0));
}

void tst_ZrWaterfallLayer::drawsAndLookUps()
{
    ZrWaterfallRing ring(80, 32);
    AppendPattern(ring, 40, 32);
    m_layer->SetRing(&ring);
    {
        gl::Recorder recorder;
        Paint();
        QCOMPARE(recorder.draws.size(), std::size_t(2)); // one for each side
        QCOMPARE(recorder.vertices, qint64(2 * 4)); // a quad each
        for (const int n : recorder.lookUps)
            QCOMPARE(n, 1);
    }
    AppendPattern(ring, 71, 32); // wraps: two quads for each side
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.draws.size(), std::size_t(2));
    QCOMPARE(recorder.vertices, qint64(2 * (4 + 2 + 4)));
    QCOMPARE(recorder.LookUpCount(), 0);
    for (const gl::Recorder::DrawCall& draw : recorder.draws)
        QVERIFY(!draw.isBlended);
}

/// The worst there is: each of thousands of lines from an altitude of its own, and at two ranges in turn.
void tst_ZrWaterfallLayer::verticesAreBounded()
{
    ZrWaterfallRing ring(4096, 16);
    for (int n = 0; n < 4096; ++n) {
        ZrWaterfallLine line = Even(16, 99);
        line.altitude = 3.0 + 0.01 * (n % 251);
        line.range = {n % 2 == 0 ? 30.0 : 60.0, 45.0};
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.slantCorrected = true;
    m_layer->m_isSmooth = true;
    m_layer->m_slope = 0.1F;
    for (const double pixels : {0.01, 1.0 / 64, 0.3, 1.0, 3.7}) {
        m_layer->m_view.pixelsPerLine = pixels;
        gl::Recorder recorder;
        Paint();
        QVERIFY(!recorder.draws.empty());
        QVERIFY(recorder.draws.size() <= 3U); // port has two ranges
        const int most = 2 * side * (2 * ZrWaterfallMesh::MostSteps(side / 2) + 4);
        QVERIFY2(recorder.vertices <= most, qPrintable(QString::number(recorder.vertices)));
    }
}

void tst_ZrWaterfallLayer::oneSideOnly()
{
    ZrWaterfallRing ring(side, 32);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = Even(32, 180);
        line.samples[sidePort].clear();
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    gl::Recorder recorder;
    QCOMPARE(Mismatch(Painted(), [](int x, int) { return x < 32 ? -1 : 180; }), QString());
    QCOMPARE(recorder.uploadedBytes, qint64(side * 32)); // what the sonar does not have needs no texture
    // Port comes later.
    ring.Append(Even(32, 90));
    QCOMPARE(Mismatch(Painted(), [](int x, int y) { return y == 0 ? 90 : x < 32 ? -1 : 180; }), QString());
}

void tst_ZrWaterfallLayer::oneSample()
{
    ZrWaterfallRing ring(side, 1);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = Even(1, 4 * n);
        line.range = {25.0, 25.0};
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    QCOMPARE(Mismatch(Painted(), [](int, int y) { return 4 * (side - 1 - y); }), QString());
}

/// More than a texture is wide: reduced, by the ring and again for the texture, to the mean or the strongest.
void tst_ZrWaterfallLayer::manySamples()
{
    constexpr int samples = 100000;
    for (const auto reduce : {ZrWaterfallRing::reduceMean, ZrWaterfallRing::reduceMax}) {
        ZrWaterfallRing ring(4, samples, reduce);
        QCOMPARE(ring.Width(), ZrWaterfallRing::MostWidth);
        for (int n = 0; n < 4; ++n) {
            ring.Append(LineOf(samples, [](int s, int sample) {
                return (sample < samples / 2 ? 100 : 0) + (sample == samples * 3 / 4 && s == 1 ? 255 : 0);
            }));
        }
        m_layer->SetRing(&ring);
        m_layer->m_view.pixelsPerLine = 16.0;
        m_layer->m_mostTexels = 32; // one for a pixel
        const bool isMax = reduce == ZrWaterfallRing::reduceMax;
        QCOMPARE(Mismatch(Painted(),
                     [=](int x, int) {
                         if (x == 32 + 24)
                             return isMax ? 255 : 0;
                         return std::abs(2 * x + 1 - 64) < 32 ? 100 : 0;
                     }),
            QString());
        // As wide as the context allows: whether the one bright sample meets the middle of a pixel is chance.
        m_layer->m_mostTexels = 0;
        const QImage image = Painted();
        for (int x = 0; x < side; ++x) {
            if (x < 55 || x > 57)
                QVERIFY(Is(image.pixelColor(x, 9), std::abs(2 * x + 1 - 64) < 32 ? 100 : 0));
        }
    }
}

void tst_ZrWaterfallLayer::nonsenseLines()
{
    ZrWaterfallRing ring(side, 32);
    const double ranges[] = {notANumber, infinite, -infinite, -5.0, 0.0, 1e-300, 1e300};
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = Even(32, 50);
        if (n % 8 != 7) {
            line.range = {ranges[n % 8], ranges[n % 8]};
            line.time = notANumber;
            line.along = infinite;
        }
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.range = 32.0;
    for (const bool slant : {false, true}) {
        m_layer->m_view.slantCorrected = slant;
        m_layer->m_view.speedCorrected = slant;
        QCOMPARE(Mismatch(Painted(),
                     [](int, int y) {
                         const int kind = (side - 1 - y) % 8;
                         return kind == 7 || kind == 6 ? 50 : -1; // 1e300 m reach across the view
                     }),
            QString());
    }
    m_layer->m_slope = 0.1F;
    m_layer->m_isSmooth = true;
    m_layer->m_view.range = 0.0;
    m_layer->m_view.pixelsPerLine = notANumber;
    m_layer->m_view.end = -infinite;
    Paint();
    m_layer->m_view.end = infinite;
    Paint();
}

void tst_ZrWaterfallLayer::nothingToDraw_data()
{
    QTest::addColumn<QString>("what");
    for (const char* what : {"no ring", "empty ring", "ring without room", "no samples", "no rectangle",
             "rectangle outside", "hidden", "view without pixels", "all missing"})
        QTest::newRow(what) << QString::fromLatin1(what);
}

void tst_ZrWaterfallLayer::nothingToDraw()
{
    QFETCH(QString, what);
    const bool hasRoom = what != QLatin1String("ring without room");
    ZrWaterfallRing ring(hasRoom ? 64 : 0, 32);
    if (what == QLatin1String("no samples"))
        ring.Append(ZrWaterfallLine());
    else if (what == QLatin1String("all missing"))
        ring.SetWindow(1000);
    else if (what != QLatin1String("empty ring"))
        AppendPattern(ring, 64, 32);
    m_layer->SetRing(what == QLatin1String("no ring") ? nullptr : &ring);
    m_layer->m_isVisible = what != QLatin1String("hidden");
    m_layer->m_view.range = 32.0;
    if (what == QLatin1String("no rectangle"))
        m_layer->m_view.rect = QRect(5, 5, 0, 10);
    if (what == QLatin1String("rectangle outside"))
        m_layer->m_view.rect = QRect(100, -300, 50, 50);
    if (what == QLatin1String("view without pixels"))
        m_view.SetSize(0, 0);
    m_context->Clear(background);
    m_layer->Paint(*m_surface, m_view);
    QCOMPARE(gl::CountNot(m_context->Read(), background), 0);
}

/// Another ring at the same place in memory is another ring.
void tst_ZrWaterfallLayer::otherRing()
{
    auto ring = std::make_unique<ZrWaterfallRing>(side, 32);
    for (int n = 0; n < side; ++n)
        ring->Append(Even(32, 30));
    m_layer->SetRing(ring.get());
    QCOMPARE(Mismatch(Painted(), [](int, int) { return 30; }), QString());
    ZrWaterfallRing other(side * 2, 48);
    for (int n = 0; n < side; ++n)
        other.Append(Even(32, 220));
    m_layer->SetRing(&other);
    QCOMPARE(Mismatch(Painted(), [](int, int) { return 220; }), QString());
    other.Clear();
    QCOMPARE(gl::CountNot(Painted(), background), 0);
    other.Append(Even(48, 77));
    QCOMPARE(Mismatch(Painted(), [](int, int y) { return y == 0 ? 77 : -1; }), QString());
}

GL_TEST_MAIN(tst_ZrWaterfallLayer)
#include "tst_ZrWaterfallLayer.moc"
