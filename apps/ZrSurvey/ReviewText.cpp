#include "apps/ZrSurvey/ReviewText.h"

#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <algorithm>
#include <cmath>

namespace {

const QString dash = QStringLiteral("–");

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

QFont review::body_font()
{
    QFont font = ZrTheme::font;
    font.setPixelSize(std::max(font.pixelSize(), ZrLegible::LeastText));
    return font;
}
