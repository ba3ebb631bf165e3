// A value to be read at arm's length.

#include "DrawnText.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUiChecks.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

/// What has another colour than the tile.
QRect InkBox(const QImage& image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.rgb() != ZrTheme::toolBack.rgb() && colour.rgb() != QColor(Qt::black).rgb())
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

} // namespace

class tst_ZrValueTile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void tellsAssistiveTechnologies();
    void numbers_data();
    void numbers();
    void sizeFollowsTheScale();
    void noValueIsADash();
    void partsAreShown();
    void states_data();
    void states();
    void normalHasNoBand();
    void longValueFits_data();
    void longValueFits();
    void longCaptionAndNoteFit();
    void noteMakesRoom();
    void lowTileIsOneLine_data();
    void lowTileIsOneLine();
    void noteWithoutRoom();
    void repaintsOnlyForChanges();
    void clicks();
    void noRoom();
    void rowHasOneSize();
    void rowRepaintsForOthers();
    void rowWithoutOneOfThem();

private:
    std::unique_ptr<ZrThemeState> m_theme;
};

void tst_ZrValueTile::init()
{
    m_theme.reset();
    m_theme = std::make_unique<ZrThemeState>();
    // Square corners and one colour: what is left is text.
    ZrTheme::rxy = 0;
    ZrTheme::toolBack = QColor(10, 20, 30);
}

void tst_ZrValueTile::tellsAssistiveTechnologies()
{
    ZrValueTile tile(nullptr, S("Tiefe"));
    QCOMPARE(tile.accessibleName(), S("Tiefe"));
    tile.Set(S("12.4"), S("m"));
    QCOMPARE(tile.accessibleName(), S("Tiefe 12.4 m"));
    QCOMPARE(tile.Value(), S("12.4"));
    QCOMPARE(tile.Unit(), S("m"));
    tile.Set(S("12.4"), QString());
    QCOMPARE(tile.accessibleName(), S("Tiefe 12.4"));
    tile.Set(QString(), QString());
    QCOMPARE(tile.accessibleName(), S("Tiefe"));
}

void tst_ZrValueTile::sizeFollowsTheScale()
{
    const ZrValueTile tile(nullptr, S("Depth"));
    QCOMPARE(tile.sizeHint(), QSize(180, 96));
    ZrTheme::dp = 2.0F;
    QCOMPARE(tile.sizeHint(), QSize(360, 192));
}

void tst_ZrValueTile::noValueIsADash()
{
    ZrValueTile tile(nullptr, QString());
    tile.resize(180, 96);
    const QImage none = Painted(tile);
    tile.Set(S("–"), QString());
    QCOMPARE(Painted(tile), none);
    tile.Set(S("1"), QString());
    QVERIFY(Painted(tile) != none);
    tile.Set(QString(), QString());
    QCOMPARE(Painted(tile), none);
}

/// Each text changes its own place: caption above, value in the middle, unit right of it, note below.
void tst_ZrValueTile::partsAreShown()
{
    const auto painted = [](const char* caption, const char* value, const char* unit, const char* note) {
        ZrValueTile tile(nullptr, S(caption));
        tile.resize(180, 96);
        tile.Set(S(value), S(unit));
        tile.SetNote(S(note));
        return Painted(tile);
    };
    const auto box = [](const QImage& a, const QImage& b) {
        QRect rect;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x)
                rect |= a.pixel(x, y) != b.pixel(x, y) ? QRect(x, y, 1, 1) : QRect();
        }
        return rect;
    };
    const QImage all = painted("HH", "88", "kn", "HH");
    const QRect caption = box(all, painted("", "88", "kn", "HH"));
    const QRect value = box(painted("HH", "88", "", "HH"), painted("HH", "18", "", "HH"));
    const QRect unit = box(all, painted("HH", "88", "", "HH"));
    const QRect note = box(painted("", "", "", "HH"), painted("", "", "", "HX"));
    for (const QRect& part : {caption, value, unit, note})
        QVERIFY(!part.isEmpty());
    QVERIFY(caption.bottom() < value.top());
    QVERIFY(unit.left() > value.right());
    QVERIFY(note.top() > value.bottom() && note.bottom() < 96);
    QVERIFY(value.height() > 2 * caption.height());
    // The unit stands on the line of the value.
    QVERIFY(std::abs(unit.bottom() - value.bottom()) <= 1);
}

void tst_ZrValueTile::states_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("good") << int(ZrValueTile::good);
    QTest::newRow("warning") << int(ZrValueTile::warning);
    QTest::newRow("error") << int(ZrValueTile::error);
    QTest::newRow("stale") << int(ZrValueTile::stale);
    QTest::newRow("preview") << int(ZrValueTile::preview);
}

