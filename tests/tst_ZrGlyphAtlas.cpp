// Glyphs of any text as distance fields in one image.

#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/map/ZrGlyphAtlas.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainterPath>
#include <QtTest>

#include <cmath>
#include <set>

namespace {

using Text = ZrGlyphAtlas::Text;

int s_lines = 0;
Text s_early; ///< of an atlas before there was an application

QFont FontOf(int size)
{
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(size);
    return font;
}

bool IsPowerOfTwo(int v)
{
    return v > 0 && (v & (v - 1)) == 0;
}

/// Many different characters: Latin, Greek, Cyrillic.
QString Alphabet(int count)
{
    QString text;
    for (ushort c = 0x21; text.size() < count; ++c) {
        const QChar letter(c);
        if (letter.isLetterOrNumber() && letter.decompositionTag() == QChar::NoDecomposition)
            text += letter;
        if (c == 0x24F)
            c = 0x390;
    }
    return text;
}

QImage Filled(const QSize& size, uchar value)
{
    QImage image(size, QImage::Format_Alpha8);
    image.fill(value);
    return image;
}

} // namespace

// Takes the place of the library's function.
void zr_debug_log_modern(int /*level*/, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* category, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* /*message*/)
{
    s_lines += QByteArray(category) == "ZrKit-ZrGlyphAtlas" ? 1 : 0;
}

class tst_ZrGlyphAtlas : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanupTestCase();
    void withoutApplication();
    void startsSmall();
    void fontSizes_data();
    void fontSizes();
    void widthIsThatOfTheFont_data();
    void widthIsThatOfTheFont();
    void placesAdvance();
    void blanksHaveNoCell();
    void kerning();
    void accentsCompose();
    void everyScriptHasGlyphs_data();
    void everyScriptHasGlyphs();
    void controlCharactersAreBlanks();
    void longTextIsCut();
    void cellHoldsTheOutline();
    void cellsAreApart();
    void growsInPowersOfTwo();
    void sameGlyphOnce();
    void growingKeepsThePixels();
    void dropsWhatIsNotUsed();
    void droppedComesBack();
    void fullOfWhatIsUsed();
    void absurdLargestSide_data();
    void absurdLargestSide();
    void changes();
    void pathsOfGlyphs();
    void pictures();
    void picturesTakeThePlaceOfOthers();
    void picturesLeaveRoomForGlyphs();
    void nonsensePictures();
};

void tst_ZrGlyphAtlas::init()
{
    s_lines = 0;
    zr_debug_log_level = 2;
    zr_debug_log_to_dbg = 1;
}

void tst_ZrGlyphAtlas::cleanupTestCase()
{
    zr_debug_log_level = -1;
    zr_debug_log_to_dbg = 0;
}

void tst_ZrGlyphAtlas::withoutApplication()
{
    QVERIFY(s_early.places.empty());
    QCOMPARE(s_early.width, 0.0F);
}

void tst_ZrGlyphAtlas::startsSmall()
{
    ZrGlyphAtlas atlas(FontOf(32));
    QCOMPARE(atlas.Image().size(), QSize(128, 128));
    QCOMPARE(atlas.Revision(), 0);
    QCOMPARE(atlas.GlyphCount(), 0);
    QVERIFY(atlas.Layout(QString()).places.empty());
    QVERIFY(atlas.Ascent() > 20.0F && atlas.Ascent() < 40.0F);
    QVERIFY(atlas.Descent() > 3.0F);
}

void tst_ZrGlyphAtlas::fontSizes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<float>("expected");
    QTest::newRow("usual") << 32 << 32.0F;
    QTest::newRow("tiny") << 1 << 8.0F;
    QTest::newRow("huge") << 5000 << 96.0F;
}

void tst_ZrGlyphAtlas::fontSizes()
{
    QFETCH(int, size);
    QFETCH(float, expected);
    ZrGlyphAtlas atlas(FontOf(size));
    QCOMPARE(atlas.FontSize(), expected);
    const Text text = atlas.Layout(QStringLiteral("Wg"));
    QVERIFY(atlas.Use(text));
    QVERIFY(!atlas.At(text.places[0].glyph).cell.isEmpty());
    // A font in points has a size too.
    QFont points;
    points.setPointSize(20);
    QVERIFY(ZrGlyphAtlas(points).FontSize() > 8.0F);
}

