// Pictures of whole texts: their bytes, their places, and what is kept.

#include "ZrKit/map/ZrTextRaster.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QRawFont>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

QFont FontOf(int size)
{
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(size);
    return font;
}

/// As the shader of labels reads a byte.
double Ink(uchar byte)
{
    const double value = (byte / 255.0 - static_cast<double>(ZrTextRaster::Edge))
            * static_cast<double>(ZrTextRaster::Sharpness)
        + 0.5;
    return std::clamp(value, 0.0, 1.0);
}

double HaloOf(uchar byte)
{
    const double value = (byte / 255.0 - static_cast<double>(ZrTextRaster::Edge))
            * static_cast<double>(ZrTextRaster::Sharpness)
        + 1.5;
    return std::clamp(value, 0.0, 1.0);
}

double InkSum(const QImage& image)
{
    double sum = 0.0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += Ink(image.constScanLine(y)[x]);
    }
    return sum;
}

} // namespace

class tst_ZrTextRaster : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void inkOfABlock();
    void haloOfABlock_data();
    void haloOfABlock();
    void sizeIsThatOfTheFont_data();
    void sizeIsThatOfTheFont();
    void isTrimmed();
    void glyphsStandAtQuarters();
    void haloLeavesTheInk();
    void everyScript_data();
    void everyScript();
    void glyphsThatMeet();
    void nothingToDraw_data();
    void nothingToDraw();
    void tooLong();
    void stampsAreKept();
    void stampsAreLimited();

private:
    ZrTextRaster::Picture Make(const QString& text, float size, float halo)
    {
        return m_raster.Make(m_atlas, m_atlas.Layout(text), size, halo);
    }

    ZrGlyphAtlas m_atlas{FontOf(32)};
    ZrTextRaster m_raster;
};

/// U+2588 has straight edges: coverage is that of a rectangle, wider to all sides.
void tst_ZrTextRaster::inkOfABlock()
{
    const ZrGlyphAtlas::Text text = m_atlas.Layout(QStringLiteral("\u2588"));
    QCOMPARE(text.places.size(), std::size_t(1));
    const double scale = 20.0 / 32.0;
    const QRectF outline = m_atlas.PathOf(text.places[0].glyph).boundingRect();
    const QRectF block
        = QRectF(outline.topLeft() * scale, outline.size() * scale).adjusted(-0.12, -0.12, 0.12, 0.12);
    const ZrTextRaster::Picture picture = m_raster.Make(m_atlas, text, 20.0F, 0.0F);
    QVERIFY(std::fabs(InkSum(picture.image) - block.width() * block.height()) < 1.5);
    for (int y = 0; y < picture.image.height(); ++y) {
        for (int x = 0; x < picture.image.width(); ++x) {
            const QRectF pixel(picture.corner + QPoint(x, y), QSizeF(1, 1));
            const QRectF covered = pixel & block;
            const double expected = covered.isEmpty() ? 0.0 : covered.width() * covered.height();
            QVERIFY2(std::fabs(Ink(picture.image.constScanLine(y)[x]) - expected) < 0.07,
                qPrintable(QStringLiteral("%1, %2: %3 for %4")
                               .arg(x)
                               .arg(y)
                               .arg(Ink(picture.image.constScanLine(y)[x]))
                               .arg(expected)));
        }
    }
}

void tst_ZrTextRaster::haloOfABlock_data()
{
    QTest::addColumn<float>("halo");
    for (const float halo : {0.4F, 1.0F, 1.5F, 3.0F, 10.0F})
        QTest::addRow("%g", static_cast<double>(halo)) << halo;
}

void tst_ZrTextRaster::haloOfABlock()
{
    QFETCH(float, halo);
    const QString text = QStringLiteral("\u2588");
    const ZrTextRaster::Picture plain = Make(text, 20.0F, 0.0F);
    const ZrTextRaster::Picture picture = Make(text, 20.0F, halo);
    // Left of the middle row coverage adds up to the width of the halo.
    const int row = picture.image.height() / 2;
    const uchar* bytes = picture.image.constScanLine(row);
    double sum = 0.0;
    for (int x = 0; x < picture.image.width(); ++x) {
        QVERIFY(Ink(bytes[x]) == 0.0 || HaloOf(bytes[x]) == 1.0);
        sum += HaloOf(bytes[x]);
    }
    double ink = 0.0;
    for (int x = 0; x < plain.image.width(); ++x)
        ink += Ink(plain.image.constScanLine(plain.image.height() / 2)[x]);
    QVERIFY2(std::fabs(sum - ink - 2.0 * static_cast<double>(halo)) < (halo < 1.0F ? 1.0 : 0.5),
        qPrintable(QStringLiteral("%1 for %2").arg(sum - ink).arg(2.0 * static_cast<double>(halo))));
    QVERIFY(halo < 1.2F || plain.corner.x() > picture.corner.x());
}

