// The glyph table and how the atlas is folded; none of it needs a context.

#include "ZrUtil/ZrGlSurface.h"

#include <QtTest>
#include <QtWidgets>

namespace {

class View : public ZrGlSurface
{
public:
    void Render() override { }

    void OnResize(int /*width*/, int /*height*/) override { }
};

QFont Font(int pixels)
{
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(pixels);
    return font;
}

/// Sides of the atlas, from a glyph's size and place.
QSize AtlasOf(const ZrGlSurface& view)
{
    const ZrGlSurface::Glyph& g = view.m_glyphs[33];
    return {qRound(static_cast<float>(g.width) / (g.s1 - g.s0)),
        qRound(static_cast<float>(g.height) / (g.t1 - g.t0))};
}

bool IsPowerOfTwo(int v)
{
    return v > 0 && (v & (v - 1)) == 0;
}

} // namespace

class tst_ZrGlSurfaceAtlas : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void narrowAtlasStays_data();
    void narrowAtlasStays();
    void glyphsAreMeasured();
    void atlasIsFolded_data();
    void atlasIsFolded();
    void glyphsDoNotOverlap_data();
    void glyphsDoNotOverlap();
};

void tst_ZrGlSurfaceAtlas::narrowAtlasStays_data()
{
    QTest::addColumn<int>("pixels");
    for (const int pixels : {333, 400, 501})
        QTest::addRow("%d", pixels) << pixels;
}

void tst_ZrGlSurfaceAtlas::narrowAtlasStays()
{
    // A row of glyphs that is at most twice as wide as high is not folded, and its sides are not rounded.
    QFETCH(int, pixels);
    QFont font = Font(pixels);
    font.setStretch(1);
    View view;
    view.ZrglSetFont(font);
    int wide = 0;
    for (const ZrGlSurface::Glyph& g : view.m_glyphs) {
        QVERIFY(g.width > 0);
        wide += g.width + 2;
    }
    const int high = view.m_glyphs[0].height;
    QVERIFY2(wide <= 2 * high, qPrintable(QStringLiteral("%1 x %2").arg(wide).arg(high)));
    QVERIFY(!IsPowerOfTwo(wide) && !IsPowerOfTwo(high));
    int x = 0;
    for (const ZrGlSurface::Glyph& g : view.m_glyphs) {
        QCOMPARE(g.s0, static_cast<float>(x) / static_cast<float>(wide));
        QCOMPARE(g.t0, 0.0F);
        QCOMPARE(g.t1, 1.0F);
        x += g.width + 2;
    }
}

void tst_ZrGlSurfaceAtlas::glyphsAreMeasured()
{
    View view;
    const QFont font = Font(19);
    view.ZrglSetFont(font);
    QCOMPARE(view.m_font, font);
    const QFontMetrics metrics(font);
    for (int i = 0; i < 94; ++i) {
        const ZrGlSurface::Glyph& g = view.m_glyphs[static_cast<std::size_t>(i)];
        QCOMPARE(int(g.code), 32 + i);
        QCOMPARE(g.width, metrics.horizontalAdvance(QChar(32 + i)));
        QCOMPARE(g.height, metrics.height());
    }
    View other;
    other.m_font = Font(31);
    other.ZrglInitFont();
    QCOMPARE(other.m_glyphs[5].height, QFontMetrics(Font(31)).height());
}

void tst_ZrGlSurfaceAtlas::atlasIsFolded_data()
{
    QTest::addColumn<int>("pixels");
    for (const int pixels : {1, 6, 12, 16, 24, 40, 100})
        QTest::addRow("%d", pixels) << pixels;
}

void tst_ZrGlSurfaceAtlas::atlasIsFolded()
{
    QFETCH(int, pixels);
    View view;
    view.ZrglSetFont(Font(pixels));
    int w = 0;
    for (const ZrGlSurface::Glyph& g : view.m_glyphs)
        w += g.width + 2;
    int h = view.m_glyphs[0].height;
    bool isFolded = false;
    while (w > 2 * h) {
        int half = 1;
        while (half < w / 2.0)
            half *= 2;
        int twice = 1;
        while (twice < 2 * h)
            twice *= 2;
        w = half;
        h = twice;
        isFolded = true;
    }
    QVERIFY(isFolded);
    QCOMPARE(AtlasOf(view), QSize(w, h));
    QVERIFY(IsPowerOfTwo(w) && IsPowerOfTwo(h));
    QVERIFY(w <= 2 * h);
}

void tst_ZrGlSurfaceAtlas::glyphsDoNotOverlap_data()
{
    atlasIsFolded_data();
}

void tst_ZrGlSurfaceAtlas::glyphsDoNotOverlap()
{
    QFETCH(int, pixels);
    View view;
    view.ZrglSetFont(Font(pixels));
    const QSize atlas = AtlasOf(view);
    int x = 0;
    int y = 0;
    for (const ZrGlSurface::Glyph& g : view.m_glyphs) {
        if (x + g.width > atlas.width()) {
            x = 0;
            y += g.height;
        }
        QCOMPARE(qRound(g.s0 * static_cast<float>(atlas.width())), x);
        QCOMPARE(qRound(g.s1 * static_cast<float>(atlas.width())), x + g.width);
        QCOMPARE(qRound(g.t0 * static_cast<float>(atlas.height())), y);
        QCOMPARE(qRound(g.t1 * static_cast<float>(atlas.height())), y + g.height);
        QVERIFY(g.s1 <= 1.0F && g.t1 <= 1.0F);
        x += g.width + 2;
    }
}

QTEST_MAIN(tst_ZrGlSurfaceAtlas)
#include "tst_ZrGlSurfaceAtlas.moc"
