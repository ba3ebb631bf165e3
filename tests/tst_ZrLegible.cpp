// Sizes of text that can be read at every scale of the theme.

#include "ZrKit/ui/ZrLegible.h"
#include "ZrUiChecks.h"

#include <QFontMetrics>
#include <QtTest>

#include <limits>

class tst_ZrLegible : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sizes_data();
    void sizes();
    void noScale();
    void fitting();
    void window_data();
    void window();
};

void tst_ZrLegible::sizes_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<double>("design");
    QTest::addColumn<int>("pixels");
    QTest::newRow("as designed") << 1.0 << 18.0 << 18;
    QTest::newRow("caption as designed") << 1.0 << 15.0 << 15;
    QTest::newRow("too small as designed") << 1.0 << 8.0 << 14;
    QTest::newRow("large window") << 2.0 << 15.0 << 30;
    QTest::newRow("least scale") << 0.75 << 18.0 << 14;
    QTest::newRow("caption at the least scale") << 0.75 << 15.0 << 14;
    QTest::newRow("below the least scale") << 0.5 << 18.0 << 14;
    QTest::newRow("title below the least scale") << 0.5 << 48.0 << 24;
    QTest::newRow("nothing") << 0.0 << 18.0 << 14;
}

void tst_ZrLegible::sizes()
{
    QFETCH(double, dp);
    QFETCH(double, design);
    QFETCH(int, pixels);
    const ZrThemeState state(dp);
    QCOMPARE(ZrLegible::Px(static_cast<float>(design)), pixels);
    const QFont font = ZrLegible::Font(static_cast<float>(design));
    QCOMPARE(font.pixelSize(), pixels);
    QCOMPARE(font.family(), ZrTheme::fontFamily);
    if (dp > 0.0)
        QCOMPARE(ZrTheme::DpI(ZrLegible::Design(static_cast<float>(design))), pixels);
}

/// A theme that has none, or one that is no number.
void tst_ZrLegible::noScale()
{
    const ZrThemeState state;
    for (const float dp :
        {0.0F, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        ZrTheme::dp = dp;
        QVERIFY(ZrLegible::Px(18) >= ZrLegible::LeastText);
        QCOMPARE(ZrLegible::Design(18.0F), 18.0F);
    }
}

void tst_ZrLegible::fitting()
{
    const ZrThemeState state;
    QFont font = ZrTheme::font;
    font.setPixelSize(36);
    const QString text = QString::fromUtf8("48° 26' 44.124\" N");
    const auto wide = [&text](const QFont& of) { return QFontMetrics(of).horizontalAdvance(text); };
    QCOMPARE(ZrLegible::Fitting(font, text, wide(font)).pixelSize(), 36);
    const QFont less = ZrLegible::Fitting(font, text, wide(font) - 1);
    QVERIFY(less.pixelSize() < 36 && wide(less) < wide(font));
    for (const int room : {1, 0, -5, std::numeric_limits<int>::min()})
        QCOMPARE(ZrLegible::Fitting(font, text, room).pixelSize(), 14);
    font.setPixelSize(12);
    QCOMPARE(ZrLegible::Fitting(font, text, 10000).pixelSize(), 12); // never made larger
    QCOMPARE(ZrLegible::Fitting(ZrTheme::font, QString(), 0).pixelSize(), 18);
}

void tst_ZrLegible::window_data()
{
    QTest::addColumn<QSize>("window");
    QTest::addColumn<QSize>("design");
    QTest::addColumn<float>("dp");
    QTest::newRow("large enough") << QSize(1280, 800) << QSize(1280, 800) << 1.0F;
    QTest::newRow("smallest window") << QSize(900, 600) << QSize(1280, 800) << 0.75F;
    QTest::newRow("small controls") << QSize(900, 600) << QSize(1920, 1200) << 0.75F;
    QTest::newRow("small controls, large window") << QSize(2560, 1440) << QSize(1920, 1200) << 1.2F;
    QTest::newRow("flat") << QSize(1280, 300) << QSize(1440, 900) << 0.75F;
    QTest::newRow("large controls") << QSize(900, 600) << QSize(1024, 640) << 900.0F / 1024.0F;
}

void tst_ZrLegible::window()
{
    QFETCH(QSize, window);
    QFETCH(QSize, design);
    const ZrThemeState state;
    ZrTheme::designWidth = design.width();
    ZrTheme::designHeight = design.height();
    {
        const ZrLegible::Scale scale(window.width(), window.height());
        ZrTheme::SetAppSize(static_cast<float>(window.width()), static_cast<float>(window.height()));
        ZrTheme::SetStdStyle();
    }
    QTEST(ZrTheme::dp, "dp");
    QVERIFY(ZrTheme::font.pixelSize() >= ZrLegible::LeastText);
    QCOMPARE(QSize(ZrTheme::designWidth, ZrTheme::designHeight), design);
    // Windows of no size leave a scale that can be divided by.
    for (const QSize none : {QSize(0, 0), QSize(-3, 7), QSize(1, 0)}) {
        const ZrLegible::Scale scale(none.width(), none.height());
        QVERIFY(ZrTheme::designWidth >= 1 && ZrTheme::designHeight >= 1);
    }
}

QTEST_MAIN(tst_ZrLegible)
#include "tst_ZrLegible.moc"
