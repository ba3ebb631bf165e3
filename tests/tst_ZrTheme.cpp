// Scale, colours, fonts, pens, places beside widgets, recoloured images, settings.

#include "ZrUiChecks.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrTheme.h"

#include <QGuiApplication>
#include <QJsonObject>
#include <QScreen>
#include <QtTest>

#include <limits>
#include <memory>

static_assert(std::is_same_v<decltype(ZrTheme::dp), float>);
static_assert(std::is_same_v<decltype(ZrTheme::designWidth), int>);
static_assert(std::is_same_v<ZrTheme::EAside, EAside>);
static_assert(asideLeft == 0 && asideRight == 1 && asideAbove == 2 && asideBelow == 3);
static_assert(std::is_copy_assignable_v<ZrTheme> && std::is_move_assignable_v<ZrTheme>);

namespace {

constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr int mostInt = std::numeric_limits<int>::max();
constexpr int leastInt = std::numeric_limits<int>::min();

struct Colour
{
    const char* name;
    QColor* member;
    int r, g, b, a;
};

const Colour colours[] = {
    {"ctrlOutlineCol", &ZrTheme::ctrlOutlineCol, 125, 125, 125, 255},
    {"ctrlActiveCol", &ZrTheme::ctrlActiveCol, 0, 0, 125, 255},
    {"ctrlHighlightCol", &ZrTheme::ctrlHighlightCol, 0, 120, 120, 255},
    {"ctrlCheckCol", &ZrTheme::ctrlCheckCol, 90, 160, 180, 150},
    {"ctrlHintCol", &ZrTheme::ctrlHintCol, 0, 255, 0, 20},
    {"ctrlCol", &ZrTheme::ctrlCol, 255, 255, 255, 255},
    {"titleCol", &ZrTheme::titleCol, 255, 255, 255, 255},
    {"bodyCol", &ZrTheme::bodyCol, 200, 200, 200, 255},
    {"formBdr", &ZrTheme::formBdr, 255, 255, 255, 255},
    {"formMgr", &ZrTheme::formMgr, 100, 100, 100, 200},
    {"formBack", &ZrTheme::formBack, 0, 0, 0, 240},
    {"goodCol", &ZrTheme::goodCol, 0, 255, 0, 255},
    {"warnCol", &ZrTheme::warnCol, 255, 255, 0, 255},
    {"errorCol", &ZrTheme::errorCol, 255, 0, 0, 255},
    {"gridCol", &ZrTheme::gridCol, 128, 128, 128, 128},
    {"toolBack", &ZrTheme::toolBack, 51, 51, 51, 220},
    {"darken", &ZrTheme::darken, 0, 0, 0, 50},
    {"lighten", &ZrTheme::lighten, 255, 255, 255, 50},
    {"sea", &ZrTheme::sea, 35, 55, 75, 255},
    {"seabed", &ZrTheme::seabed, 90, 160, 180, 255},
    {"track", &ZrTheme::track, 255, 0, 0, 255},
    {"vehicle", &ZrTheme::vehicle, 200, 200, 50, 255},
    {"posA", &ZrTheme::posA, 200, 50, 50, 255},
    {"posB", &ZrTheme::posB, 50, 200, 50, 255},
    {"posC", &ZrTheme::posC, 50, 50, 200, 255},
    {"marker", &ZrTheme::marker, 150, 150, 150, 255},
    {"waypoint", &ZrTheme::waypoint, 150, 150, 150, 255},
    {"route", &ZrTheme::route, 0, 200, 0, 255},
};

// Made while the program is loaded, as those of the theme are: the application sets another default later.
const QFont fontAtLoad;

struct Font
{
    const char* name;
    QFont* member;
    int size;
    int weight;
};

const Font fonts[] = {
    {"fontTiny", &ZrTheme::fontTiny, 8, QFont::Normal},
    {"fontSmall", &ZrTheme::fontSmall, 12, QFont::Normal},
    {"font", &ZrTheme::font, 18, QFont::Normal},
    {"fontLarge", &ZrTheme::fontLarge, 24, QFont::Normal},
    {"fontHuge", &ZrTheme::fontHuge, 36, QFont::Normal},
    {"bodyFont", &ZrTheme::bodyFont, 18, QFont::Normal},
    {"ctrlFont", &ZrTheme::ctrlFont, 18, QFont::Normal},
    {"titleFont", &ZrTheme::titleFont, 48, 75},
};

} // namespace

