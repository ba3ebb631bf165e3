// Where the button places its icon and text, and what it paints.

#include "ZrUiChecks.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCtrlLook.h"

#include <QFontMetrics>
#include <QtTest>

namespace {

QImage Icon(const QColor& colour = Qt::white)
{
    QImage icon(32, 32, QImage::Format_ARGB32);
    icon.fill(colour);
    return icon;
}

QString S(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

class tst_ZrBtnPaint : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void contentIsInside_data();
    void contentIsInside();
    void iconAlone();
    void textAlone();
    void iconBesideText();
    void iconAboveText();
    void mirrored();
    void changedPlacesAnew();
    void hints_data();
    void hints();
    void fontFollowsTheTheme();
    void ownFontStays();

    void statesDiffer_data();
    void statesDiffer();
    void toolWithoutFrame();
    void roundIsRound();
    void accentIsFilled();
    void iconWhileOn();
    void badge();
    void badgeIsMirrored();
    void badgeCanBeRead();
    void toolTextIsOffTheBar();
    void longTextStaysInside();
    void linesOfText();
    void tinySizes();
    void disabledIsReadable();
};

void tst_ZrBtnPaint::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
}

void tst_ZrBtnPaint::cleanup()
{
    init();
}

void tst_ZrBtnPaint::contentIsInside_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("dp");
    for (int type = 0; type < 4; ++type) {
        for (const double dp : {0.5, 1.0, 2.0}) {
            for (const QSize& size : {QSize(44, 44), QSize(300, 44), QSize(60, 200), QSize(200, 100)})
                QTest::addRow("type %d, %d x %d, dp %.1f", type, size.width(), size.height(), dp)
                    << type << size << dp;
        }
    }
}

void tst_ZrBtnPaint::contentIsInside()
{
    QFETCH(int, type);
    QFETCH(QSize, size);
    QFETCH(double, dp);
    const ZrThemeState theme(dp);
    ZrBtn button(nullptr, static_cast<ZrBtn::eType>(type));
    button.text = S("Record now");
    button.img = Icon();
    button.resize(size);
    button.Changed();
    const QRectF all(button.rect());
    QVERIFY(button.imgRect.isEmpty() || all.contains(button.imgRect));
    QVERIFY(button.textRect.isEmpty() || all.contains(button.textRect));
    QVERIFY(!button.textRect.intersects(button.imgRect));
}

void tst_ZrBtnPaint::iconAlone()
{
    ZrBtn button(nullptr, ZrBtn::typeStd);
    button.img = Icon();
    button.resize(100, 60);
    button.Changed();
    QCOMPARE(button.imgRect.center(), QPointF(50, 30));
    QCOMPARE(button.imgRect.width(), button.imgRect.height());
    QVERIFY(button.textRect.isEmpty());
}

void tst_ZrBtnPaint::textAlone()
{
    ZrBtn button(nullptr, ZrBtn::typeStd);
    button.text = S("Text");
    button.resize(100, 60);
    button.Changed();
    QVERIFY(button.imgRect.isEmpty());
    QCOMPARE(button.textRect.center(), QPointF(50, 30));
}

void tst_ZrBtnPaint::iconBesideText()
{
    ZrBtn button(nullptr, ZrBtn::typeStd);
    button.text = S("Text");
    button.img = Icon();
    button.resize(300, 60);
    button.Changed();
    QVERIFY(button.imgRect.right() < button.textRect.left());
    QCOMPARE(button.imgRect.center().y(), button.textRect.center().y());
    // Together in the middle.
    QVERIFY(qAbs(button.imgRect.left() - (300 - button.textRect.right())) <= 1.0);
    QVERIFY(button.textRect.width() >= QFontMetrics(button.font).horizontalAdvance(button.text));
}

void tst_ZrBtnPaint::iconAboveText()
{
    ZrBtn button(nullptr, ZrBtn::typeTool);
    button.text = S("Text");
    button.img = Icon();
    button.resize(100, 100);
    button.Changed();
    QVERIFY(button.imgRect.bottom() <= button.textRect.top());
    QCOMPARE(button.imgRect.center().x(), button.textRect.center().x());
    // Four pixels above the middle: the bar of a tool that is on is below.
    QVERIFY(qAbs(button.imgRect.top() + 8 - (100 - button.textRect.bottom())) <= 1.0);
}

