// A button that shows a palette above its name.

#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrPaletteBtn.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrCtrlLook.h"

#include <QSignalSpy>
#include <QtTest>

#include <algorithm>

namespace {

constexpr int margin = 8; ///< at scale 1

int Distance(QRgb a, QRgb b)
{
    return std::max(
        {std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

} // namespace

class tst_ZrPaletteBtn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void names_data();
    void names();
    void sizeFollowsTheScale();
    void showsThePalette_data();
    void showsThePalette();
    void palettesDiffer();
    void unknownIsGrey();
    void darkAtNight();
    void hasAnEnd();
    void nameIsBelow();
    void isNoToggle();
    void noRoom();

private:
    std::unique_ptr<ZrThemeState> m_theme;
};

void tst_ZrPaletteBtn::init()
{
    m_theme.reset();
    m_theme = std::make_unique<ZrThemeState>();
}

void tst_ZrPaletteBtn::names_data()
{
    QTest::addColumn<QString>("palette");
    QTest::addColumn<QString>("text");
    QTest::newRow("copper") << QStringLiteral("copper") << QStringLiteral("Copper");
    QTest::newRow("none") << QString() << QString();
    QTest::newRow("not known") << QStringLiteral("äther 2") << QStringLiteral("Äther 2");
}

void tst_ZrPaletteBtn::names()
{
    QFETCH(QString, palette);
    QFETCH(QString, text);
    const ZrPaletteBtn button(nullptr, palette);
    QCOMPARE(button.text, text);
    QCOMPARE(button.accessibleName(), text);
}

void tst_ZrPaletteBtn::sizeFollowsTheScale()
{
    const ZrPaletteBtn button(nullptr, QStringLiteral("copper"));
    QCOMPARE(button.sizeHint(), QSize(96, 72));
    ZrTheme::dp = 2.0F;
    QCOMPARE(button.sizeHint(), QSize(192, 144));
    ZrTheme::dp = 0.1F;
    QCOMPARE(button.sizeHint(), QSize(ZrCtrlLook::smallestTarget, ZrCtrlLook::smallestTarget));
}

void tst_ZrPaletteBtn::showsThePalette_data()
{
    QTest::addColumn<QString>("palette");
    for (const QString& name : ZrSonarPalette::Names())
        QTest::newRow(qPrintable(name)) << name;
}

/// Weakest at the left, every colour at its share of the width.
void tst_ZrPaletteBtn::showsThePalette()
{
    QFETCH(QString, palette);
    ZrSonarPalette colours;
    QVERIFY(colours.Load(palette));
    ZrPaletteBtn button(nullptr, palette);
    button.resize(256 + 2 * margin, 100);
    const QImage image = Painted(button);
    for (const int y : {margin + 2, 30, 42}) {
        for (int i = 2; i < 254; ++i) {
            // Smoothing may shift by one step.
            const QRgb seen = image.pixel(margin + i, y);
            const int off = std::min({Distance(seen, colours.Colour(i - 1)),
                Distance(seen, colours.Colour(i)), Distance(seen, colours.Colour(i + 1))});
            QVERIFY2(off <= 3, qPrintable(QStringLiteral("%1, %2: %3").arg(i).arg(y).arg(off)));
        }
    }
}

void tst_ZrPaletteBtn::palettesDiffer()
{
    QVector<QImage> seen;
    for (const QString& name : ZrSonarPalette::Names()) {
        ZrPaletteBtn button(nullptr, name);
        button.resize(96, 72);
        const QImage swatch = Painted(button).copy(margin, margin, 80, 24);
        QVERIFY2(!seen.contains(swatch), qPrintable(name));
        seen.append(swatch);
    }
    QVERIFY(seen.size() > 2);
}

/// Nothing on it is as bright as by day.
void tst_ZrPaletteBtn::darkAtNight()
{
    const auto brightest = [] {
        ZrPaletteBtn button(nullptr, QStringLiteral("gray"));
        button.resize(96, 72);
        const QImage image = button.grab().toImage();
        int most = 0;
        for (int x = 0; x < image.width(); ++x)
            most = std::max(most, qGray(image.pixel(x, 20)));
        return most;
    };
    const int before = ZrColourScheme::Current();
    ZrColourScheme::Apply(ZrColourScheme::dusk);
    const int dusk = brightest();
    ZrColourScheme::Apply(ZrColourScheme::night);
    const int night = brightest();
    ZrColourScheme::Apply(before);
    QVERIFY2(dusk > 240 && night < 130, qPrintable(QStringLiteral("%1 %2").arg(dusk).arg(night)));
}

void tst_ZrPaletteBtn::unknownIsGrey()
{
    ZrPaletteBtn button(nullptr, QStringLiteral("none such"));
    button.resize(256 + 2 * margin, 100);
    const QImage image = Painted(button);
    for (int i = 2; i < 254; ++i)
        QVERIFY(Distance(image.pixel(margin + i, 30), qRgb(i, i, i)) <= 3);
}

/// The swatch has a line around it in the colour of outlines.
void tst_ZrPaletteBtn::hasAnEnd()
{
    ZrTheme::ctrlOutlineCol = QColor(250, 0, 250);
    ZrPaletteBtn button(nullptr, QStringLiteral("linear"));
    button.resize(96, 72);
    const QImage image = Painted(button);
    const QRect swatch(margin, margin, 96 - 2 * margin, 32 - margin);
    for (int x = swatch.left(); x <= swatch.right(); ++x) {
        QCOMPARE(image.pixelColor(x, swatch.top()), ZrTheme::ctrlOutlineCol);
        QCOMPARE(image.pixelColor(x, swatch.bottom()), ZrTheme::ctrlOutlineCol);
    }
    for (int y = swatch.top(); y <= swatch.bottom(); ++y) {
        QCOMPARE(image.pixelColor(swatch.left(), y), ZrTheme::ctrlOutlineCol);
        QCOMPARE(image.pixelColor(swatch.right(), y), ZrTheme::ctrlOutlineCol);
    }
}

void tst_ZrPaletteBtn::nameIsBelow()
{
    ZrPaletteBtn button(nullptr, QStringLiteral("copper"));
    for (const QSize& size : {QSize(96, 72), QSize(192, 144), QSize(60, 44)}) {
        button.resize(size);
        Painted(button);
        QVERIFY(button.textRect.top() >= size.height() * 0.45 - 1e-9);
        QVERIFY(button.textRect.bottom() <= size.height() - 5.0); // the bar of the one that is chosen
        QVERIFY(button.textRect.left() >= 0.0 && button.textRect.right() <= size.width());
        QVERIFY(button.textRect.height() > 8.0);
    }
}

void tst_ZrPaletteBtn::isNoToggle()
{
    ZrPaletteBtn button(nullptr, QStringLiteral("copper"));
    button.resize(96, 72);
    button.show();
    QSignalSpy clicked(&button, &ZrBtn::Clicked);
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(40, 20));
    QCOMPARE(clicked.count(), 1);
    QVERIFY(!button.on);
    // Whoever offers palettes marks the one in use.
    button.on = true;
    button.Changed();
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(40, 20));
    QVERIFY(button.on);
}

void tst_ZrPaletteBtn::noRoom()
{
    ZrPaletteBtn button(nullptr, QStringLiteral("copper"));
    for (const QSize& size : {QSize(1, 1), QSize(10, 300), QSize(500, 6), QSize(17, 17)}) {
        button.resize(size);
        QCOMPARE(Painted(button).size(), size);
    }
}

QTEST_MAIN(tst_ZrPaletteBtn)
#include "tst_ZrPaletteBtn.moc"