void tst_ZrGlyphAtlas::widthIsThatOfTheFont_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("digits") << QStringLiteral("0123456789");
    QTest::newRow("position") << QStringLiteral("51\u00b0 7' 24.444\" N");
    QTest::newRow("umlauts") << QStringLiteral("\u00c4\u00f6\u00fc\u00df\u00e9\u00f1");
    QTest::newRow("blank at the end") << QStringLiteral("ab ");
}

void tst_ZrGlyphAtlas::widthIsThatOfTheFont()
{
    QFETCH(QString, text);
    ZrGlyphAtlas atlas(FontOf(64));
    QFont font = FontOf(64);
    font.setHintingPreference(QFont::PreferNoHinting);
    const double expected = QFontMetricsF(font).horizontalAdvance(text);
    QVERIFY(std::fabs(static_cast<double>(atlas.Layout(text).width) - expected) < 0.02 * expected);
}

void tst_ZrGlyphAtlas::placesAdvance()
{
    ZrGlyphAtlas atlas(FontOf(32));
    const Text text = atlas.Layout(QStringLiteral("12,5 m"));
    QCOMPARE(text.places.size(), std::size_t(5));
    for (std::size_t i = 1; i < text.places.size(); ++i)
        QVERIFY(text.places[i].x > text.places[i - 1].x + 5.0F);
    for (const ZrGlyphAtlas::Place& place : text.places)
        QVERIFY(std::fabs(place.y) < 0.01F);
    QVERIFY(text.width > text.places.back().x);
}

void tst_ZrGlyphAtlas::blanksHaveNoCell()
{
    ZrGlyphAtlas atlas(FontOf(32));
    const Text text = atlas.Layout(QStringLiteral(" \u00a0 "));
    QVERIFY(text.places.empty());
    QVERIFY(text.width > 15.0F);
    QVERIFY(atlas.Use(text));
    QCOMPARE(atlas.Revision(), 0);
}

void tst_ZrGlyphAtlas::kerning()
{
    ZrGlyphAtlas atlas(FontOf(64));
    const float apart = atlas.Layout(QStringLiteral("A")).width + atlas.Layout(QStringLiteral("V")).width;
    QVERIFY(atlas.Layout(QStringLiteral("AV")).width < apart - 1.0F);
}

void tst_ZrGlyphAtlas::accentsCompose()
{
    ZrGlyphAtlas atlas(FontOf(32));
    const float plain = atlas.Layout(QStringLiteral("e")).width;
    QVERIFY(std::fabs(atlas.Layout(QStringLiteral("e\u0301")).width - plain) < 0.5F);
}

void tst_ZrGlyphAtlas::everyScriptHasGlyphs_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("Greek") << QStringLiteral("\u03a8\u03b7\u03bb\u03ac");
    QTest::newRow("Cyrillic") << QStringLiteral("\u041c\u043e\u0440\u0435");
    QTest::newRow("Arabic") << QStringLiteral("\u0645\u0631\u0641\u0623");
    QTest::newRow("Hebrew") << QStringLiteral("\u05e0\u05de\u05dc");
    // A box where no font of the system has it.
    QTest::newRow("Chinese") << QStringLiteral("\u6c88\u8239");
    QTest::newRow("beyond 16 bits") << QString::fromUcs4(U"\U0001D54F", 1);
    QTest::newRow("half a pair") << QString(QChar(0xD835));
    QTest::newRow("private use") << QString(QChar(0xE123));
}

void tst_ZrGlyphAtlas::everyScriptHasGlyphs()
{
    QFETCH(QString, text);
    ZrGlyphAtlas atlas(FontOf(32));
    const Text plain = atlas.Layout(text);
    QVERIFY(atlas.Use(plain));
    const Text mixed = atlas.Layout(QStringLiteral("A") + text + QStringLiteral("7"));
    QVERIFY(atlas.Use(mixed));
    QVERIFY(mixed.places.size() >= plain.places.size() + 2);
    QVERIFY(mixed.width > plain.width);
    for (const ZrGlyphAtlas::Place& place : mixed.places) {
        QVERIFY(!atlas.At(place.glyph).cell.isEmpty());
        QVERIFY(place.x > -5.0F && place.x < mixed.width + 5.0F);
    }
}

