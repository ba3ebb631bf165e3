#pragma once

#include "ZrUtil/ZrExport.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QImage>
#include <QPen>
#include <QRect>
#include <QSizeF>
#include <QString>
#include <QTextOption>

class QWidget;

namespace zr {
class ZrSetModule;
}

/// Where `ZrTheme::Aside` places a strip.
enum EAside : int
{
    asideLeft = 0, ///< left of the widget
    asideRight = 1, ///< right of it
    asideAbove = 2, ///< above it
    asideBelow = 3 ///< below it
};

/// The one visual theme of the process: colours, fonts, pens, and the scale between the pixels that layouts
/// are designed in and those of the screen.
///
/// \code
/// ZrTheme::SetDesignScale(1280, 800); // the screen the layouts were made for
/// ZrTheme::SetStdStyle();
/// ...
/// ZrTheme::SetAppSize(window->width(), window->height()); // at every resize
/// ZrTheme::SetStdStyle(); // when fonts, pens and corners are to follow
/// painter.setPen(ZrTheme::ctrlOutline);
/// painter.drawRoundedRect(QRect(0, 0, ZrTheme::DpI(80), ZrTheme::DpI(50)), ZrTheme::rxy, ZrTheme::rxy);
/// \endcode
///
/// Until `SetStdStyle` colours are invalid and fonts, pens and brushes are those of Qt. Design pixels are the
/// unit of every size in a layout; real pixels are Qt's logical pixels of the window.
///
/// Nobody makes objects of this class. User-interface thread only.
class ZR_UTIL_EXPORT ZrTheme
{
public:
    using EAside = ::EAside;

    static float dp; ///< real pixels for each design pixel
    static int designWidth; ///< width of the screen for which layouts were designed, pixels; 0 until set
    static int designHeight; ///< its height
    static int rxy; ///< corner radius, real pixels
    static bool scaleDisplay; ///< views scale their layout to the window
    static bool tabletMode; ///< no keyboard: values are typed on the screen

    static QString fontFamily;
    static QFont fontTiny; ///< 8 design pixels
    static QFont fontSmall; ///< 12 design pixels
    static QFont font; ///< 18 design pixels
    static QFont fontLarge; ///< 24 design pixels
    static QFont fontHuge; ///< 36 design pixels
    static QFont bodyFont; ///< 18 design pixels
    static QFont ctrlFont; ///< 18 design pixels
    static QFont titleFont; ///< 48 design pixels, bold

    static QColor ctrlOutlineCol; ///< control outline
    static QColor ctrlActiveCol; ///< active control fill
    static QColor ctrlHighlightCol; ///< highlighted outline
    static QColor ctrlCheckCol; ///< check mark fill
    static QColor ctrlHintCol; ///< hint fill
    static QColor ctrlCol; ///< control text
    static QColor titleCol; ///< title text
    static QColor bodyCol; ///< body text
    static QColor formBdr; ///< form border
    static QColor formMgr; ///< form manager background
    static QColor formBack; ///< form background
    static QColor goodCol; ///< good state
    static QColor warnCol; ///< warning state
    static QColor errorCol; ///< error state
    static QColor gridCol; ///< grid lines
    static QColor toolBack; ///< tool bar background
    static QColor darken; ///< darkening overlay
    static QColor lighten; ///< lightening overlay
    static QColor sea; ///< water
    static QColor seabed; ///< sea floor
    static QColor track; ///< vehicle track
    static QColor vehicle; ///< vehicle symbol
    static QColor posA; ///< position source A
    static QColor posB; ///< position source B
    static QColor posC; ///< position source C
    static QColor marker; ///< markers
    static QColor waypoint; ///< waypoints
    static QColor route; ///< route line

    static QPen bodyText; ///< of body text
    static QPen titleText; ///< of titles
    static QPen ctrlText; ///< of control text
    static QPen ctrlOutline; ///< of control outlines, 2 design pixels wide
    static QPen ctrlHighlight; ///< of highlighted outlines, 2 design pixels wide
    static QBrush ctrlActive; ///< fills active controls
    static QBrush ctrlCheck; ///< fills check marks
    static QBrush ctrlHint; ///< fills hints

    static QTextOption centre; ///< in the middle of a rectangle
    static QTextOption left; ///< at its left edge, in the middle of its height
    static QTextOption right; ///< at its right edge, in the middle of its height

    ZrTheme& operator=(const ZrTheme& /*other*/) { return *this; } ///< does nothing

    ZrTheme& operator=(ZrTheme&& /*other*/) noexcept { return *this; } ///< does nothing

    /// Design to real pixels, rounded: `dp` × \p v + 0.5, cut to an integer. Results beyond the integers are
    /// the nearest one; 0 when the product is not finite.
    static int DpI(float v);

    static float DpF(float v); ///< design to real pixels: `dp` × \p v
    static float Des2Real(float v); ///< the same
    static float Real2Des(float v); ///< real to design pixels: \p v / `dp`
    static QSizeF Des2Real(const QSizeF& size); ///< design to real pixels
    static QSizeF Real2Des(const QSizeF& size); ///< real to design pixels

    /// Scales from a design of \p w × \p h pixels to the primary screen: 1 when the widths are equal, else
    /// the smaller ratio of the two. Fonts, pens and `rxy` stay until `SetStdStyle`. Without a screen the
    /// scale stays.
    static void SetDesignScale(float w, float h);

    /// Scales to a window of \p w × \p h real pixels: 1 when the width is that of the design, whatever the
    /// height, else the smaller ratio of the two. After `SetDesignScale`; infinite before.
    static void SetAppSize(float w, float h);

    /// Sets the colours and everything that depends on them and on `dp`: fonts, pens, brushes, `rxy`.
    static void SetStdStyle();

    static void SetNightStyle(float level); ///< changes nothing: the standard style stays
    static void SetBrightStyle(float level); ///< changes nothing: the standard style stays

    /// A strip \p size wide (or high) beside \p w at the distance \p gap, as long as that side of \p w. Edges
    /// are Qt's inclusive ones, so the strip covers \p size + 1 pixels. A \p side that is none gives the
    /// geometry of \p w.
    static QRect Aside(QWidget& w, EAside side, int size, int gap);

    /// The space between \p a and \p b, which lies to the right and below, with \p gap to either. In a
    /// direction in which they overlap it spans both.
    static QRect Between(QWidget& a, QWidget& b, int gap);

    /// \p img with the red, green and blue of every pixel replaced by those of \p c; alpha stays. Recolours
    /// icons that are drawn as alpha masks. The result is in `Format_RGBA8888`; a null image stays null.
    static QImage ColourImg(const QImage& img, QColor c);

    /// The text of the style sheet at \p path, UTF-8, with the theme put in for these tokens; everything else
    /// stays as it is:
    ///
    /// | Token | Text |
    /// |---|---|
    /// | `<fontTiny>` `<fontSmall>` `<font>` `<fontLarge>` `<fontHuge>` | pixel size and "px" |
    /// | `<ctrlCol>` and every other colour by its name | "rgba(r, g, b, a)": 0 to 255, alpha 0 to 1 |
    /// | `<rxy>` | corner radius, without a unit |
    /// | `<DpI(12)>` | the number as real pixels, without a unit |
    ///
    /// Empty, with a line in the debug log, when the file cannot be read.
    static QString GetStylesheet(const QString& path);

    /// Loads or stores what the user has chosen: "tablet mode".
    static void serialise(zr::ZrSetModule& m);

private:
    static void SetupAssets();
};