class tst_ZrTheme : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asLoaded();
    void cleanup();

    void pixels_data();
    void pixels();
    void pixelsOfAbsurdSizes_data();
    void pixelsOfAbsurdSizes();
    void fractionsOfPixels();
    void designScale_data();
    void designScale();
    void designSizeIsCut();
    void appSize_data();
    void appSize();
    void appSizeWithoutDesign();
    void scaleAloneRefreshesNothing();

    void colourTable_data();
    void colourTable();
    void everyColourIsSetAnew();
    void fontTable_data();
    void fontTable();
    void fontsOfTinyWindows();
    void penTable_data();
    void penTable();
    void brushes();
    void cornerRadius_data();
    void cornerRadius();
    void textOptions();
    void otherStylesChangeNothing();
    void assignmentDoesNothing();

    void aside_data();
    void aside();
    void between_data();
    void between();

    void recolouring_data();
    void recolouring();
    void recolouringLeavesTheOriginal();
    void recolouringNothing();
    void recolouringKeepsThePixelRatio();

    void storesTabletMode_data();
    void storesTabletMode();
    void missingTabletMode();
};

// Runs first: nothing has set a style.
void tst_ZrTheme::asLoaded()
{
    QCOMPARE(ZrTheme::dp, 1.0F);
    QCOMPARE(ZrTheme::designWidth, 0);
    QCOMPARE(ZrTheme::designHeight, 0);
    QCOMPARE(ZrTheme::rxy, 6);
    QVERIFY(!ZrTheme::scaleDisplay);
    QVERIFY(!ZrTheme::tabletMode);
    QVERIFY(ZrTheme::fontFamily.isEmpty());
    for (const Colour& colour : colours)
        QVERIFY2(!colour.member->isValid(), colour.name);
    for (const Font& font : fonts)
        QVERIFY2(*font.member == fontAtLoad, font.name);
    QCOMPARE(ZrTheme::ctrlOutline, QPen());
    QCOMPARE(ZrTheme::ctrlActive, QBrush());
}

void tst_ZrTheme::cleanup()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::designWidth = 0;
    ZrTheme::designHeight = 0;
    ZrTheme::tabletMode = false;
    ZrTheme::SetStdStyle();
}

void tst_ZrTheme::pixels_data()
{
    QTest::addColumn<float>("dp");
    QTest::addColumn<float>("design");
    QTest::addColumn<int>("real");
    QTest::newRow("half goes up") << 1.25F << 2.0F << 3;
    QTest::newRow("below half") << 1.0F << 0.3F << 0;
    QTest::newRow("just half") << 1.0F << 0.5F << 1;
    QTest::newRow("whole") << 1.0F << 7.0F << 7;
    QTest::newRow("1.5 x 12") << 1.5F << 12.0F << 18;
    QTest::newRow("1.35 x 10") << 1.35F << 10.0F << 14;
    QTest::newRow("zero") << 1.5F << 0.0F << 0;
    QTest::newRow("negative is cut toward zero") << 1.0F << -2.0F << -1;
    QTest::newRow("small negative") << 1.0F << -0.3F << 0;
    QTest::newRow("minus half") << 1.0F << -0.5F << 0;
    QTest::newRow("scale zero") << 0.0F << 48.0F << 0;
}

void tst_ZrTheme::pixels()
{
    QFETCH(float, dp);
    QFETCH(float, design);
    ZrTheme::dp = dp;
    QTEST(ZrTheme::DpI(design), "real");
}

void tst_ZrTheme::pixelsOfAbsurdSizes_data()
{
    QTest::addColumn<float>("dp");
    QTest::addColumn<float>("design");
    QTest::addColumn<int>("real");
    QTest::newRow("infinite scale") << infinite << 2.0F << 0;
    QTest::newRow("infinite scale, zero") << infinite << 0.0F << 0;
    QTest::newRow("scale not a number") << std::nanf("") << 2.0F << 0;
    QTest::newRow("size not a number") << 1.0F << std::nanf("") << 0;
    QTest::newRow("infinite size") << 1.0F << -infinite << 0;
    QTest::newRow("beyond the integers") << 1.0F << 3e9F << mostInt;
    QTest::newRow("far below") << 1.0F << -1e30F << leastInt;
}