void tst_ZrBtnPaint::mirrored()
{
    ZrBtn button(nullptr, ZrBtn::typeStd);
    button.text = S("Text");
    button.img = Icon();
    button.resize(300, 60);
    button.Changed();
    const QRectF icon = button.imgRect;
    const QRectF text = button.textRect;
    button.setLayoutDirection(Qt::RightToLeft);
    QCOMPARE(button.imgRect.left(), 300 - icon.right());
    QCOMPARE(button.textRect.left(), 300 - text.right());
    QVERIFY(button.imgRect.left() > button.textRect.right());
}

void tst_ZrBtnPaint::changedPlacesAnew()
{
    ZrBtn button(nullptr, ZrBtn::typeStd);
    button.text = S("Text");
    button.resize(100, 60);
    button.Changed();
    ZrPaintCounter paints(button);
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&button));
    paints.Take();
    button.img = Icon();
    QVERIFY(button.imgRect.isEmpty());
    button.Changed();
    QVERIFY(!button.imgRect.isEmpty());
    QCOMPARE(paints.Take(), 1);
}

void tst_ZrBtnPaint::hints_data()
{
    QTest::addColumn<double>("dp");
    for (const double dp : {0.5, 0.703, 1.0, 1.35, 2.0})
        QTest::newRow(qPrintable(QString::number(dp))) << dp;
}

// At its preferred size a button shows its whole text.
void tst_ZrBtnPaint::hints()
{
    QFETCH(double, dp);
    const ZrThemeState theme(dp);
    for (const int type : {0, 1, 3}) {
        for (const bool hasIcon : {false, true}) {
            ZrBtn button(nullptr, static_cast<ZrBtn::eType>(type));
            button.text = S("Restore everything");
            button.img = hasIcon ? Icon() : QImage();
            button.resize(button.sizeHint());
            button.Changed();
            QVERIFY(button.textRect.width() >= QFontMetrics(button.font).horizontalAdvance(button.text));
            QVERIFY(button.textRect.height() >= QFontMetricsF(button.font).lineSpacing());
        }
    }
}

void tst_ZrBtnPaint::fontFollowsTheTheme()
{
    ZrBtn button(nullptr, ZrBtn::typeStd);
    button.resize(100, 60);
    QCOMPARE(button.font.pixelSize(), 18);
    const ZrThemeState theme(2.0);
    button.Changed();
    QCOMPARE(button.font.pixelSize(), 36);
}

void tst_ZrBtnPaint::ownFontStays()
{
    ZrBtn button(nullptr, ZrBtn::typeStd);
    button.font = ZrTheme::fontLarge;
    const ZrThemeState theme(2.0);
    button.Changed();
    QCOMPARE(button.font.pixelSize(), 24);
}

void tst_ZrBtnPaint::statesDiffer_data()
{
    QTest::addColumn<int>("type");
    for (int type = 0; type < 4; ++type)
        QTest::newRow(qPrintable(QString::number(type))) << type;
}

// Every state can be told from every other, in grey as well.
void tst_ZrBtnPaint::statesDiffer()
{
    QFETCH(int, type);
    QList<QImage> seen;
    for (const bool isEnabled : {true, false}) {
        for (const bool isOn : {false, true}) {
            for (const u32 hover : {0U, 1U, 2U}) {
                if (!isEnabled && hover != 0)
                    continue;
                ZrBtn button(nullptr, static_cast<ZrBtn::eType>(type));
                button.text = S("Go");
                button.img = Icon();
                button.resize(100, 90);
                button.setEnabled(isEnabled);
                button.on = isOn;
                button.hover = hover;
                const QImage grey = Painted(button).convertToFormat(QImage::Format_Grayscale8);
                QVERIFY(!seen.contains(grey));
                seen += grey;
            }
        }
    }
    QCOMPARE(seen.size(), 8);
}

