#include "ZrUtil/ZrTheme.h"

#include "ZrUtil/ZrSetModule.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <limits>

float ZrTheme::dp = 1.0F;
int ZrTheme::designWidth = 0;
int ZrTheme::designHeight = 0;
int ZrTheme::rxy = 6;
bool ZrTheme::scaleDisplay = false;
bool ZrTheme::tabletMode = false;

QString ZrTheme::fontFamily;
QFont ZrTheme::fontTiny;
QFont ZrTheme::fontSmall;
QFont ZrTheme::font;
QFont ZrTheme::fontLarge;
QFont ZrTheme::fontHuge;
QFont ZrTheme::bodyFont;
QFont ZrTheme::ctrlFont;
QFont ZrTheme::titleFont;

QColor ZrTheme::ctrlOutlineCol;
QColor ZrTheme::ctrlActiveCol;
QColor ZrTheme::ctrlHighlightCol;
QColor ZrTheme::ctrlCheckCol;
QColor ZrTheme::ctrlHintCol;
QColor ZrTheme::ctrlCol;
QColor ZrTheme::titleCol;
QColor ZrTheme::bodyCol;
QColor ZrTheme::formBdr;
QColor ZrTheme::formMgr;
QColor ZrTheme::formBack;
QColor ZrTheme::goodCol;
QColor ZrTheme::warnCol;
QColor ZrTheme::errorCol;
QColor ZrTheme::gridCol;
QColor ZrTheme::toolBack;
QColor ZrTheme::darken;
QColor ZrTheme::lighten;
QColor ZrTheme::sea;
QColor ZrTheme::seabed;
QColor ZrTheme::track;
QColor ZrTheme::vehicle;
QColor ZrTheme::posA;
QColor ZrTheme::posB;
QColor ZrTheme::posC;
QColor ZrTheme::marker;
QColor ZrTheme::waypoint;
QColor ZrTheme::route;

QPen ZrTheme::bodyText;
QPen ZrTheme::titleText;
QPen ZrTheme::ctrlText;
QPen ZrTheme::ctrlOutline;
QPen ZrTheme::ctrlHighlight;
QBrush ZrTheme::ctrlActive;
QBrush ZrTheme::ctrlCheck;
QBrush ZrTheme::ctrlHint;

QTextOption ZrTheme::centre(Qt::AlignCenter);
QTextOption ZrTheme::left(Qt::AlignLeft | Qt::AlignVCenter);
QTextOption ZrTheme::right(Qt::AlignRight | Qt::AlignVCenter);

namespace {

/// The value cut to an integer, the nearest one where there is none; 0 for what is not a number.
int ToInt(double value)
{
    if (std::isnan(value))
        return 0;
    constexpr double least = std::numeric_limits<int>::min();
    constexpr double most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, least, most));
}

/// Real pixels for each design pixel. Equal widths are taken for the same screen.
float Scale(float realWidth, float realHeight, float designWidth, float designHeight)
{
    if (realWidth == designWidth)
        return 1.0F;
    return std::min(realWidth / designWidth, realHeight / designHeight);
}

void SetFont(QFont& font, float designSize)
{
    font.setFamily(ZrTheme::fontFamily);
    // Qt refuses a size of 0, which a window of a few pixels would give.
    font.setPixelSize(std::max(ZrTheme::DpI(designSize), 1));
}

} // namespace

int ZrTheme::DpI(float v)
{
    const float real = dp * v;
    return std::isfinite(real) ? ToInt(static_cast<double>(real) + 0.5) : 0;
}

float ZrTheme::DpF(float v)
{
    return dp * v;
}

float ZrTheme::Des2Real(float v)
{
    return DpF(v);
}

float ZrTheme::Real2Des(float v)
{
    return v / dp;
}

QSizeF ZrTheme::Des2Real(const QSizeF& size)
{
    return {size.width() * static_cast<double>(dp), size.height() * static_cast<double>(dp)};
}

QSizeF ZrTheme::Real2Des(const QSizeF& size)
{
    return {size.width() / static_cast<double>(dp), size.height() / static_cast<double>(dp)};
}

void ZrTheme::SetDesignScale(float w, float h)
{
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect real = screen->geometry();
        dp = Scale(static_cast<float>(real.width()), static_cast<float>(real.height()), w, h);
    }
    designWidth = ToInt(static_cast<double>(w));
    designHeight = ToInt(static_cast<double>(h));
}

void ZrTheme::SetAppSize(float w, float h)
{
    dp = Scale(w, h, static_cast<float>(designWidth), static_cast<float>(designHeight));
}

