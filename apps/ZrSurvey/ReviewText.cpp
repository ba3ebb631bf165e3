#include "apps/ZrSurvey/ReviewText.h"

#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QStringList>
#include <QVector>

#include <algorithm>
#include <cmath>

namespace {

const QString dash = QStringLiteral("–");
const QColor nightMark(255, 150, 110); ///< brighter than any text of the night, still without blue

} // namespace

QString review::length_text(double metres, int places)
{
    if (!std::isfinite(metres))
        return dash;
    return ZrUnits::GetShortLengthString(metres, places, false) + QLatin1Char(' ')
        + ZrUnits::GetShortLengthUnits();
}

QString review::speed_text(double metresPerSecond)
{
    if (!std::isfinite(metresPerSecond))
        return dash;
    return ZrUnits::GetSpeedString(metresPerSecond, 2, false) + QLatin1Char(' ') + ZrUnits::GetSpeedUnits();
}

QString review::angle_text(double degrees)
{
    return std::isfinite(degrees) ? ZrUnits::GetAngleString(degrees, 1, true) : dash;
}

QString review::position_text(double latitude, double longitude)
{
    const QString text = ZrPositionShown::Text(latitude, longitude);
    return text.isEmpty() ? dash : text;
}

QString review::size_text(double length, double width, double height)
{
    QVector<double> sizes{length, width, height};
    if (!std::isfinite(height))
        sizes.removeLast();
    QStringList texts;
    bool isKnown = false;
    for (const double size : qAsConst(sizes)) {
        isKnown = isKnown || std::isfinite(size);
        texts << (std::isfinite(size) ? ZrUnits::GetShortLengthString(size, 2, false) : dash);
    }
    if (!isKnown)
        return {};
    return texts.join(QStringLiteral(" × ")) + QLatin1Char(' ') + ZrUnits::GetShortLengthUnits();
}

QColor review::mark_ink(const QColor& colour)
{
    if (ZrColourScheme::Current() != ZrColourScheme::night)
        return colour;
    return {nightMark.red(), nightMark.green(), nightMark.blue(), colour.alpha()};
}

QFont review::body_font()
{
    QFont font = ZrTheme::font;
    font.setPixelSize(std::max(font.pixelSize(), ZrLegible::LeastText));
    return font;
}
