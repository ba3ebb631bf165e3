// How a control looks in each state: contrast, a sign beside colour, crisp lines.

#include "ZrUiChecks.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrColBtn.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrRadio.h"
#include "ZrUtil/ZrSlider.h"

#include <QPainter>
#include <QtTest>

#include <limits>
#include <tuple>

namespace {

/// State number \p bits of the 32 there are.
ZrCtrlState StateOf(int bits)
{
    ZrCtrlState state;
    state.enabled = (bits & 1) == 0;
    state.hovered = (bits & 2) != 0;
    state.pressed = (bits & 4) != 0;
    state.on = (bits & 8) != 0;
    state.focused = (bits & 16) != 0;
    return state;
}

QByteArray NameOf(const ZrCtrlState& state)
{
    QByteArray name = state.enabled ? "enabled" : "disabled";
    if (state.hovered)
        name += " hovered";
    if (state.pressed)
        name += " pressed";
    if (state.on)
        name += " on";
    if (state.focused)
        name += " focused";
    return name;
}

/// What can be told without telling colours apart, as it is on the screen.
std::tuple<int, bool, int, bool, bool> Signs(const ZrCtrlLook& look)
{
    return {qRound(look.outlineWidth), look.dashed, look.shift, look.focus.isValid(), look.bar};
}

const double scales[] = {0.5, 0.703, 1.0, 1.35, 2.0};

void StateRows()
{
    QTest::addColumn<int>("bits");
    for (int bits = 0; bits < 32; ++bits)
        QTest::newRow(NameOf(StateOf(bits)).constData()) << bits;
}

} // namespace

class tst_ZrCtrlLook : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void contrast_data();
    void contrast();
    void disabledStatesLookDisabled();
    void noTwoStatesDifferByColourAlone_data();
    void noTwoStatesDifferByColourAlone();
    void stateThatCannotBe();
    void followsTheColours();
    void followsTheScale();
    void infiniteScale();
    void mixed();

    void outlineIsCrisp_data();
    void outlineIsCrisp();
    void dashesLeaveGaps();
    void focusLineIsInside();
    void focusLineWithoutFocus();
    void focusLineIsApart();
    void iconsAreKeptApart();
    void barIsInside_data();
    void barIsInside();
    void focusThatIsShown_data();
    void focusThatIsShown();
    void snapped();
    void wholeLine();
    void rotatedPainter();

    void iconIsRecoloured();
    void iconKeepsItsShape();
    void iconThatIsNone();
    void largeIconKeepsItsLines();
    void textSides_data();
    void textSides();
    void textThatIsTooLong();
    void numbersInRightToLeftApplications();

    void targetsAreLargeEnough_data();
    void targetsAreLargeEnough();
};

void tst_ZrCtrlLook::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
}

void tst_ZrCtrlLook::contrast_data()
{
    StateRows();
}

void tst_ZrCtrlLook::contrast()
{
    QFETCH(int, bits);
    const ZrCtrlLook look = ZrCtrlLook::Of(StateOf(bits));
    QCOMPARE(look.fill.alpha(), 255);
    QCOMPARE(look.text.alpha(), 255);
    QCOMPARE(look.mark.alpha(), 255);
    QCOMPARE(look.outline.alpha(), 255);
    const auto atLeast = [](const QColor& a, const QColor& b, double least) {
        const double contrast = Contrast(a, b);
        if (contrast < least)
            qWarning("%.2f between %s and %s", contrast, qPrintable(a.name()), qPrintable(b.name()));
        return contrast >= least;
    };
    QVERIFY(atLeast(look.text, look.fill, 4.5));
    QVERIFY(atLeast(look.text, Qt::black, 4.5));
    QVERIFY(atLeast(look.mark, look.fill, 3.0));
    QVERIFY(atLeast(look.mark, Qt::black, 3.0));
    QVERIFY(atLeast(look.outline, look.fill, 3.0));
    QVERIFY(atLeast(look.outline, Qt::black, 3.0));
    if (look.focus.isValid()) {
        QVERIFY(atLeast(look.focus, look.fill, 3.0));
        QVERIFY(atLeast(look.focus, Qt::black, 3.0));
    }
    // The fill of the button that a page is about.
    if (bits % 8 == 0) {
        QVERIFY(atLeast(look.text, ZrTheme::ctrlActiveCol, 4.5));
        QVERIFY(atLeast(look.outline, ZrTheme::ctrlActiveCol, 3.0));
    }
}