void tst_ZrTextRaster::sizeIsThatOfTheFont_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {9, 13, 18, 24, 48})
        QTest::addRow("%d", size) << size;
}

void tst_ZrTextRaster::sizeIsThatOfTheFont()
{
    QFETCH(int, size);
    const QString text = QStringLiteral("HEg 12,5 m");
    QFont font = FontOf(size);
    font.setHintingPreference(QFont::PreferNoHinting);
    const QRectF ink = QFontMetricsF(font).tightBoundingRect(text);
    const ZrTextRaster::Picture picture = Make(text, static_cast<float>(size), 0.0F);
    QVERIFY(std::fabs(picture.corner.x() - ink.left()) < 2.0);
    QVERIFY(std::fabs(picture.corner.y() - ink.top()) < 2.0);
    QVERIFY(std::fabs(picture.image.width() - ink.width()) < 3.0);
    QVERIFY(std::fabs(picture.image.height() - ink.height()) < 3.0);
}

void tst_ZrTextRaster::isTrimmed()
{
    for (const float halo : {0.0F, 2.0F}) {
        const QImage image = Make(QStringLiteral("Rig 7"), 15.0F, halo).image;
        const auto has = [&image](int fromX, int toX, int fromY, int toY) {
            for (int y = fromY; y <= toY; ++y) {
                for (int x = fromX; x <= toX; ++x) {
                    if (image.constScanLine(y)[x] != 0)
                        return true;
                }
            }
            return false;
        };
        const int right = image.width() - 1;
        const int bottom = image.height() - 1;
        QVERIFY(has(0, right, 0, 0) && has(0, right, bottom, bottom));
        QVERIFY(has(0, 0, 0, bottom) && has(right, right, 0, bottom));
    }
}

void tst_ZrTextRaster::glyphsStandAtQuarters()
{
    // The middle of all ink is that of the outlines, to an eighth of a pixel.
    ZrGlyphAtlas::Text text = m_atlas.Layout(QStringLiteral("l"));
    const auto middle = [&](float x) {
        text.places[0].x = x * 32.0F / 13.0F;
        const ZrTextRaster::Picture picture = m_raster.Make(m_atlas, text, 13.0F, 0.0F);
        double sum = 0.0;
        double moment = 0.0;
        for (int i = 0; i < picture.image.width(); ++i) {
            const double ink = Ink(picture.image.constScanLine(picture.image.height() / 2)[i]);
            sum += ink;
            moment += ink * (picture.corner.x() + i + 0.5);
        }
        return moment / sum;
    };
    const double first = middle(0.0F);
    for (const float x : {0.25F, 0.4F, 0.5F, 0.75F, 0.95F, 1.0F, 7.3F, -0.25F, -0.6F, -3.0F}) {
        QVERIFY2(std::fabs(middle(x) - first - static_cast<double>(x)) < 0.16,
            qPrintable(QStringLiteral("%1 for %2").arg(middle(x) - first).arg(static_cast<double>(x))));
    }
}

void tst_ZrTextRaster::haloLeavesTheInk()
{
    const QString text = QStringLiteral("AVWmi1lT.");
    const ZrTextRaster::Picture plain = Make(text, 18.0F, 0.0F);
    const ZrTextRaster::Picture picture = Make(text, 18.0F, 3.0F);
    const QPoint off = plain.corner - picture.corner;
    for (int y = 0; y < plain.image.height(); ++y) {
        for (int x = 0; x < plain.image.width(); ++x) {
            const uchar a = plain.image.constScanLine(y)[x];
            const uchar b = picture.image.constScanLine(y + off.y())[x + off.x()];
            QVERIFY(std::fabs(Ink(b) - Ink(a)) < 1e-6);
        }
    }
}

void tst_ZrTextRaster::everyScript_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("degree") << QStringLiteral("\u00b0");
    QTest::newRow("Arabic") << QStringLiteral("\u0645\u0631\u0641\u0623");
    QTest::newRow("Hebrew") << QStringLiteral("\u05e0\u05de\u05dc");
    QTest::newRow("both directions") << QStringLiteral("A \u05e0\u05de\u05dc 12");
    QTest::newRow("combining") << QStringLiteral("e\u0301a\u030a\u0323");
    QTest::newRow("Chinese") << QStringLiteral("\u6c88\u8239");
    QTest::newRow("half a pair") << QString(QChar(0xDC00));
    QTest::newRow("with an emoji") << QStringLiteral("A") + QString::fromUcs4(U"\U0001F6A2", 1);
}

void tst_ZrTextRaster::everyScript()
{
    QFETCH(QString, text);
    const ZrGlyphAtlas::Text places = m_atlas.Layout(text);
    QVERIFY(!places.places.empty());
    const ZrTextRaster::Picture picture = m_raster.Make(m_atlas, places, 16.0F, 1.5F);
    QVERIFY(InkSum(picture.image) > 3.0);
    QVERIFY(picture.corner.x() > -8 && picture.corner.y() > -32);
    QVERIFY(static_cast<float>(picture.image.width()) < places.width / 2.0F + 16.0F);
}