void tst_ZrGlyphAtlas::controlCharactersAreBlanks()
{
    ZrGlyphAtlas atlas(FontOf(32));
    const Text text = atlas.Layout(QStringLiteral("a\nb\tc\r\u2028d\u2029e\x01") + QChar(0) + QChar(0xFFFC));
    QCOMPARE(text.places.size(), std::size_t(5));
    for (const ZrGlyphAtlas::Place& place : text.places)
        QVERIFY(std::fabs(place.y) < 0.01F);
}

void tst_ZrGlyphAtlas::longTextIsCut()
{
    ZrGlyphAtlas atlas(FontOf(16));
    const QString longest(200, QLatin1Char('m'));
    QCOMPARE(atlas.Layout(longest).places.size(), std::size_t(200));
    const Text cut = atlas.Layout(QString(1000000, QLatin1Char('m')));
    QCOMPARE(cut.places.size(), std::size_t(200));
    const Text dots = atlas.Layout(QStringLiteral("\u2026"));
    QCOMPARE(cut.places.back().glyph, dots.places[0].glyph);
    // Not in the middle of a pair.
    const QString pair = QString::fromUcs4(U"\U0001D54F", 1);
    const Text pairs = atlas.Layout(QLatin1String("") + pair.repeated(101));
    const Text whole = atlas.Layout(pair);
    QCOMPARE(pairs.places.size(), std::size_t(100));
    QCOMPARE(pairs.places[98].glyph, whole.places[0].glyph);
}

void tst_ZrGlyphAtlas::cellHoldsTheOutline()
{
    ZrGlyphAtlas atlas(FontOf(48));
    const Text text = atlas.Layout(QStringLiteral("O"));
    QVERIFY(atlas.Use(text));
    const ZrGlyphAtlas::Glyph& glyph = atlas.At(text.places[0].glyph);
    const QRawFont raw = QRawFont::fromFont(FontOf(48));
    const QRectF ink = raw.pathForGlyph(raw.glyphIndexesForString(QStringLiteral("O"))[0]).boundingRect();
    QVERIFY(std::fabs(glyph.corner.x() + atlas.Border() - std::floor(ink.left())) < 1.01);
    QVERIFY(std::fabs(glyph.corner.y() + atlas.Border() - std::floor(ink.top())) < 1.01);
    // The ring is ink, its middle and the corners of the cell are not.
    const auto at = [&](int x, int y) { return int(atlas.Image().constScanLine(y)[x]); };
    const QRect cell = glyph.cell;
    QVERIFY(at(cell.center().x(), cell.center().y()) < 60);
    QCOMPARE(at(cell.left(), cell.top()), 0);
    QCOMPARE(at(cell.right(), cell.bottom()), 0);
    int largest = 0;
    for (int x = cell.left(); x <= cell.right(); ++x)
        largest = std::max(largest, at(x, cell.center().y()));
    QVERIFY(largest > 150);
}

void tst_ZrGlyphAtlas::cellsAreApart()
{
    ZrGlyphAtlas atlas(FontOf(32));
    const Text text = atlas.Layout(Alphabet(150));
    QVERIFY(atlas.Use(text));
    std::vector<QRect> cells;
    std::set<int> seen;
    for (const ZrGlyphAtlas::Place& place : text.places) {
        if (seen.insert(place.glyph).second)
            cells.push_back(atlas.At(place.glyph).cell);
    }
    QVERIFY(cells.size() > 100);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        QVERIFY(atlas.Image().rect().contains(cells[i]));
        const QRect around = cells[i].adjusted(0, 0, ZrGlyphAtlas::Gap, ZrGlyphAtlas::Gap);
        for (std::size_t j = 0; j < cells.size(); ++j)
            QVERIFY(i == j || !around.intersects(cells[j]));
    }
}

void tst_ZrGlyphAtlas::growsInPowersOfTwo()
{
    ZrGlyphAtlas atlas(FontOf(32), 1024);
    int revision = atlas.Revision();
    for (const QChar c : Alphabet(300)) {
        const Text text = atlas.Layout(QString(c));
        QVERIFY(atlas.Use(text));
        QVERIFY(IsPowerOfTwo(atlas.Image().width()) && IsPowerOfTwo(atlas.Image().height()));
        QVERIFY(atlas.Image().width() >= atlas.Image().height());
        QVERIFY(atlas.Image().width() <= 2 * atlas.Image().height());
        QVERIFY(atlas.Revision() >= revision);
        revision = atlas.Revision();
    }
    QVERIFY(atlas.Image().width() >= 512);
    QCOMPARE(s_lines, 0);
}