void tst_ZrTheme::pixelsOfAbsurdSizes()
{
    pixels();
}

void tst_ZrTheme::fractionsOfPixels()
{
    ZrTheme::dp = 1.25F;
    QCOMPARE(ZrTheme::DpF(3.0F), 3.75F);
    QCOMPARE(ZrTheme::Des2Real(3.0F), 3.75F);
    QCOMPARE(ZrTheme::Real2Des(3.75F), 3.0F);
    QCOMPARE(ZrTheme::Des2Real(QSizeF(8.0, -2.0)), QSizeF(10.0, -2.5));
    QCOMPARE(ZrTheme::Real2Des(QSizeF(10.0, -2.5)), QSizeF(8.0, -2.0));
    QCOMPARE(ZrTheme::DpF(-0.3F), 1.25F * -0.3F);
}

void tst_ZrTheme::designScale_data()
{
    // Ratios of the screen that the test runs on to the design.
    QTest::addColumn<double>("across");
    QTest::addColumn<double>("down");
    QTest::addColumn<float>("dp");
    QTest::newRow("the same") << 1.0 << 1.0 << 1.0F;
    QTest::newRow("equal widths decide alone") << 1.0 << 0.25 << 1.0F;
    QTest::newRow("equal widths, lower screen") << 1.0 << 4.0 << 1.0F;
    QTest::newRow("twice as wide and high") << 2.0 << 2.0 << 2.0F;
    QTest::newRow("limited by the height") << 2.0 << 1.25 << 1.25F;
    QTest::newRow("limited by the width") << 0.5 << 4.0 << 0.5F;
}

void tst_ZrTheme::designScale()
{
    QFETCH(double, across);
    QFETCH(double, down);
    const QSizeF screen = QGuiApplication::primaryScreen()->geometry().size();
    const auto width = static_cast<float>(screen.width() / across);
    const auto height = static_cast<float>(screen.height() / down);
    ZrTheme::dp = 77.0F;
    ZrTheme::SetDesignScale(width, height);
    QTEST(ZrTheme::dp, "dp");
    QCOMPARE(ZrTheme::designWidth, static_cast<int>(width));
    QCOMPARE(ZrTheme::designHeight, static_cast<int>(height));
}

void tst_ZrTheme::designSizeIsCut()
{
    ZrTheme::SetDesignScale(1280.9F, 800.99F);
    QCOMPARE(ZrTheme::designWidth, 1280);
    QCOMPARE(ZrTheme::designHeight, 800);
    ZrTheme::SetDesignScale(std::nanf(""), infinite);
    QCOMPARE(ZrTheme::designWidth, 0);
    QCOMPARE(ZrTheme::designHeight, mostInt);
}

void tst_ZrTheme::appSize_data()
{
    QTest::addColumn<float>("width");
    QTest::addColumn<float>("height");
    QTest::addColumn<float>("dp");
    QTest::newRow("the design") << 1280.0F << 800.0F << 1.0F;
    QTest::newRow("half as high") << 1280.0F << 400.0F << 1.0F;
    QTest::newRow("1920 x 1080") << 1920.0F << 1080.0F << 1.35F;
    QTest::newRow("limited by the width") << 640.0F << 800.0F << 0.5F;
    QTest::newRow("a pixel wider") << 1281.0F << 400.0F << 0.5F;
    QTest::newRow("no size") << 0.0F << 0.0F << 0.0F;
}

void tst_ZrTheme::appSize()
{
    QFETCH(float, width);
    QFETCH(float, height);
    ZrTheme::designWidth = 1280;
    ZrTheme::designHeight = 800;
    ZrTheme::SetAppSize(width, height);
    QTEST(ZrTheme::dp, "dp");
    QCOMPARE(ZrTheme::designWidth, 1280);
    QCOMPARE(ZrTheme::designHeight, 800);
}

void tst_ZrTheme::appSizeWithoutDesign()
{
    ZrTheme::SetAppSize(1280.0F, 800.0F);
    QVERIFY(std::isinf(ZrTheme::dp));
    ZrTheme::SetStdStyle();
    QCOMPARE(ZrTheme::rxy, 0);
    QCOMPARE(ZrTheme::font.pixelSize(), 1);
    ZrTheme::SetAppSize(0.0F, 0.0F); // equal widths
    QCOMPARE(ZrTheme::dp, 1.0F);
}