/// Ink of two glyphs in one pixel is more than that of each.
void tst_ZrTextRaster::glyphsThatMeet()
{
    ZrGlyphAtlas::Text text = m_atlas.Layout(QStringLiteral("\u2588"));
    const double one = InkSum(m_raster.Make(m_atlas, text, 10.0F, 0.0F).image);
    const double high = m_atlas.PathOf(text.places[0].glyph).boundingRect().height() * 10.0 / 32.0;
    const double wide = m_atlas.PathOf(text.places[0].glyph).boundingRect().width() * 10.0 / 32.0;
    text.places.push_back(text.places[0]);
    text.places[1].x += static_cast<float>(wide * 32.0 / 10.0);
    const double both = InkSum(m_raster.Make(m_atlas, text, 10.0F, 0.0F).image);
    QVERIFY2(both > 2.0 * one - 0.35 * high - 0.5 * high && both <= 2.0 * one,
        qPrintable(QStringLiteral("%1 of %2").arg(both).arg(one)));
    // The same twice is hardly more than once, and never wraps around.
    text.places[1] = text.places[0];
    const double twice = InkSum(m_raster.Make(m_atlas, text, 10.0F, 0.0F).image);
    QVERIFY(twice >= one && twice < one + 0.3 * (2.0 * high + 2.0 * wide));
}

void tst_ZrTextRaster::nothingToDraw_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("size");
    QTest::addColumn<float>("halo");
    const QString some = QStringLiteral("text");
    QTest::newRow("empty") << QString() << 13.0F << 1.0F;
    QTest::newRow("blanks") << QStringLiteral(" \n ") << 13.0F << 1.0F;
    QTest::newRow("size 0") << some << 0.0F << 1.0F;
    QTest::newRow("negative size") << some << -13.0F << 1.0F;
    QTest::newRow("size no number") << some << notANumber << 1.0F;
    QTest::newRow("size infinite") << some << infinite << 1.0F;
    QTest::newRow("too large") << some << 48.5F << 1.0F;
    QTest::newRow("halo no number") << some << 13.0F << notANumber;
    QTest::newRow("halo infinite") << some << 13.0F << infinite;
    QTest::newRow("halo too wide") << some << 13.0F << 1e9F;
    QTest::newRow("halo negative and infinite") << some << 13.0F << -infinite;
}

void tst_ZrTextRaster::nothingToDraw()
{
    QFETCH(QString, text);
    QFETCH(float, size);
    QFETCH(float, halo);
    QVERIFY(Make(text, size, halo).image.isNull());
    QVERIFY(!Make(QStringLiteral("text"), 13.0F, -1.0F).image.isNull());
}

void tst_ZrTextRaster::tooLong()
{
    QVERIFY(!Make(QString(30, QLatin1Char('W')), 13.0F, 1.0F).image.isNull());
    QVERIFY(Make(QString(10000, QLatin1Char('W')), 13.0F, 1.0F).image.isNull());
    ZrGlyphAtlas::Text text = m_atlas.Layout(QStringLiteral("ab"));
    for (const float bad : {1e30F, -1e30F, notANumber, infinite}) {
        text.places[1].x = bad;
        QVERIFY(m_raster.Make(m_atlas, text, 13.0F, 0.0F).image.isNull());
        text.places[1].x = 10.0F;
        text.places[1].y = bad;
        QVERIFY(m_raster.Make(m_atlas, text, 13.0F, 0.0F).image.isNull());
        text.places[1].y = 0.0F;
    }
}

void tst_ZrTextRaster::stampsAreKept()
{
    ZrTextRaster raster;
    const ZrGlyphAtlas::Text text = m_atlas.Layout(QStringLiteral("0101010101"));
    const QImage first = raster.Make(m_atlas, text, 13.0F, 1.0F).image;
    const int count = raster.StampCount();
    QVERIFY(count >= 2 && count <= 2 * ZrTextRaster::Phases);
    QCOMPARE(raster.Make(m_atlas, text, 13.0F, 1.0F).image, first);
    QCOMPARE(raster.StampCount(), count);
    raster.Make(m_atlas, text, 13.0F, 1.5F);
    QVERIFY(raster.StampCount() > count);
}

void tst_ZrTextRaster::stampsAreLimited()
{
    ZrTextRaster raster;
    const ZrGlyphAtlas::Text text = m_atlas.Layout(QStringLiteral("."));
    int most = 0;
    for (int i = 0; i < ZrTextRaster::MostStamps + 10; ++i) {
        raster.Make(m_atlas, text, 4.0F + static_cast<float>(i) * 0.001F, 0.0F);
        most = std::max(most, raster.StampCount());
    }
    QCOMPARE(most, ZrTextRaster::MostStamps);
    QVERIFY(raster.StampCount() < 20);
}

QTEST_MAIN(tst_ZrTextRaster)
#include "tst_ZrTextRaster.moc"