void tst_ZrGlyphAtlas::sameGlyphOnce()
{
    ZrGlyphAtlas atlas(FontOf(32));
    QVERIFY(atlas.Use(atlas.Layout(QStringLiteral("5050"))));
    const int revision = atlas.Revision();
    QCOMPARE(revision, 2);
    QCOMPARE(atlas.GlyphCount(), 2);
    QVERIFY(atlas.Use(atlas.Layout(QStringLiteral("0055005"))));
    QCOMPARE(atlas.Revision(), revision);
    QCOMPARE(atlas.GlyphCount(), 2);
}

void tst_ZrGlyphAtlas::growingKeepsThePixels()
{
    ZrGlyphAtlas atlas(FontOf(32));
    const Text text = atlas.Layout(QStringLiteral("R"));
    QVERIFY(atlas.Use(text));
    const QRect cell = atlas.At(text.places[0].glyph).cell;
    const QImage before = atlas.Image().copy(cell);
    QVERIFY(atlas.Use(atlas.Layout(Alphabet(150))));
    QVERIFY(atlas.Image().width() > 128);
    QCOMPARE(atlas.At(text.places[0].glyph).cell, cell);
    QCOMPARE(atlas.Image().copy(cell), before);
}

void tst_ZrGlyphAtlas::dropsWhatIsNotUsed()
{
    ZrGlyphAtlas atlas(FontOf(32), 128);
    const Text kept = atlas.Layout(QStringLiteral("Q"));
    QVERIFY(atlas.Use(kept));
    const QImage before = atlas.Image().copy(atlas.At(kept.places[0].glyph).cell);
    // Round after round what was there before has to go, but for the one that stays in use.
    for (const QChar c : Alphabet(120)) {
        atlas.NextRound();
        QVERIFY(atlas.Use(kept));
        const Text text = atlas.Layout(QString(c));
        QVERIFY(atlas.Use(text));
        QVERIFY(!atlas.At(text.places[0].glyph).cell.isEmpty());
        QCOMPARE(atlas.Image().copy(atlas.At(kept.places[0].glyph).cell), before);
    }
    QCOMPARE(atlas.Image().size(), QSize(128, 128));
    QCOMPARE(s_lines, 0);
}

void tst_ZrGlyphAtlas::droppedComesBack()
{
    ZrGlyphAtlas atlas(FontOf(32), 128);
    const Text first = atlas.Layout(QStringLiteral("B"));
    QVERIFY(atlas.Use(first));
    const QImage before = atlas.Image().copy(atlas.At(first.places[0].glyph).cell);
    for (const QChar c : Alphabet(60)) {
        atlas.NextRound();
        if (c != QLatin1Char('B'))
            atlas.Use(atlas.Layout(QString(c)));
    }
    QVERIFY(atlas.At(first.places[0].glyph).cell.isEmpty());
    QVERIFY(atlas.Use(first));
    QCOMPARE(atlas.Image().copy(atlas.At(first.places[0].glyph).cell), before);
}

void tst_ZrGlyphAtlas::fullOfWhatIsUsed()
{
    ZrGlyphAtlas atlas(FontOf(32), 128);
    const Text text = atlas.Layout(Alphabet(150));
    QVERIFY(!atlas.Use(text));
    QCOMPARE(s_lines, 1);
    QVERIFY(!atlas.At(text.places.front().glyph).cell.isEmpty());
    QVERIFY(atlas.At(text.places.back().glyph).cell.isEmpty());
    // Once is enough.
    QVERIFY(!atlas.Use(text));
    QCOMPARE(s_lines, 1);
}

void tst_ZrGlyphAtlas::absurdLargestSide_data()
{
    QTest::addColumn<int>("side");
    QTest::newRow("0") << 0;
    QTest::newRow("negative") << -5;
    QTest::newRow("not a power") << 200;
    QTest::newRow("huge") << std::numeric_limits<int>::max();
}

void tst_ZrGlyphAtlas::absurdLargestSide()
{
    QFETCH(int, side);
    ZrGlyphAtlas atlas(FontOf(32), side);
    atlas.Use(atlas.Layout(Alphabet(40)));
    QVERIFY(IsPowerOfTwo(atlas.Image().width()));
    QVERIFY(atlas.Image().width() <= std::max(side, 128));
}