void tst_ZrBtnPaint::toolWithoutFrame()
{
    ZrBtn button(nullptr, ZrBtn::typeTool);
    button.resize(80, 80);
    QVERIFY(!HasColour(Painted(button), ZrTheme::ctrlOutlineCol));
    button.hover = 1;
    QVERIFY(HasColour(Painted(button), ZrTheme::ctrlHighlightCol));
    button.hover = 0;
    button.on = true;
    QVERIFY(HasColour(Painted(button), ZrTheme::ctrlActiveCol));
}

void tst_ZrBtnPaint::roundIsRound()
{
    ZrBtn button(nullptr, ZrBtn::typeRound);
    button.resize(120, 60);
    const QImage image = Painted(button);
    const QColor fill = ZrCtrlLook::Of(ZrCtrlState()).fill;
    QCOMPARE(image.pixelColor(60, 30), fill);
    QCOMPARE(image.pixelColor(60, 5), fill);
    for (const QPoint& p : {QPoint(10, 30), QPoint(110, 30), QPoint(33, 3), QPoint(87, 57)})
        QCOMPARE(image.pixelColor(p), QColor(Qt::black));
}

void tst_ZrBtnPaint::accentIsFilled()
{
    ZrBtn button(nullptr, ZrBtn::typeAccent);
    button.resize(80, 60);
    QCOMPARE(Painted(button).pixelColor(40, 30), ZrTheme::ctrlActiveCol);
    button.hover = 2;
    QVERIFY(Painted(button).pixelColor(40, 30) != ZrTheme::ctrlActiveCol);
    button.hover = 0;
    button.setEnabled(false);
    QVERIFY(Painted(button).pixelColor(40, 30) != ZrTheme::ctrlActiveCol);
}

void tst_ZrBtnPaint::iconWhileOn()
{
    ZrBtn button(nullptr, ZrBtn::typeStd);
    button.resize(80, 60);
    button.img = Icon();
    button.imgOn = Icon(Qt::transparent);
    button.Changed();
    QCOMPARE(Painted(button).pixelColor(40, 30), ZrTheme::ctrlCol);
    button.on = true;
    QCOMPARE(Painted(button).pixelColor(40, 30), ZrTheme::ctrlActiveCol);
    button.imgOn = QImage();
    QCOMPARE(Painted(button).pixelColor(40, 30), ZrTheme::ctrlCol);
}

void tst_ZrBtnPaint::badge()
{
    ZrBtn button(nullptr, ZrBtn::typeTool);
    button.resize(100, 60);
    const QRect place(60, 0, 40, 30);
    QVERIFY(!HasColour(Painted(button).copy(place), ZrTheme::ctrlCol));
    button.badge = 3;
    const QImage three = Painted(button);
    QVERIFY(HasColour(three.copy(place), ZrTheme::ctrlCol));
    button.badge = 99;
    const QImage most = Painted(button);
    QVERIFY(most != three);
    button.badge = 100;
    const QImage more = Painted(button);
    QVERIFY(more != most);
    button.badge = 2000000000;
    QCOMPARE(Painted(button), more);
    button.badge = -1;
    QVERIFY(HasColour(Painted(button).copy(place), ZrTheme::ctrlCol));
}

void tst_ZrBtnPaint::badgeIsMirrored()
{
    ZrBtn button(nullptr, ZrBtn::typeTool);
    button.setLayoutDirection(Qt::RightToLeft);
    button.resize(100, 60);
    button.badge = 3;
    const QImage image = Painted(button);
    QVERIFY(HasColour(image.copy(0, 0, 40, 30), ZrTheme::ctrlCol));
    QVERIFY(!HasColour(image.copy(60, 0, 40, 30), ZrTheme::ctrlCol));
}

void tst_ZrBtnPaint::longTextStaysInside()
{
    for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        ZrBtn button(nullptr, ZrBtn::typeStd);
        button.setLayoutDirection(direction);
        button.text = S("A text that is much longer than the button is wide");
        button.resize(120, 60);
        const QImage image = Painted(button);
        for (int y = 10; y < 50; ++y) {
            for (const int x : {3, 4, 5, 6, 113, 114, 115, 116})
                QVERIFY(Luminance(image.pixelColor(x, y)) < 0.1);
        }
    }
}