void tst_ZrCtrlLook::disabledStatesLookDisabled()
{
    const ZrCtrlLook enabled = ZrCtrlLook::Of(ZrCtrlState());
    for (int bits = 1; bits < 32; bits += 2) {
        const ZrCtrlState state = StateOf(bits);
        const ZrCtrlLook look = ZrCtrlLook::Of(state);
        QVERIFY(look.dashed);
        QVERIFY(!look.focus.isValid());
        QCOMPARE(look.shift, 0);
        QCOMPARE(look.bar, state.on); // a disabled control still tells its value
        QCOMPARE(look.fill, enabled.fill);
        QVERIFY(Luminance(look.text) < Luminance(enabled.text));
        QVERIFY(look.outlineWidth < enabled.outlineWidth);
    }
}

void tst_ZrCtrlLook::noTwoStatesDifferByColourAlone_data()
{
    QTest::addColumn<double>("dp");
    for (const double dp : scales)
        QTest::newRow(qPrintable(QString::number(dp))) << dp;
    QTest::newRow("0.25") << 0.25;
    QTest::newRow("4") << 4.0;
}

void tst_ZrCtrlLook::noTwoStatesDifferByColourAlone()
{
    QFETCH(double, dp);
    const ZrThemeState theme(dp);
    for (int a = 0; a < 32; ++a) {
        for (int b = 0; b < a; ++b) {
            const ZrCtrlState one = StateOf(a);
            const ZrCtrlState other = StateOf(b);
            // A finger on a control hides whether it also hovers, and a disabled one answers neither.
            const bool isSame = one.enabled == other.enabled && one.on == other.on
                && (!one.enabled
                    || (one.pressed == other.pressed && one.focused == other.focused
                        && (one.pressed || one.hovered == other.hovered)));
            const bool looksSame = Signs(ZrCtrlLook::Of(one)) == Signs(ZrCtrlLook::Of(other));
            QVERIFY2(isSame == looksSame, NameOf(one) + " and " + NameOf(other));
        }
    }
}