void ZrTheme::SetStdStyle()
{
    fontFamily = QStringLiteral("Arial");

    ctrlOutlineCol = QColor(125, 125, 125, 255);
    ctrlActiveCol = QColor(0, 0, 125, 255);
    ctrlHighlightCol = QColor(0, 120, 120, 255);
    ctrlCheckCol = QColor(90, 160, 180, 150);
    ctrlHintCol = QColor(0, 255, 0, 20);
    ctrlCol = QColor(255, 255, 255, 255);
    titleCol = QColor(255, 255, 255, 255);
    bodyCol = QColor(200, 200, 200, 255);
    formBdr = QColor(255, 255, 255, 255);
    formMgr = QColor(100, 100, 100, 200);
    formBack = QColor(0, 0, 0, 240);
    goodCol = QColor(0, 255, 0, 255);
    warnCol = QColor(255, 255, 0, 255);
    errorCol = QColor(255, 0, 0, 255);
    gridCol = QColor(128, 128, 128, 128);
    toolBack = QColor(51, 51, 51, 220);
    darken = QColor(0, 0, 0, 50);
    lighten = QColor(255, 255, 255, 50);
    sea = QColor(35, 55, 75, 255);
    seabed = QColor(90, 160, 180, 255);
    track = QColor(255, 0, 0, 255);
    vehicle = QColor(200, 200, 50, 255);
    posA = QColor(200, 50, 50, 255);
    posB = QColor(50, 200, 50, 255);
    posC = QColor(50, 50, 200, 255);
    marker = QColor(150, 150, 150, 255);
    waypoint = QColor(150, 150, 150, 255);
    route = QColor(0, 200, 0, 255);

    rxy = DpI(6);
    SetupAssets();
}

void ZrTheme::SetNightStyle(float /*level*/) { }

void ZrTheme::SetBrightStyle(float /*level*/) { }

void ZrTheme::SetupAssets()
{
    SetFont(fontTiny, 8);
    SetFont(fontSmall, 12);
    SetFont(font, 18);
    SetFont(fontLarge, 24);
    SetFont(fontHuge, 36);
    SetFont(bodyFont, 18);
    SetFont(ctrlFont, 18);
    SetFont(titleFont, 48);
    titleFont.setWeight(QFont::Bold);

    bodyText = QPen(bodyCol);
    titleText = QPen(titleCol);
    ctrlText = QPen(ctrlCol);
    ctrlOutline = QPen(ctrlOutlineCol, DpI(2));
    ctrlHighlight = QPen(ctrlHighlightCol, DpI(2));
    ctrlActive = QBrush(ctrlActiveCol);
    ctrlCheck = QBrush(ctrlCheckCol);
    ctrlHint = QBrush(ctrlHintCol);
}

QRect ZrTheme::Aside(QWidget& w, EAside side, int size, int gap)
{
    QRect strip = w.geometry();
    const QRect at = strip;
    switch (side) {
    case asideLeft:
        strip.setRight(at.left() - gap);
        strip.setLeft(strip.right() - size);
        break;
    case asideRight:
        strip.setLeft(at.right() + gap);
        strip.setRight(strip.left() + size);
        break;
    case asideAbove:
        strip.setBottom(at.top() - gap);
        strip.setTop(strip.bottom() - size);
        break;
    case asideBelow:
        strip.setTop(at.bottom() + gap);
        strip.setBottom(strip.top() + size);
        break;
    }
    return strip;
}

QRect ZrTheme::Between(QWidget& a, QWidget& b, int gap)
{
    const QRect from = a.geometry();
    const QRect to = b.geometry();
    QRect space;
    if (to.left() <= from.right()) {
        space.setLeft(from.left());
        space.setRight(to.right());
    } else {
        space.setLeft(from.right() + gap);
        space.setRight(to.left() - gap);
    }
    if (to.top() <= from.bottom()) {
        space.setTop(from.top());
        space.setBottom(to.bottom());
    } else {
        space.setTop(from.bottom() + gap);
        space.setBottom(to.top() - gap);
    }
    return space;
}

QImage ZrTheme::ColourImg(const QImage& img, QColor c)
{
    if (img.isNull())
        return img;
    QImage result = img.convertToFormat(QImage::Format_RGBA8888);
    const auto red = static_cast<uchar>(c.red());
    const auto green = static_cast<uchar>(c.green());
    const auto blue = static_cast<uchar>(c.blue());
    for (int y = 0; y < result.height(); ++y) {
        uchar* pixel = result.scanLine(y);
        for (int x = 0; x < result.width(); ++x, pixel += 4) {
            pixel[0] = red;
            pixel[1] = green;
            pixel[2] = blue;
        }
    }
    return result;
}

void ZrTheme::serialise(zr::ZrSetModule& m)
{
    m.item(QStringLiteral("tablet mode"), tabletMode);
}
