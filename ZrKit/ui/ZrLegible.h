#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QFont>

/// Text that can be read on a moving boat, however small the window and the scale of the theme.
///
/// Design sizes become real ones through `ZrTheme`; in a small window they would fall below what an arm's
/// length allows. Real pixels are Qt's logical pixels. User-interface thread only.
///
/// \code
/// painter.setFont(ZrLegible::Font(15)); // 15 design pixels, and never under 14 real ones
/// painter.drawText(area, Qt::AlignLeft, caption);
/// \endcode
class ZR_KIT_EXPORT ZrLegible
{
public:
    static constexpr int LeastText = 14; ///< real pixels: nothing that is to be read is smaller
    static constexpr float LeastScale = 0.75F; ///< at which the body text of the theme has that size

    static int Px(float design); ///< the size of a text in real pixels, `LeastText` at least
    static QFont Font(float design); ///< the font of the theme in that size
    static float Design(float design); ///< \p design, or the design size that `LeastText` has in the theme

    /// \p font as large as \p text fits into \p room real pixels, `LeastText` at least.
    static QFont Fitting(const QFont& font, const QString& text, int room);

    /// While it lives, the design of the theme is no larger than a window of \p w × \p h real pixels shows
    /// with `LeastScale`. For the time in which the view scales the theme:
    ///
    /// \code
    /// void View::resizeGL(int w, int h)
    /// {
    ///     const ZrLegible::Scale scale(w, h);
    ///     ZrAppView::resizeGL(w, h);
    /// }
    /// \endcode
    /// The design that the user has chosen is back in force afterwards.
    class ZR_KIT_EXPORT Scale
    {
    public:
        Scale(int w, int h);
        ~Scale();
        Scale(const Scale&) = delete;
        Scale& operator=(const Scale&) = delete;

    private:
        int m_width;
        int m_height;
    };
};