void tst_ZrTheme::scaleAloneRefreshesNothing()
{
    const QPen pen = ZrTheme::ctrlOutline;
    ZrTheme::designWidth = 1280;
    ZrTheme::designHeight = 800;
    ZrTheme::SetAppSize(2560.0F, 1600.0F);
    QCOMPARE(ZrTheme::dp, 2.0F);
    QCOMPARE(ZrTheme::rxy, 6);
    QCOMPARE(ZrTheme::font.pixelSize(), 18);
    QCOMPARE(ZrTheme::ctrlOutline, pen);
    ZrTheme::SetDesignScale(100.0F, 100.0F);
    QCOMPARE(ZrTheme::rxy, 6);
    QCOMPARE(ZrTheme::font.pixelSize(), 18);
    ZrTheme::dp = 2.0F;
    ZrTheme::SetStdStyle();
    QCOMPARE(ZrTheme::dp, 2.0F);
    QCOMPARE(ZrTheme::rxy, 12);
    QCOMPARE(ZrTheme::font.pixelSize(), 36);
}

void tst_ZrTheme::colourTable_data()
{
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<QColor>("expected");
    for (const Colour& colour : colours)
        QTest::newRow(colour.name) << *colour.member << QColor(colour.r, colour.g, colour.b, colour.a);
}

void tst_ZrTheme::colourTable()
{
    QFETCH(QColor, colour);
    QTEST(colour, "expected");
}

void tst_ZrTheme::everyColourIsSetAnew()
{
    for (const Colour& colour : colours)
        *colour.member = QColor(1, 2, 3, 4);
    ZrTheme::fontFamily = QStringLiteral("Nobody");
    ZrTheme::SetStdStyle();
    for (const Colour& colour : colours)
        QVERIFY2(*colour.member == QColor(colour.r, colour.g, colour.b, colour.a), colour.name);
    QCOMPARE(ZrTheme::fontFamily, QStringLiteral("Arial"));
}

void tst_ZrTheme::fontTable_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<int>("index");
    for (const double dp : {0.5, 0.703, 1.0, 1.35, 2.0}) {
        int index = 0;
        for (const Font& font : fonts)
            QTest::newRow(qPrintable(QStringLiteral("%1 at %2").arg(QLatin1String(font.name)).arg(dp)))
                << dp << index++;
    }
}

void tst_ZrTheme::fontTable()
{
    QFETCH(double, dp);
    QFETCH(int, index);
    const Font& font = fonts[index];
    const ZrThemeState state(dp);
    QCOMPARE(font.member->family(), QStringLiteral("Arial"));
    const float real = static_cast<float>(dp) * static_cast<float>(font.size);
    QCOMPARE(font.member->pixelSize(), static_cast<int>(real + 0.5F));
    QCOMPARE(font.member->weight(), font.weight);
    QCOMPARE(font.member->bold(), font.weight == 75);
}

void tst_ZrTheme::fontsOfTinyWindows()
{
    static int warnings;
    warnings = 0;
    const QtMessageHandler before
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++warnings; });
    const ZrThemeState state(0.01);
    qInstallMessageHandler(before);
    QCOMPARE(warnings, 0);
    for (const Font& font : fonts)
        QCOMPARE(font.member->pixelSize(), 1);
}

void tst_ZrTheme::penTable_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<int>("outline");
    QTest::newRow("0.5") << 0.5 << 1;
    QTest::newRow("1") << 1.0 << 2;
    QTest::newRow("1.25") << 1.25 << 3;
    QTest::newRow("2") << 2.0 << 4;
}

void tst_ZrTheme::penTable()
{
    QFETCH(double, dp);
    QFETCH(int, outline);
    const ZrThemeState state(dp);
    QCOMPARE(ZrTheme::bodyText, QPen(QColor(200, 200, 200)));
    QCOMPARE(ZrTheme::titleText, QPen(QColor(255, 255, 255)));
    QCOMPARE(ZrTheme::ctrlText, QPen(QColor(255, 255, 255)));
    QCOMPARE(ZrTheme::ctrlOutline, QPen(QColor(125, 125, 125), outline));
    QCOMPARE(ZrTheme::ctrlHighlight, QPen(QColor(0, 120, 120), outline));
}