void tst_ZrGlyphAtlas::changes()
{
    ZrGlyphAtlas atlas(FontOf(32));
    const auto whole = [&atlas] { return std::vector<QRect>{atlas.Image().rect()}; };
    QCOMPARE(atlas.ChangesSince(-1), whole());
    QCOMPARE(atlas.ChangesSince(0), std::vector<QRect>());
    const Text text = atlas.Layout(QStringLiteral("5"));
    QVERIFY(atlas.Use(text));
    const QRect cell = atlas.At(text.places[0].glyph).cell;
    QCOMPARE(atlas.ChangesSince(0), std::vector<QRect>{cell});
    QCOMPARE(atlas.ChangesSince(1), std::vector<QRect>());
    QVERIFY(atlas.Use(atlas.Layout(QStringLiteral("6"))));
    QCOMPARE(atlas.ChangesSince(0).size(), std::size_t(2));
    // A larger image is another one.
    const int before = atlas.Revision();
    QVERIFY(atlas.Use(atlas.Layout(Alphabet(20))));
    QVERIFY(atlas.Image().width() > 128);
    QCOMPARE(atlas.ChangesSince(before), whole());
    QCOMPARE(atlas.ChangesSince(atlas.Revision()), std::vector<QRect>());
    QCOMPARE(atlas.ChangesSince(std::numeric_limits<int>::max()), std::vector<QRect>());
    // And so is one with more changes than are told apart.
    ZrGlyphAtlas other(FontOf(8), 1024);
    other.AddPicture({QStringLiteral("large"), 1.0F, 0.0F}, Filled(QSize(1000, 300), 1), QPoint());
    const int start = other.Revision();
    for (int i = 0; i < 300; ++i)
        other.AddPicture({QString::number(i), 1.0F, 0.0F}, Filled(QSize(4, 4), 1), QPoint());
    QCOMPARE(other.ChangesSince(start), std::vector<QRect>{other.Image().rect()});
}

void tst_ZrGlyphAtlas::pathsOfGlyphs()
{
    ZrGlyphAtlas atlas(FontOf(48));
    const Text text = atlas.Layout(QStringLiteral("O"));
    const QRawFont raw = QRawFont::fromFont(FontOf(48));
    const QRectF ink = raw.pathForGlyph(raw.glyphIndexesForString(QStringLiteral("O"))[0]).boundingRect();
    const QRectF path = atlas.PathOf(text.places[0].glyph).boundingRect();
    QVERIFY(std::fabs(path.width() - ink.width()) < 0.6 && std::fabs(path.top() - ink.top()) < 0.6);
}

void tst_ZrGlyphAtlas::pictures()
{
    ZrGlyphAtlas atlas(FontOf(32));
    const ZrGlyphAtlas::PictureKey key{QStringLiteral("12 m"), 13.0F, 1.5F};
    QCOMPARE(atlas.FindPicture(key), -1);
    const int first = atlas.AddPicture(key, Filled(QSize(30, 12), 7), QPoint(-1, -11));
    QVERIFY(first >= 0);
    QCOMPARE(atlas.FindPicture(key), first);
    QCOMPARE(atlas.AddPicture(key, Filled(QSize(30, 12), 8), QPoint()), first);
    QCOMPARE(atlas.FindPicture({key.text, 13.5F, 1.5F}), -1);
    QCOMPARE(atlas.FindPicture({key.text, 13.0F, 0.0F}), -1);
    QCOMPARE(atlas.FindPicture({QStringLiteral("13 m"), 13.0F, 1.5F}), -1);
    QCOMPARE(atlas.PictureAt(first).corner, QPointF(-1, -11));
    QCOMPARE(atlas.PictureAt(first).cell.size(), QSize(30, 12));
    // It stays as it is where glyphs come and the image grows.
    QVERIFY(atlas.Use(atlas.Layout(Alphabet(60))));
    QVERIFY(atlas.Image().width() > 128);
    QCOMPARE(atlas.Image().copy(atlas.PictureAt(first).cell), Filled(QSize(30, 12), 7));
    QCOMPARE(atlas.FindPicture(key), first);
    QCOMPARE(s_lines, 0);
}

