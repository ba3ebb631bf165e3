#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>
#include <QVector>

#include <algorithm>
#include <cmath>

/// A part of a widget that is painted anew only when what it shows has changed: for curves that take many
/// times as long to paint as to copy, under a cursor that moves in every frame.
///
/// \code
/// m_picture.Paint(painter, rect, {VisibleBegin(), VisibleEnd(), low, high}, [&](QPainter& to) { … });
/// \endcode
///
/// With a device pixel ratio that is no whole number it is painted each time, since a copy would be blurred.
/// GUI thread only.
class ZrKeptPicture
{
public:
    /// Shows within \p rect, pixels of the widget, what \p paint paints there in the coordinates of the
    /// widget. It is called when \p key, the size or the device pixel ratio is another one; a key with a NaN
    /// is always another one.
    template <class Painted>
    void Paint(QPainter& painter, const QRect& rect, const QVector<double>& key, const Painted& paint)
    {
        const double ratio = painter.device()->devicePixelRatioF();
        if (rect.isEmpty())
            return;
        if (ratio != std::floor(ratio)) {
            paint(painter);
            return;
        }
        const QSize size = rect.size() * static_cast<int>(ratio);
        // Vectors that share their data are equal for QVector, with a NaN too.
        const bool isSame = std::equal(m_key.cbegin(), m_key.cend(), key.cbegin(), key.cend());
        if (!isSame || m_image.size() != size || m_corner != rect.topLeft()) {
            m_key = key;
            m_corner = rect.topLeft();
            m_image = QImage(size, QImage::Format_ARGB32_Premultiplied);
            m_image.setDevicePixelRatio(ratio);
            m_image.fill(Qt::transparent);
            QPainter to(&m_image);
            to.translate(-rect.topLeft());
            paint(to);
        }
        painter.drawImage(rect.topLeft(), m_image);
    }

private:
    QVector<double> m_key;
    QPoint m_corner;
    QImage m_image;
};
