#pragma once

#include "ZrUtil/ZrUnits.h"

/// All units of the process, to see what a preset has touched.
struct Units
{
    QString tiny, shortLength, longLength, temperature, speed;
    double tinyScale, shortScale, longScale, temperatureScale, temperatureOffset, speedScale;
    int style;

    static Units Now()
    {
        return {ZrUnits::tinyLengthUnit, ZrUnits::shortLengthUnit, ZrUnits::longLengthUnit,
            ZrUnits::temperatureUnit, ZrUnits::speedUnit, ZrUnits::tinyLengthScale, ZrUnits::shortLengthScale,
            ZrUnits::longLengthScale, ZrUnits::temperatureScale, ZrUnits::temperatureOffset,
            ZrUnits::speedScale, ZrUnits::geoStyle};
    }

    friend bool operator==(const Units& a, const Units& b)
    {
        return a.tiny == b.tiny && a.shortLength == b.shortLength && a.longLength == b.longLength
            && a.temperature == b.temperature && a.speed == b.speed && a.tinyScale == b.tinyScale
            && a.shortScale == b.shortScale && a.longScale == b.longScale
            && a.temperatureScale == b.temperatureScale && a.temperatureOffset == b.temperatureOffset
            && a.speedScale == b.speedScale && a.style == b.style;
    }
};

inline const Units metric{QStringLiteral("mm"), QStringLiteral("m"), QStringLiteral("km"),
    QStringLiteral(u"\u00B0C"), QStringLiteral("m/s"), 1000.0, 1.0, 0.001, 1.0, 0.0, 1.0, 7};
inline const Units imperial{QStringLiteral("in"), QStringLiteral("ft"), QStringLiteral("mi"),
    QStringLiteral(u"\u00B0F"), QStringLiteral("kts"), 39.37008, 3.28084, 0.000621371, 1.8, 32.0, 1.94384, 7};