/// Texts that change all the time do not make the image grow on and on.
void tst_ZrGlyphAtlas::picturesTakeThePlaceOfOthers()
{
    ZrGlyphAtlas atlas(FontOf(32), 4096);
    const Text text = atlas.Layout(QStringLiteral("Q"));
    QVERIFY(atlas.Use(text));
    const ZrGlyphAtlas::PictureKey kept{QStringLiteral("kept"), 13.0F, 0.0F};
    QVERIFY(atlas.AddPicture(kept, Filled(QSize(50, 16), 9), QPoint(0, 0)) >= 0);
    int largest = 0;
    for (int round = 0; round < 200; ++round) {
        atlas.NextRound();
        QVERIFY(atlas.Use(text));
        QVERIFY(atlas.FindPicture(kept) >= 0);
        std::vector<int> added;
        for (int i = 0; i < 20; ++i) {
            const uchar value = static_cast<uchar>(10 + i);
            added.push_back(atlas.AddPicture({QStringLiteral("%1.%2").arg(round).arg(i), 13.0F, 0.0F},
                Filled(QSize(40 + i, 10 + round % 5), value), QPoint(round, i)));
            QVERIFY(added.back() >= 0);
        }
        for (int i = 0; i < 20; ++i) {
            const ZrGlyphAtlas::Glyph& picture = atlas.PictureAt(added[static_cast<std::size_t>(i)]);
            QCOMPARE(atlas.Image().copy(picture.cell),
                Filled(QSize(40 + i, 10 + round % 5), static_cast<uchar>(10 + i)));
            QCOMPARE(picture.corner, QPointF(round, i));
        }
        largest = std::max(largest, *std::max_element(added.begin(), added.end()));
    }
    QCOMPARE(atlas.Image().copy(atlas.PictureAt(atlas.FindPicture(kept)).cell), Filled(QSize(50, 16), 9));
    QVERIFY(!atlas.At(text.places[0].glyph).cell.isEmpty());
    QVERIFY2(atlas.Image().width() <= 256, qPrintable(QString::number(atlas.Image().width())));
    QVERIFY2(largest < 150, qPrintable(QString::number(largest)));
}

void tst_ZrGlyphAtlas::picturesLeaveRoomForGlyphs()
{
    ZrGlyphAtlas atlas(FontOf(16), 256);
    int count = 0;
    while (atlas.TakesPictures() && count < 10000) {
        const int id
            = atlas.AddPicture({QString::number(count), 13.0F, 0.0F}, Filled(QSize(31, 15), 1), QPoint());
        QCOMPARE(id >= 0, atlas.TakesPictures());
        count += id >= 0 ? 1 : 0;
    }
    // Half of 256 x 256, in cells of 32 x 16.
    QCOMPARE(count, 64);
    QVERIFY(atlas.Use(atlas.Layout(QStringLiteral("ABCDEFGHabcdefgh"))));
    QCOMPARE(s_lines, 0);
    // In the next round there is room again, and what is in use does not count twice.
    atlas.NextRound();
    QVERIFY(atlas.TakesPictures());
    for (int i = 0; i < 63; ++i) {
        QVERIFY(atlas.FindPicture({QString::number(i), 13.0F, 0.0F}) >= 0);
        QVERIFY(atlas.FindPicture({QString::number(i), 13.0F, 0.0F}) >= 0);
    }
    QVERIFY(atlas.AddPicture({QStringLiteral("new"), 13.0F, 0.0F}, Filled(QSize(31, 15), 1), QPoint()) >= 0);
    QCOMPARE(atlas.AddPicture({QStringLiteral("more"), 13.0F, 0.0F}, Filled(QSize(31, 15), 1), QPoint()), -1);
    QVERIFY(!atlas.TakesPictures());
}

void tst_ZrGlyphAtlas::nonsensePictures()
{
    ZrGlyphAtlas atlas(FontOf(32), 256);
    const ZrGlyphAtlas::PictureKey key{QStringLiteral("text"), 13.0F, 0.0F};
    QCOMPARE(atlas.AddPicture(key, QImage(), QPoint()), -1);
    QCOMPARE(atlas.AddPicture(key, QImage(8, 8, QImage::Format_RGB32), QPoint()), -1);
    QCOMPARE(atlas.AddPicture(key, Filled(QSize(257, 1), 1), QPoint()), -1);
    QCOMPARE(atlas.AddPicture(key, Filled(QSize(1, 300), 1), QPoint()), -1);
    QVERIFY(atlas.TakesPictures());
    QCOMPARE(atlas.FindPicture(key), -1);
    QCOMPARE(atlas.Revision(), 0);
}

int main(int argc, char* argv[])
{
    s_early = ZrGlyphAtlas().Layout(QStringLiteral("text"));
    QGuiApplication app(argc, argv);
    tst_ZrGlyphAtlas test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ZrGlyphAtlas.moc"