void tst_ZrCtrlLook::stateThatCannotBe()
{
    // Before any style is set the colours are invalid: painting with them does no harm.
    const QColor fill = ZrTheme::ctrlActiveCol;
    ZrTheme::ctrlActiveCol = QColor();
    QImage image(20, 20, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    ZrCtrlLook::Of(StateOf(8)).PaintFrame(painter, QRectF(0, 0, 20, 20), 4);
    ZrCtrlLook::Of(StateOf(8)).PaintFrame(painter, QRectF(), 4);
    ZrCtrlLook::Of(StateOf(24)).PaintFrame(painter, QRectF(5, 5, 1, 1), 100);
    ZrCtrlLook::Of(StateOf(24)).PaintBar(painter, QRectF());
    ZrTheme::ctrlActiveCol = fill;
    QVERIFY(painter.isActive());
}

void tst_ZrCtrlLook::followsTheColours()
{
    const ZrThemeState theme;
    ZrTheme::ctrlOutlineCol = QColor(1, 2, 3);
    ZrTheme::ctrlActiveCol = QColor(4, 5, 6, 7);
    ZrTheme::ctrlHighlightCol = QColor(8, 9, 10);
    ZrTheme::ctrlCheckCol = QColor(11, 12, 13, 14);
    ZrTheme::ctrlCol = QColor(15, 16, 17);
    QCOMPARE(ZrCtrlLook::Of(StateOf(0)).outline, QColor(1, 2, 3));
    QCOMPARE(ZrCtrlLook::Of(StateOf(0)).text, QColor(15, 16, 17));
    QCOMPARE(ZrCtrlLook::Of(StateOf(2)).outline, QColor(8, 9, 10));
    QCOMPARE(ZrCtrlLook::Of(StateOf(8)).fill, QColor(4, 5, 6));
    QCOMPARE(ZrCtrlLook::Of(StateOf(8)).mark, QColor(11, 12, 13));
    QCOMPARE(ZrCtrlLook::Of(StateOf(16)).focus, QColor(15, 16, 17));
}

void tst_ZrCtrlLook::followsTheScale()
{
    const ZrThemeState theme(2.0);
    QCOMPARE(ZrCtrlLook::Of(StateOf(0)).outlineWidth, 4.0);
    QCOMPARE(ZrCtrlLook::Of(StateOf(4)).shift, 4);
    QCOMPARE(ZrCtrlLook::Dp(3.0F), 6.0);
}

void tst_ZrCtrlLook::infiniteScale()
{
    const ZrThemeState theme(std::numeric_limits<double>::infinity());
    QCOMPARE(ZrCtrlLook::Dp(3.0F), 0.0);
    QCOMPARE(ZrCtrlLook::Of(StateOf(0)).outlineWidth, 1.0);
    ZrBtn button(nullptr, ZrBtn::typeStd);
    button.text = QStringLiteral("Text");
    button.resize(80, 40);
    QVERIFY(HasColour(Painted(button), ZrTheme::ctrlOutlineCol));
}

void tst_ZrCtrlLook::mixed()
{
    QCOMPARE(ZrCtrlLook::Mixed(QColor(0, 100, 200, 3), QColor(100, 0, 100, 4), 0.0), QColor(0, 100, 200));
    QCOMPARE(ZrCtrlLook::Mixed(QColor(0, 100, 200), QColor(100, 0, 100), 1.0), QColor(100, 0, 100));
    QCOMPARE(ZrCtrlLook::Mixed(QColor(0, 100, 200), QColor(100, 0, 101), 0.25), QColor(25, 75, 175));
}

void tst_ZrCtrlLook::outlineIsCrisp_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<double>("ratio");
    QTest::addColumn<int>("bits");
    for (const double dp : {0.5, 0.703, 0.75, 1.0, 1.35, 1.5, 2.0}) {
        for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
            for (const int bits : {0, 2, 4, 8}) {
                QTest::newRow(
                    qPrintable(QStringLiteral("dp %1, ratio %2, state %3").arg(dp).arg(ratio).arg(bits)))
                    << dp << ratio << bits;
            }
        }
    }
}

// Across the middle of each edge there are no mixed colours: form, whole outline, fill.
void tst_ZrCtrlLook::outlineIsCrisp()
{
    QFETCH(double, dp);
    QFETCH(double, ratio);
    QFETCH(int, bits);
    const ZrThemeState theme(dp);
    const ZrCtrlLook look = ZrCtrlLook::Of(StateOf(bits));
    const int side = qRound(60 * ratio);
    QImage image(side, side, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::black);
    {
        QPainter painter(&image);
        look.PaintFrame(painter, QRectF(5.3, 6.4, 47.1, 45.2), 6.0);
    }
    const int whole = std::max(1, qRound(look.outlineWidth * ratio));
    for (const bool isAcross : {false, true}) {
        int outline = 0;
        int fill = 0;
        for (int i = 0; i < side; ++i) {
            const QColor at = isAcross ? image.pixelColor(i, side / 2) : image.pixelColor(side / 2, i);
            outline += at == look.outline ? 1 : 0;
            fill += at == look.fill ? 1 : 0;
            QVERIFY2(at == look.outline || at == look.fill || at == QColor(Qt::black), qPrintable(at.name()));
        }
        QCOMPARE(outline, 2 * whole);
        const double length = (isAcross ? 47.1 : 45.2) * ratio;
        QVERIFY(std::abs(outline + fill - length) <= 1.0);
    }
}

