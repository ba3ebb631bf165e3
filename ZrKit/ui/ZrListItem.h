#pragma once

#include <QColor>
#include <QImage>
#include <QString>
#include <QVariant>

/// A row of a `ZrTouchList`.
struct ZrListItem
{
    QString title;
    QString subtitle; ///< in a second line, smaller; may be empty, or have line breaks
    QString detail; ///< at the right edge, for instance a length; may be empty
    QImage image; ///< at the left edge: an icon (alpha mask, painted in the colour of the text) or a picture
    bool isPicture = false; ///< the image is a picture
    QColor edge; ///< a bar along the left edge, for a state; none while invalid
    QVariant data; ///< of the application
};