/// Value and a band along the left edge have the colour of the state; the band alone tells for those who see
/// no colours.
void tst_ZrValueTile::states()
{
    QFETCH(int, state);
    const auto value = static_cast<ZrValueTile::eState>(state);
    const QColor colours[] = {ZrTheme::ctrlCol, ZrTheme::goodCol, ZrTheme::warnCol, ZrTheme::errorCol,
        ZrTheme::ctrlOutlineCol, ZrTheme::ctrlHighlightCol};
    ZrValueTile tile(nullptr, S("Depth"));
    tile.resize(180, 96);
    tile.Set(S("HHH"), QString());
    tile.SetState(value);
    QCOMPARE(tile.State(), value);
    const QImage image = Painted(tile);
    for (int y = 0; y < 96; ++y) {
        for (int x = 0; x < 4; ++x)
            QCOMPARE(image.pixelColor(x, y).rgb(), colours[state].rgb());
        QCOMPARE(image.pixelColor(4, y), ZrTheme::toolBack);
    }
    QVERIFY(HasColour(image.copy(10, 0, 170, 96), colours[state]));
}

void tst_ZrValueTile::normalHasNoBand()
{
    ZrValueTile tile(nullptr, S("Depth"));
    tile.resize(180, 96);
    tile.Set(S("HHH"), QString());
    const QImage normal = Painted(tile);
    QVERIFY(HasColour(normal, ZrTheme::ctrlCol));
    QVERIFY(InkBox(normal).left() >= 12);
    tile.SetState(ZrValueTile::error);
    tile.SetState(ZrValueTile::normal);
    QCOMPARE(Painted(tile), normal);
}

void tst_ZrValueTile::longValueFits_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("unit");
    QTest::newRow("position") << S("50° 21.123′ N") << QString();
    QTest::newRow("number and unit") << S("1234567.8") << S("km/h");
    QTest::newRow("wide") << S("WWWWWWWW") << S("m");
}

/// Smaller rather than cut, within the margins, and its unit beside it.
void tst_ZrValueTile::longValueFits()
{
    QFETCH(QString, value);
    QFETCH(QString, unit);
    ZrValueTile tile(nullptr, QString());
    tile.resize(180, 96);
    tile.Set(value, unit);
    const QImage image = Painted(tile);
    const QRect ink = InkBox(image);
    QVERIFY(ink.left() >= 11);
    QVERIFY2(ink.right() <= 180 - 10, qPrintable(QString::number(ink.right())));
    QVERIFY(ink.width() > 100);
    tile.Set(value.left(value.size() - 1) + QLatin1Char('I'), unit);
    QVERIFY(Painted(tile) != image);
    if (unit.isEmpty())
        return;
    tile.Set(value, QString(unit.size(), QLatin1Char(' ')));
    QVERIFY(InkBox(Painted(tile)).right() < ink.right());
}

/// They end in an ellipsis.
void tst_ZrValueTile::longCaptionAndNoteFit()
{
    const QString text(100, QLatin1Char('W'));
    QFont font = ZrTheme::font;
    font.setPixelSize(15);
    const QString elided = QFontMetrics(font).elidedText(text, Qt::ElideRight, 180 - 2 * 12);
    const auto painted = [](const QString& caption, const QString& note) {
        ZrValueTile tile(nullptr, caption);
        tile.resize(180, 96);
        tile.SetNote(note);
        return Painted(tile);
    };
    QVERIFY(elided.size() > 5 && elided.size() < 100);
    QCOMPARE(painted(text, text), painted(elided, elided));
    const QRect ink = InkBox(painted(text, text));
    QVERIFY(ink.left() >= 11);
    QVERIFY2(ink.right() <= 180 - 12, qPrintable(QString::number(ink.right())));
}

void tst_ZrValueTile::noteMakesRoom()
{
    ZrValueTile tile(nullptr, QString());
    tile.resize(180, 70);
    tile.Set(S("888"), QString());
    const QRect alone = InkBox(Painted(tile));
    tile.SetNote(S(" "));
    const QRect above = InkBox(Painted(tile));
    QVERIFY(above.bottom() < alone.bottom());
    QVERIFY(above.height() < alone.height());
    // Room that is kept is that of a note.
    tile.SetNote(QString());
    QCOMPARE(InkBox(Painted(tile)), alone);
    tile.SetNoteRoom(true);
    QCOMPARE(InkBox(Painted(tile)), above);
}

void tst_ZrValueTile::lowTileIsOneLine_data()
{
    QTest::addColumn<int>("height");
    for (const int height : {28, 32, 40, 46})
        QTest::addRow("%d", height) << height;
}