void tst_ZrCtrlLook::dashesLeaveGaps()
{
    const ZrCtrlLook look = ZrCtrlLook::Of(StateOf(1));
    QImage image(100, 40, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    look.PaintFrame(painter, QRectF(0, 0, 100, 40), 6.0);
    int strokes = 0;
    for (int x = 11; x < 90; ++x) {
        const bool isOn = image.pixelColor(x, 0).lightness() > 60;
        const bool wasOn = image.pixelColor(x - 1, 0).lightness() > 60;
        strokes += isOn && !wasOn ? 1 : 0;
    }
    QVERIFY2(strokes >= 8, qPrintable(QString::number(strokes)));
}

void tst_ZrCtrlLook::focusLineIsInside()
{
    ZrCtrlLook look = ZrCtrlLook::Of(StateOf(16));
    look.focus = QColor(0, 255, 0);
    QImage image(60, 60, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    look.PaintFrame(painter, QRectF(0, 0, 60, 60), 6.0);
    const auto at = [&image](int x) { return image.pixelColor(x, 30); };
    QCOMPARE(at(0), look.outline);
    QCOMPARE(at(1), look.outline);
    QCOMPARE(at(2), look.fill); // a gap keeps the two lines apart
    int x = 2;
    while (x < 30 && at(x) == look.fill)
        ++x;
    QCOMPARE(at(x), look.focus);
    QVERIFY(x <= 6);
    QCOMPARE(at(30), look.fill);
}

void tst_ZrCtrlLook::focusLineWithoutFocus()
{
    QImage image(20, 20, QImage::Format_RGB32);
    image.fill(Qt::black);
    const QImage before = image;
    QPainter painter(&image);
    ZrCtrlLook::Of(StateOf(0)).PaintFocus(painter, QRectF(0, 0, 20, 20), 4);
    QCOMPARE(image, before);
}

void tst_ZrCtrlLook::barIsInside_data()
{
    noTwoStatesDifferByColourAlone_data();
}

void tst_ZrCtrlLook::barIsInside()
{
    QFETCH(double, dp);
    const ZrThemeState theme(dp);
    const int width = qRound(100 * std::max(dp, 1.0));
    const int height = qRound(60 * std::max(dp, 1.0));
    for (const int bits : {8, 9, 10, 12}) {
        const ZrCtrlLook look = ZrCtrlLook::Of(StateOf(bits));
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        look.PaintBar(painter, QRectF(0, 0, width, height));
        painter.end();
        QVERIFY(HasColour(image, look.mark));
        QVERIFY(!HasColour(image.copy(0, 0, width, height / 2), look.mark));
        // Nothing of it on the outline.
        const int line = static_cast<int>(std::ceil(look.outlineWidth));
        QImage empty(width, line, QImage::Format_RGB32);
        empty.fill(Qt::black);
        QCOMPARE(image.copy(0, height - line, width, line), empty);
    }
}

void tst_ZrCtrlLook::focusThatIsShown_data()
{
    QTest::addColumn<int>("reason");
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("shown");
    for (const bool before : {false, true}) {
        const char* when = before ? "shown before" : "not shown before";
        QTest::addRow("Tab, %s", when) << int(Qt::TabFocusReason) << before << true;
        QTest::addRow("Backtab, %s", when) << int(Qt::BacktabFocusReason) << before << true;
        QTest::addRow("Shortcut, %s", when) << int(Qt::ShortcutFocusReason) << before << true;
        QTest::addRow("Other, %s", when) << int(Qt::OtherFocusReason) << before << true;
        QTest::addRow("Window, %s", when) << int(Qt::ActiveWindowFocusReason) << before << before;
        QTest::addRow("Popup, %s", when) << int(Qt::PopupFocusReason) << before << before;
    }
}

void tst_ZrCtrlLook::focusThatIsShown()
{
    QFETCH(int, reason);
    QFETCH(bool, before);
    QTEST(ZrCtrlLook::ShowsFocus(static_cast<Qt::FocusReason>(reason), before), "shown");
}

void tst_ZrCtrlLook::snapped()
{
    QImage image(40, 40, QImage::Format_RGB32);
    {
        QPainter painter(&image);
        QCOMPARE(ZrCtrlLook::Snapped(painter, QRectF(1.4, 1.6, 10.2, 9.7)), QRectF(1, 2, 11, 9));
        painter.translate(0.25, 0);
        QCOMPARE(ZrCtrlLook::Snapped(painter, QRectF(1, 1, 4, 4)), QRectF(0.75, 1, 4, 4));
    }
    image.setDevicePixelRatio(2.0);
    QPainter painter(&image);
    QCOMPARE(ZrCtrlLook::Snapped(painter, QRectF(1.3, 1.2, 4, 4)), QRectF(1.5, 1, 4, 4));
}

void tst_ZrCtrlLook::wholeLine()
{
    QImage image(40, 40, QImage::Format_RGB32);
    {
        QPainter painter(&image);
        QCOMPARE(ZrCtrlLook::WholeLine(painter, 1.6), 2.0);
        QCOMPARE(ZrCtrlLook::WholeLine(painter, 1.4), 1.0);
        QCOMPARE(ZrCtrlLook::WholeLine(painter, 0.0), 1.0);
    }
    image.setDevicePixelRatio(2.0);
    QPainter painter(&image);
    QCOMPARE(ZrCtrlLook::WholeLine(painter, 1.6), 1.5);
    QCOMPARE(ZrCtrlLook::WholeLine(painter, 0.0), 0.5);
}

void tst_ZrCtrlLook::rotatedPainter()
{
    QImage image(40, 40, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.rotate(30.0);
    const QRectF rect(1.4, 1.6, 10.2, 9.7);
    QCOMPARE(ZrCtrlLook::Snapped(painter, rect), rect);
    QCOMPARE(ZrCtrlLook::WholeLine(painter, 1.6), 2.0);
}

void tst_ZrCtrlLook::iconIsRecoloured()
{
    QImage icon(10, 10, QImage::Format_ARGB32);
    icon.fill(Qt::white);
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    ZrCtrlLook::PaintIcon(painter, QRectF(10, 10, 20, 20), icon, QColor(1, 200, 3));
    painter.end();
    QCOMPARE(image.pixelColor(10, 10), QColor(1, 200, 3));
    QCOMPARE(image.pixelColor(29, 29), QColor(1, 200, 3));
    QCOMPARE(image.pixelColor(9, 20), QColor(Qt::black));
    QCOMPARE(image.pixelColor(30, 20), QColor(Qt::black));
}

void tst_ZrCtrlLook::iconKeepsItsShape()
{
    QImage icon(40, 10, QImage::Format_ARGB32);
    icon.fill(Qt::white);
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    ZrCtrlLook::PaintIcon(painter, QRectF(0, 0, 40, 40), icon, Qt::red);
    painter.end();
    QCOMPARE(image.pixelColor(20, 14), QColor(Qt::black));
    QCOMPARE(image.pixelColor(0, 15), QColor(Qt::red));
    QCOMPARE(image.pixelColor(39, 24), QColor(Qt::red));
    QCOMPARE(image.pixelColor(20, 25), QColor(Qt::black));
}

void tst_ZrCtrlLook::iconThatIsNone()
{
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(Qt::black);
    const QImage before = image;
    QImage icon(4, 4, QImage::Format_ARGB32);
    icon.fill(Qt::white);
    QPainter painter(&image);
    ZrCtrlLook::PaintIcon(painter, QRectF(0, 0, 40, 40), QImage(), Qt::red);
    ZrCtrlLook::PaintIcon(painter, QRectF(), icon, Qt::red);
    ZrCtrlLook::PaintIcon(painter, QRectF(0, 0, -5, -5), icon, Qt::red);
    ZrCtrlLook::PaintIcon(painter, QRectF(0, 0, 0.2, 0.2), icon, Qt::red);
    QCOMPARE(image, before);
}

// A line of one pixel in an icon ten times too large is faint, not gone.
void tst_ZrCtrlLook::largeIconKeepsItsLines()
{
    QImage icon(200, 200, QImage::Format_ARGB32);
    icon.fill(Qt::transparent);
    for (int y = 0; y < 200; ++y)
        icon.setPixelColor(103, y, Qt::white);
    QImage image(20, 20, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    ZrCtrlLook::PaintIcon(painter, QRectF(0, 0, 20, 20), icon, Qt::white);
    painter.end();
    int light = 0;
    for (int x = 0; x < 20; ++x)
        light += image.pixelColor(x, 10).red();
    QVERIFY2(light > 12 && light < 60, qPrintable(QString::number(light)));
}

void tst_ZrCtrlLook::textSides_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<bool>("isMirrored");
    for (const bool isMirrored : {false, true}) {
        const char* where = isMirrored ? "mirrored" : "plain";
        QTest::addRow("left, %s", where) << int(Qt::AlignLeft) << isMirrored;
        QTest::addRow("right, %s", where) << int(Qt::AlignRight) << isMirrored;
        QTest::addRow("middle, %s", where) << int(Qt::AlignHCenter) << isMirrored;
    }
}

void tst_ZrCtrlLook::textSides()
{
    QFETCH(int, side);
    QFETCH(bool, isMirrored);
    QImage image(300, 30, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setLayoutDirection(isMirrored ? Qt::RightToLeft : Qt::LeftToRight);
    painter.setFont(ZrTheme::ctrlFont);
    painter.setPen(Qt::white);
    ZrCtrlLook::PaintText(
        painter, QRectF(0, 0, 300, 30), QStringLiteral("Text"), static_cast<Qt::Alignment>(side));
    painter.end();
    int first = 300;
    int last = -1;
    for (int x = 0; x < 300; ++x) {
        for (int y = 0; y < 30; ++y) {
            if (image.pixelColor(x, y).red() > 100) {
                first = std::min(first, x);
                last = x;
            }
        }
    }
    QVERIFY(last >= first);
    if (side == Qt::AlignLeft)
        QVERIFY(first <= 3);
    else if (side == Qt::AlignRight)
        QVERIFY(last >= 296);
    else
        QVERIFY(std::abs(first + last - 299) <= 4);
}

void tst_ZrCtrlLook::textThatIsTooLong()
{
    QImage image(300, 30, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setFont(ZrTheme::ctrlFont);
    painter.setPen(Qt::white);
    ZrCtrlLook::PaintText(
        painter, QRectF(0, 0, 60, 30), QStringLiteral("A long text with blanks in it"), Qt::AlignLeft);
    painter.end();
    QImage empty(240, 30, QImage::Format_RGB32);
    empty.fill(Qt::black);
    QCOMPARE(image.copy(60, 0, 240, 30), empty);
    QVERIFY(image.copy(0, 0, 60, 30) != empty.copy(0, 0, 60, 30));
}

void tst_ZrCtrlLook::numbersInRightToLeftApplications()
{
    const auto painted = [](Qt::LayoutDirection direction) {
        QGuiApplication::setLayoutDirection(direction);
        QImage image(60, 30, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.setLayoutDirection(direction);
        painter.setFont(ZrTheme::ctrlFont);
        painter.setPen(Qt::white);
        ZrCtrlLook::PaintText(painter, QRectF(0, 0, 60, 30), QStringLiteral("99+"), Qt::AlignHCenter);
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
        return image;
    };
    QCOMPARE(painted(Qt::RightToLeft), painted(Qt::LeftToRight));
}

void tst_ZrCtrlLook::targetsAreLargeEnough_data()
{
    QTest::addColumn<double>("dp");
    for (const double dp : scales)
        QTest::newRow(qPrintable(QString::number(dp))) << dp;
}

// A finger hits every widget at its smallest: over the whole of at least 44 x 44 pixels.
void tst_ZrCtrlLook::targetsAreLargeEnough()
{
    QFETCH(double, dp);
    const ZrThemeState theme(dp);
    const QSize least(44, 44);
    const auto isEnough = [&least](const QWidget& widget) {
        const QSize smallest = widget.minimumSizeHint();
        return smallest.expandedTo(least) == smallest
            && widget.sizeHint().expandedTo(smallest) == widget.sizeHint();
    };
    for (const int type : {0, 1, 2, 3}) {
        ZrBtn button(nullptr, static_cast<ZrBtn::eType>(type));
        QVERIFY(isEnough(button));
        button.resize(button.minimumSizeHint());
        int presses = 0;
        connect(&button, &ZrBtn::Pressed, [&presses] { ++presses; });
        for (const QPoint& p : {button.rect().topLeft(), button.rect().topRight(), button.rect().bottomLeft(),
                 button.rect().bottomRight(), button.rect().center()}) {
            SendPress(button, p);
            SendRelease(button, p);
        }
        QCOMPARE(presses, 5);
    }
    ZrCheck check;
    QVERIFY(isEnough(check));
    check.resize(check.minimumSizeHint());
    SendPress(check, check.rect().topLeft());
    QVERIFY(check.IsOn());
    SendPress(check, check.rect().bottomRight());
    QVERIFY(!check.IsOn());

    ZrSlider slider;
    QVERIFY(isEnough(slider));
    slider.text = QStringLiteral("Caption");
    QVERIFY(isEnough(slider));
    ZrColBtn colour;
    QVERIFY(isEnough(colour));

    ZrRadio radio;
    radio.items = QStringList({QStringLiteral("a"), QStringLiteral("b")});
    QVERIFY(isEnough(radio));
    radio.UseTouchHeight();
    QVERIFY(radio.itemHeight >= 44);
    QVERIFY(isEnough(radio));
    radio.resize(radio.minimumSizeHint());
    for (int i = 0; i < 2; ++i) {
        QVERIFY(radio.ItemRect(i).height() >= 44);
        QCOMPARE(radio.GetSel(radio.ItemRect(i).topLeft()), i);
        QCOMPARE(radio.GetSel(radio.ItemRect(i).bottomRight()), i);
    }
}

/// At every scale two pixels of the background lie between outline and focus line, and the line is two thick.
void tst_ZrCtrlLook::focusLineIsApart()
{
    for (const double dp : scales) {
        const ZrThemeState theme(dp);
        const ZrCtrlLook look = ZrCtrlLook::Of(StateOf(16));
        QImage image(100, 100, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        look.PaintFrame(painter, QRectF(0, 0, 100, 100), ZrTheme::rxy);
        painter.end();
        int x = 0;
        const auto run = [&image, &x](const QColor& colour) {
            const int from = x;
            while (x < 50 && image.pixelColor(x, 50) == colour)
                ++x;
            return x - from;
        };
        QVERIFY(run(look.outline) >= 1);
        QVERIFY2(run(look.fill) >= 2, qPrintable(QString::number(dp)));
        QVERIFY2(run(look.focus) >= 2, qPrintable(QString::number(dp)));
    }
}

/// Scaled icons are kept: another colour, size or pixel ratio, or a changed icon, is another one.
void tst_ZrCtrlLook::iconsAreKeptApart()
{
    QImage icon(96, 96, QImage::Format_ARGB32);
    icon.fill(Qt::white);
    const auto paint = [&icon](double side, const QColor& colour, double ratio) {
        QImage image(80, 80, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::black);
        QPainter painter(&image);
        ZrCtrlLook::PaintIcon(painter, QRectF(0, 0, side, side), icon, colour);
        return image;
    };
    const QImage white = paint(24, Qt::white, 1.0);
    QCOMPARE(white.pixelColor(23, 23), QColor(Qt::white));
    QCOMPARE(white.pixelColor(24, 24), QColor(Qt::black));
    QCOMPARE(paint(24, Qt::white, 1.0), white);
    QCOMPARE(paint(24, Qt::red, 1.0).pixelColor(23, 23), QColor(Qt::red));
    QCOMPARE(paint(30, Qt::white, 1.0).pixelColor(29, 29), QColor(Qt::white));
    QCOMPARE(paint(24, Qt::white, 2.0).pixelColor(47, 47), QColor(Qt::white));
    QCOMPARE(paint(12, Qt::white, 2.0).pixelColor(23, 23), QColor(Qt::white));
    QCOMPARE(paint(12, Qt::white, 2.0).pixelColor(24, 24), QColor(Qt::black));
    icon.fill(Qt::transparent);
    QCOMPARE(paint(24, Qt::white, 1.0).pixelColor(10, 10), QColor(Qt::black));
}

QTEST_MAIN(tst_ZrCtrlLook)
#include "tst_ZrCtrlLook.moc"
