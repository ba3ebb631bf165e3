// Texts are kept as they were shaped, as far as that does not take much memory.

#include "ZrKit/map/ZrGlyphAtlas.h"

#include <QtTest>

#include <algorithm>

namespace {

using Text = ZrGlyphAtlas::Text;

QFont Font()
{
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(32);
    return font;
}

} // namespace

class tst_ZrGlyphAtlasTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keptTexts();
    void keptTextsAreLimited_data();
    void keptTextsAreLimited();
};

/// Also beyond the number that is kept, and when the characters of the first call have become others.
void tst_ZrGlyphAtlasTexts::keptTexts()
{
    ZrGlyphAtlas atlas(Font());
    const auto same = [&](const Text& a, const Text& b) {
        return a.width == b.width && a.places.size() == b.places.size()
            && std::equal(a.places.begin(), a.places.end(), b.places.begin(),
                [](const auto& x, const auto& y) { return x.glyph == y.glyph && x.x == y.x && x.y == y.y; });
    };
    QString letters = QStringLiteral("Lot 7");
    const Text first = atlas.Layout(QString::fromRawData(letters.constData(), letters.size()));
    letters[4] = QLatin1Char('1');
    letters[0] = QLatin1Char('i');
    QVERIFY(same(atlas.Layout(QStringLiteral("Lot 7")), first));
    const Text other = atlas.Layout(letters);
    QVERIFY(!same(other, first));
    QCOMPARE(atlas.ShapedCount(), i64(2));
    // Too long ones are not.
    const QString longText(ZrGlyphAtlas::LongestText + 1, QLatin1Char('m'));
    atlas.Layout(longText);
    atlas.Layout(longText);
    QCOMPARE(atlas.ShapedCount(), i64(4));
    // The names of a long plan, at each step of zooming.
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 10000; ++i)
            QVERIFY(atlas.Layout(QString::number(10000 + i)).width > 0.0F);
    }
    QVERIFY(same(atlas.Layout(QStringLiteral("Lot 7")), first));
    QCOMPARE(atlas.ShapedCount(), i64(10004));
    QVERIFY2(atlas.KeptBytes() > 10000 * 150 && atlas.KeptBytes() < 10000 * 300,
        qPrintable(QString::number(atlas.KeptBytes())));
}

void tst_ZrGlyphAtlasTexts::keptTextsAreLimited_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("many glyphs") << QString(150, QLatin1Char('m'));
    QTest::newRow("one glyph") << QStringLiteral("m");
}

/// By the memory that they take, whatever they are of.
void tst_ZrGlyphAtlasTexts::keptTextsAreLimited()
{
    QFETCH(QString, text);
    ZrGlyphAtlas atlas(Font());
    atlas.Layout(text);
    int kept = atlas.KeptBytes();
    i64 count = 1;
    for (bool isDropped = false; !isDropped; ++count) {
        // As many different ones, with no glyph more: all of these are drawn as blanks.
        QString other = text;
        for (int bit = 0; bit < 17; ++bit)
            other += count >> bit & 1 ? QLatin1Char('\t') : QLatin1Char(' ');
        atlas.Layout(other);
        QVERIFY(count * other.size() * static_cast<int>(sizeof(QChar)) <= ZrGlyphAtlas::MostKeptBytes);
        isDropped = atlas.KeptBytes() <= kept;
        kept = atlas.KeptBytes();
        QVERIFY(kept > 0 && kept <= ZrGlyphAtlas::MostKeptBytes);
    }
    QVERIFY(count > 5000);
    QCOMPARE(atlas.ShapedCount(), count);
    atlas.Layout(text);
    QCOMPARE(atlas.ShapedCount(), count + 1);
}

QTEST_MAIN(tst_ZrGlyphAtlasTexts)
#include "tst_ZrGlyphAtlasTexts.moc"