/// Nothing is cut: the caption at the left, the value as large as there is room at the right.
void tst_ZrValueTile::lowTileIsOneLine()
{
    QFETCH(int, height);
    ZrValueTile tile(nullptr, S("Heading"));
    tile.resize(160, height);
    tile.Set(S("336.5"), S("°"));
    const QVector<DrawnText> texts = TextDevice::Of(tile);
    QCOMPARE(texts.size(), 2);
    QCOMPARE(texts[0].text, S("Heading"));
    QCOMPARE(texts[1].text, S("336.5°"));
    QVERIFY(texts[1].ink.left() > texts[0].ink.right());
    for (const DrawnText& text : texts) {
        QVERIFY2(QRectF(tile.rect()).contains(text.ink), qPrintable(text.text));
        QVERIFY(std::abs(text.ink.center().y() - height / 2.0) < 4.0);
        QVERIFY(text.pixels >= 14);
    }
    tile.Set(S("0"), S("s"));
    for (const DrawnText& text : TextDevice::Of(tile))
        QVERIFY2(QRectF(tile.rect()).contains(text.ink), qPrintable(text.text));
}

/// It is left out before the value is cut for it.
void tst_ZrValueTile::noteWithoutRoom()
{
    ZrValueTile tile(nullptr, S("Depth"));
    tile.Set(S("17.8"), S("m"));
    tile.resize(160, 62);
    const QImage without = Painted(tile);
    tile.SetNote(S("12 s ago"));
    QCOMPARE(Painted(tile), without);
    tile.resize(160, 80);
    QStringList said;
    for (const DrawnText& text : TextDevice::Of(tile)) {
        said.append(text.text);
        QVERIFY2(QRectF(tile.rect()).contains(text.ink), qPrintable(text.text));
    }
    QVERIFY2(said.contains(S("12 s ago")), qPrintable(said.join(QLatin1Char('|'))));
}

void tst_ZrValueTile::repaintsOnlyForChanges()
{
    ZrValueTile tile(nullptr, S("Depth"));
    tile.resize(180, 96);
    tile.Set(S("1"), S("m"));
    ZrPaintCounter counter(tile);
    tile.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tile));
    QVERIFY(counter.Take() > 0);
    tile.Set(S("1"), S("m"));
    tile.SetNote(QString());
    tile.SetState(ZrValueTile::normal);
    QCOMPARE(counter.Take(), 0);
    tile.Set(S("2"), S("m"));
    QVERIFY(counter.Take() > 0);
    tile.Set(S("2"), S("ft"));
    QVERIFY(counter.Take() > 0);
    tile.SetNote(S("old"));
    QVERIFY(counter.Take() > 0);
    tile.SetState(ZrValueTile::stale);
    QVERIFY(counter.Take() > 0);
    tile.Set(S("2"), S("ft"));
    tile.SetNote(S("old"));
    tile.SetState(ZrValueTile::stale);
    QCOMPARE(counter.Take(), 0);
}

/// The left button, let go of inside; others are left to the page.
void tst_ZrValueTile::clicks()
{
    QWidget page;
    page.resize(400, 300);
    ZrValueTile tile(&page, S("Depth"));
    tile.setGeometry(100, 100, 180, 96);
    page.show();
    QSignalSpy clicked(&tile, &ZrValueTile::Clicked);
    QTest::mouseClick(&tile, Qt::LeftButton, {}, QPoint(3, 3));
    QCOMPARE(clicked.count(), 1);
    QTest::mouseClick(&tile, Qt::RightButton, {}, QPoint(3, 3));
    QCOMPARE(clicked.count(), 1);
    SendPress(tile, QPoint(3, 3));
    SendRelease(tile, QPoint(-3, 3));
    QCOMPARE(clicked.count(), 1);
    SendPress(tile, QPoint(3, 3));
    SendRelease(tile, QPoint(179, 95));
    QCOMPARE(clicked.count(), 2);
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(3, 3), button, button, Qt::NoModifier);
        QCoreApplication::sendEvent(&tile, &press);
        QCOMPARE(press.isAccepted(), button == Qt::LeftButton);
    }
}

void tst_ZrValueTile::noRoom()
{
    ZrValueTile tile(nullptr, S("Depth"));
    tile.Set(S("1234567"), S("m"));
    tile.SetNote(S("2 s ago"));
    for (const QSize& size : {QSize(1, 1), QSize(10, 200), QSize(500, 10), QSize(24, 24)}) {
        tile.resize(size);
        QCOMPARE(Painted(tile).size(), size);
    }
}

namespace {

/// How large a tile shows its value.
int ValuePixels(ZrValueTile& tile)
{
    for (const DrawnText& drawn : TextDevice::Of(tile)) {
        if (drawn.text == tile.Number())
            return drawn.pixels;
    }
    return 0;
}

} // namespace

