#include "ZrKit/map/ZrScaleBar.h"

#include "ZrKit/map/ZrGridSteps.h"
#include "ZrUtil/ZrUnits.h"

#include <cmath>

ZrScaleBar ZrScaleBar::Of(double metresPerPixel, double mostPixels)
{
    struct Unit
    {
        double scale; ///< for each metre
        QString label;
    };

    const Unit units[] = {{ZrUnits::longLengthScale, ZrUnits::longLengthUnit},
        {ZrUnits::shortLengthScale, ZrUnits::shortLengthUnit},
        {ZrUnits::tinyLengthScale, ZrUnits::tinyLengthUnit}};
    const double most = metresPerPixel * mostPixels;
    ZrScaleBar bar;
    if (!(most > 0.0) || !std::isfinite(most))
        return bar;
    for (const Unit& unit : units) {
        const bool isUsable = unit.scale > 0.0 && std::isfinite(unit.scale);
        const double scale = isUsable ? unit.scale : 1.0;
        const bool isLast = &unit == &units[2];
        if (most * scale < 1.0 - 1e-9 && !isLast)
            continue;
        const double length = ZrGridSteps::LengthWithin(most * scale);
        if (length == 0.0)
            break;
        bar.metres = length / scale;
        bar.pixels = bar.metres / metresPerPixel;
        // Fifths of 5 and 2.5, quarters of 1 and 2.
        const double lead = length / std::pow(10.0, std::floor(std::log10(length) + 1e-9));
        bar.parts = lead > 2.25 ? 5 : 4;
        bar.text = QString::number(length, 'f', ZrGridSteps::Decimals(length))
            + (isUsable ? unit.label : QStringLiteral("m"));
        break;
    }
    return bar;
}