void tst_ZrBtnPaint::linesOfText()
{
    const auto rows = [](int lines, const QString& text) {
        ZrBtn button(nullptr, ZrBtn::typeStd);
        button.text = text;
        button.lines = lines;
        button.resize(140, 140);
        const QImage image = Painted(button);
        int count = 0;
        bool wasText = false;
        for (int y = 4; y < 136; ++y) {
            bool isText = false;
            for (int x = 8; x < 132 && !isText; ++x)
                isText = image.pixelColor(x, y).red() > 120;
            count += isText && !wasText ? 1 : 0;
            wasText = isText;
        }
        return count;
    };
    const QString text = S("mmmm mmmm mmmm mmmm mmmm mmmm mmmm mmmm");
    QCOMPARE(rows(1, text), 1);
    QCOMPARE(rows(2, text), 2);
    QCOMPARE(rows(3, text), 3);
    QCOMPARE(rows(3, S("mm")), 1);
    QCOMPARE(rows(0, text), 1);
    QCOMPARE(rows(-5, text), 1);
}

void tst_ZrBtnPaint::tinySizes()
{
    for (int type = 0; type < 4; ++type) {
        for (const QSize& size : {QSize(0, 0), QSize(1, 1), QSize(1, 100), QSize(100, 1), QSize(9, 9)}) {
            ZrBtn button(nullptr, static_cast<ZrBtn::eType>(type));
            button.text = S("Text");
            button.img = Icon();
            button.on = true;
            button.badge = 5;
            button.lines = 3;
            button.resize(size);
            button.Changed();
            QImage image(120, 120, QImage::Format_RGB32);
            image.fill(Qt::black);
            button.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
            QCOMPARE(image.pixelColor(119, 119), QColor(Qt::black));
        }
    }
}

void tst_ZrBtnPaint::disabledIsReadable()
{
    ZrBtn button(nullptr, ZrBtn::typeStd);
    button.img = Icon();
    button.resize(80, 60);
    button.setEnabled(false);
    button.Changed();
    const QImage image = Painted(button);
    QVERIFY(Contrast(image.pixelColor(40, 30), image.pixelColor(5, 30)) >= 4.5);
}

void tst_ZrBtnPaint::badgeCanBeRead()
{
    const ZrThemeState theme(0.5);
    ZrBtn button(nullptr, ZrBtn::typeTool);
    button.badge = 7;
    button.resize(60, 60);
    const QImage image = Painted(button);
    int rows = 0;
    for (int y = 0; y < image.height(); ++y)
        rows += HasColour(image.copy(0, y, image.width(), 1), ZrTheme::ctrlCol) ? 1 : 0;
    QFont least(ZrTheme::fontSmall);
    least.setPixelSize(14);
    QVERIFY2(rows >= QFontMetrics(least).height(), qPrintable(QString::number(rows)));
}

/// Letters reach below the line: a dark row at least stays between them and the bar.
void tst_ZrBtnPaint::toolTextIsOffTheBar()
{
    for (const double dp : {0.67, 0.89, 1.0, 1.25, 2.0}) {
        const ZrThemeState theme(dp);
        ZrBtn button(nullptr, ZrBtn::typeTool);
        button.img = Icon();
        button.text = S("gjpqy");
        button.on = true;
        button.resize(button.sizeHint());
        button.Changed();
        const QImage image = Painted(button);
        const ZrCtrlLook look = ZrCtrlLook::Of([] {
            ZrCtrlState state;
            state.on = true;
            return state;
        }());
        const auto rowIs = [&](int y) {
            const QImage row = image.copy(10, y, image.width() - 20, 1);
            return HasColour(row, look.mark);
        };
        int bar = image.height() / 2;
        while (bar < image.height() && !rowIs(bar))
            ++bar;
        QVERIFY(bar < image.height() - 4);
        // Antialiased letters: whatever is not the fill.
        for (int x = 10; x < image.width() - 10; ++x)
            QCOMPARE(image.pixelColor(x, bar - 2), look.fill);
        int text = bar - 2;
        while (text > 0 && !HasColour(image.copy(10, text, image.width() - 20, 1), look.text))
            --text;
        QVERIFY(text > image.height() / 2);
    }
}

QTEST_MAIN(tst_ZrBtnPaint)
#include "tst_ZrBtnPaint.moc"