void tst_ZrValueTile::rowHasOneSize()
{
    QWidget page;
    QVector<ZrValueTile*> tiles;
    for (const char* value : {"0:00:01", "2.40", "1234567.8"}) {
        auto* tile = new ZrValueTile(&page, S("Size"));
        tile->resize(130, 96);
        tile->Set(S(value), S("kB/s"));
        tiles.append(tile);
    }
    const int least = ValuePixels(*tiles[2]);
    QVERIFY(least > 0 && least < ValuePixels(*tiles[0]) && least < ValuePixels(*tiles[1]));
    ZrValueTile::SetRow(tiles);
    for (ZrValueTile* tile : tiles)
        QCOMPARE(ValuePixels(*tile), least);
    // As large as all of them fit.
    tiles[2]->Set(S("1"), QString());
    const int next = ValuePixels(*tiles[2]);
    QVERIFY(next > least);
    QCOMPARE(ValuePixels(*tiles[0]), next);
    QCOMPARE(ValuePixels(*tiles[1]), next);
    ZrValueTile::SetRow({tiles[2]});
    QVERIFY(ValuePixels(*tiles[2]) > next);
    QCOMPARE(ValuePixels(*tiles[0]), next);
}

void tst_ZrValueTile::rowRepaintsForOthers()
{
    QWidget page;
    page.resize(400, 100);
    auto* first = new ZrValueTile(&page, S("Size"));
    auto* second = new ZrValueTile(&page, S("Rate"));
    first->setGeometry(0, 0, 150, 96);
    second->setGeometry(160, 0, 150, 96);
    ZrValueTile::SetRow({first, second});
    first->Set(S("1"), S("m"));
    ZrPaintCounter counter(*first);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    QVERIFY(counter.Take() > 0);
    second->Set(S("2"), S("m")); // of the same size
    QCOMPARE(counter.Take(), 0);
    second->Set(S("123456789.0"), S("m"));
    QVERIFY(counter.Take() > 0);
    second->resize(600, 96);
    QVERIFY(counter.Take() > 0);
}

void tst_ZrValueTile::rowWithoutOneOfThem()
{
    ZrValueTile first(nullptr, S("Size"));
    first.resize(150, 96);
    first.Set(S("1"), QString());
    const int alone = ValuePixels(first);
    {
        ZrValueTile second(nullptr, S("Rate"));
        second.resize(150, 96);
        second.Set(S("123456789.0"), QString());
        ZrValueTile::SetRow({&first, &second});
        QVERIFY(ValuePixels(first) < alone);
    }
    QCOMPARE(ValuePixels(first), alone);
    first.Set(S("2"), QString());
    QCOMPARE(ValuePixels(first), alone);
}

void tst_ZrValueTile::numbers_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("shown");
    const QString degree(QChar(0xB0));
    QTest::newRow("angle") << QStringLiteral("334.3") << degree << QStringLiteral("334.3") + degree;
    QTest::newRow("negative angle") << QStringLiteral("-0.5") << degree
                                    << QChar(0x2212) + QStringLiteral("0.5") + degree;
    QTest::newRow("temperature") << QStringLiteral("7") << degree + QLatin1Char('C')
                                 << QLatin1Char('7') + degree + QLatin1Char('C');
    QTest::newRow("length") << QStringLiteral("-12.4") << QStringLiteral("m")
                            << QChar(0x2212) + QStringLiteral("12.4");
    QTest::newRow("name") << QStringLiteral("-a") << QString() << QStringLiteral("-a");
    QTest::newRow("in between") << QStringLiteral("2021-03-03") << QString() << QStringLiteral("2021-03-03");
    QTest::newRow("not known") << QString() << degree << QStringLiteral("–");
    QTest::newRow("a hyphen") << QStringLiteral("-") << QString() << QStringLiteral("-");
}

void tst_ZrValueTile::numbers()
{
    QFETCH(QString, value);
    QFETCH(QString, unit);
    ZrValueTile tile(nullptr, QStringLiteral("Pitch"));
    tile.Set(value, unit);
    QTEST(tile.Number(), "shown");
    QCOMPARE(tile.Value(), value);
    // An angle's sign is no unit that is painted a second time.
    tile.resize(200, 90);
    const QImage image = tile.grab().toImage();
    ZrValueTile plain(nullptr, QStringLiteral("Pitch"));
    const bool hasUnit = !value.isEmpty() && !unit.isEmpty() && !unit.startsWith(QChar(0xB0));
    plain.Set(tile.Number() == QStringLiteral("–") ? QString() : tile.Number(), hasUnit ? unit : QString());
    plain.resize(200, 90);
    QCOMPARE(image, plain.grab().toImage());
}

QTEST_MAIN(tst_ZrValueTile)
#include "tst_ZrValueTile.moc"