void tst_ZrTheme::brushes()
{
    QCOMPARE(ZrTheme::ctrlActive, QBrush(QColor(0, 0, 125)));
    QCOMPARE(ZrTheme::ctrlCheck, QBrush(QColor(90, 160, 180, 150)));
    QCOMPARE(ZrTheme::ctrlHint, QBrush(QColor(0, 255, 0, 20)));
    QCOMPARE(ZrTheme::ctrlHint.style(), Qt::SolidPattern);
}

void tst_ZrTheme::cornerRadius_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<int>("radius");
    QTest::newRow("0.5") << 0.5 << 3;
    QTest::newRow("0.75") << 0.75 << 5; // 4.5
    QTest::newRow("1.35") << 1.35 << 8; // 8.1
    QTest::newRow("2") << 2.0 << 12;
}

void tst_ZrTheme::cornerRadius()
{
    QFETCH(double, dp);
    const ZrThemeState state(dp);
    QTEST(ZrTheme::rxy, "radius");
}

void tst_ZrTheme::textOptions()
{
    QCOMPARE(ZrTheme::centre.alignment(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(ZrTheme::left.alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(ZrTheme::right.alignment(), Qt::AlignRight | Qt::AlignVCenter);
}

void tst_ZrTheme::otherStylesChangeNothing()
{
    for (const float level : {0.0F, 0.5F, 1.0F, std::nanf("")}) {
        ZrTheme::SetNightStyle(level);
        ZrTheme::SetBrightStyle(level);
        for (const Colour& colour : colours)
            QVERIFY2(*colour.member == QColor(colour.r, colour.g, colour.b, colour.a), colour.name);
        QCOMPARE(ZrTheme::font.pixelSize(), 18);
        QCOMPARE(ZrTheme::dp, 1.0F);
    }
}

void tst_ZrTheme::assignmentDoesNothing()
{
    ZrTheme one;
    ZrTheme other;
    QCOMPARE(&(one = other), &one);
    QCOMPARE(&(one = std::move(other)), &one);
}

void tst_ZrTheme::aside_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<QRect>("strip");
    // The widget covers 10 to 59 and 20 to 49.
    QTest::newRow("left") << 0 << QRect(QPoint(-95, 20), QPoint(5, 49));
    QTest::newRow("right") << 1 << QRect(QPoint(64, 20), QPoint(164, 49));
    QTest::newRow("above") << 2 << QRect(QPoint(10, -85), QPoint(59, 15));
    QTest::newRow("below") << 3 << QRect(QPoint(10, 54), QPoint(59, 154));
    QTest::newRow("none") << 4 << QRect(QPoint(10, 20), QPoint(59, 49));
    QTest::newRow("far from any") << 1000 << QRect(QPoint(10, 20), QPoint(59, 49));
}

void tst_ZrTheme::aside()
{
    QFETCH(int, side);
    QWidget parent;
    QWidget widget(&parent);
    widget.setGeometry(10, 20, 50, 30);
    QTEST(ZrTheme::Aside(widget, static_cast<EAside>(side), 100, 5), "strip");
}

void tst_ZrTheme::between_data()
{
    QTest::addColumn<QRect>("b");
    QTest::addColumn<QRect>("space");
    // The other widget covers 10 to 59 and 20 to 49.
    QTest::newRow("right and below") << QRect(100, 90, 20, 20) << QRect(QPoint(64, 54), QPoint(95, 85));
    QTest::newRow("right beside") << QRect(100, 20, 20, 30) << QRect(QPoint(64, 20), QPoint(95, 49));
    QTest::newRow("below") << QRect(10, 90, 50, 20) << QRect(QPoint(10, 54), QPoint(59, 85));
    QTest::newRow("overlapping") << QRect(30, 30, 50, 50) << QRect(QPoint(10, 20), QPoint(79, 79));
    QTest::newRow("last column shared") << QRect(59, 49, 10, 10) << QRect(QPoint(10, 20), QPoint(68, 58));
    QTest::newRow("next column") << QRect(60, 50, 10, 10) << QRect(QPoint(64, 54), QPoint(55, 45));
    QTest::newRow("to the left") << QRect(-40, -40, 10, 10) << QRect(QPoint(10, 20), QPoint(-31, -31));
}

void tst_ZrTheme::between()
{
    QFETCH(QRect, b);
    QWidget parent;
    QWidget first(&parent);
    QWidget second(&parent);
    first.setGeometry(10, 20, 50, 30);
    second.setGeometry(b);
    QTEST(ZrTheme::Between(first, second, 5), "space");
}

void tst_ZrTheme::recolouring_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("ARGB32") << int(QImage::Format_ARGB32);
    QTest::newRow("ARGB32 premultiplied") << int(QImage::Format_ARGB32_Premultiplied);
    QTest::newRow("RGBA8888") << int(QImage::Format_RGBA8888);
    QTest::newRow("RGBA8888 premultiplied") << int(QImage::Format_RGBA8888_Premultiplied);
    QTest::newRow("Alpha8") << int(QImage::Format_Alpha8);
    QTest::newRow("ARGB4444") << int(QImage::Format_ARGB4444_Premultiplied);
}

void tst_ZrTheme::recolouring()
{
    QFETCH(int, format);
    QImage image(3, 2, QImage::Format_ARGB32);
    const int alphas[] = {0, 17, 102, 187, 238, 255};
    for (int i = 0; i < 6; ++i)
        image.setPixelColor(i % 3, i / 3, QColor(255, 255, 255, alphas[i]));
    image = image.convertToFormat(static_cast<QImage::Format>(format));
    // The alpha of the colour plays no part.
    const QImage result = ZrTheme::ColourImg(image, QColor(10, 200, 30, 40));
    QCOMPARE(result.format(), QImage::Format_RGBA8888);
    QCOMPARE(result.size(), image.size());
    for (int i = 0; i < 6; ++i) {
        const uchar* pixel = result.constScanLine(i / 3) + 4 * (i % 3);
        QCOMPARE(int(pixel[0]), 10);
        QCOMPARE(int(pixel[1]), 200);
        QCOMPARE(int(pixel[2]), 30);
        QCOMPARE(int(pixel[3]), alphas[i]);
    }
}

void tst_ZrTheme::recolouringLeavesTheOriginal()
{
    QImage image(2, 2, QImage::Format_RGBA8888);
    image.fill(QColor(1, 2, 3, 4));
    const QImage copy = image.copy();
    ZrTheme::ColourImg(image, Qt::red);
    QCOMPARE(image, copy);
}

void tst_ZrTheme::recolouringNothing()
{
    QVERIFY(ZrTheme::ColourImg(QImage(), Qt::red).isNull());
    QVERIFY(ZrTheme::ColourImg(QImage(0, 5, QImage::Format_RGB32), Qt::red).isNull());
    // A colour that is none is black.
    QImage dot(1, 1, QImage::Format_RGBA8888);
    dot.fill(Qt::white);
    QCOMPARE(ZrTheme::ColourImg(dot, QColor()).pixelColor(0, 0), QColor(Qt::black));
}

void tst_ZrTheme::recolouringKeepsThePixelRatio()
{
    QImage image(4, 4, QImage::Format_ARGB32);
    image.fill(Qt::white);
    image.setDevicePixelRatio(2.0);
    QCOMPARE(ZrTheme::ColourImg(image, Qt::red).devicePixelRatio(), 2.0);
}

void tst_ZrTheme::storesTabletMode_data()
{
    QTest::addColumn<bool>("on");
    QTest::newRow("on") << true;
    QTest::newRow("off") << false;
}

void tst_ZrTheme::storesTabletMode()
{
    QFETCH(bool, on);
    QJsonObject object;
    zr::ZrSetModule storing(zr::ePersistStoring, object);
    ZrTheme::tabletMode = on;
    ZrTheme::serialise(storing);
    QCOMPARE(object, (QJsonObject{{QStringLiteral("tablet mode"), on}}));

    ZrTheme::tabletMode = !on;
    zr::ZrSetModule loading(zr::ePersistLoading, object);
    ZrTheme::serialise(loading);
    QCOMPARE(ZrTheme::tabletMode, on);
}

void tst_ZrTheme::missingTabletMode()
{
    QJsonObject object;
    zr::ZrSetModule loading(zr::ePersistLoading, object);
    ZrTheme::tabletMode = true;
    ZrTheme::serialise(loading);
    QVERIFY(ZrTheme::tabletMode);
}

QTEST_MAIN(tst_ZrTheme)
#include "tst_ZrTheme.moc"
