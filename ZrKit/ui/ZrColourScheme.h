#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QColor>
#include <QString>

/// The colours of the theme for the light on deck: a light screen for the sun, a dark one for dusk and rooms,
/// a dim red one that leaves the eyes adapted to the night.
///
/// \code
/// ZrTheme::SetStdStyle(); // fonts and sizes
/// ZrColourScheme::Apply(ZrColourScheme::night);
/// \endcode
///
/// In each of them text has a contrast of at least 4.5:1 to the backgrounds of forms and tool bars, 7:1 by
/// day; good, warning and error are told apart by lightness as well as by hue. `ZrTheme::SetStdStyle` brings
/// the standard colours back. User-interface thread only.
class ZR_KIT_EXPORT ZrColourScheme
{
public:
    enum eScheme : int
    {
        day = 0,
        dusk = 1,
        night = 2
    };

    static constexpr int Count = 3;

    /// Sets the colours of `ZrTheme` and the pens and brushes made of them; sizes and fonts stay. Dusk for a
    /// \p scheme that is none.
    static void Apply(int scheme);

    static int Current() { return s_current; } ///< applied last; dusk at first

    static QString Name(int scheme); ///< "Day"; translated, empty for one that is none

    static bool IsLight() { return s_current == day; } ///< dark detail on a light background

    /// Of the part of a way that is still to come, beside `ZrTheme::track`: told apart from it by lightness,
    /// which at night is all there is, and seen on the water.
    static QColor TrackAhead();

    /// \p colour for what is drawn over a picture of its own colours: at night a dim red as light as it was
    /// bright, else as it is. The opacity stays.
    static QColor OverPicture(const QColor& colour);

private:
    static int s_current;
};
