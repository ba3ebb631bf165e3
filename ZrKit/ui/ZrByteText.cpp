#include "ZrKit/ui/ZrByteText.h"

#include <QCoreApplication>

#include <cmath>
#include <iterator>

ZrByteText ZrByteText::Of(double bytes)
{
    static constexpr const char* units[] = {QT_TRANSLATE_NOOP("ZrByteText", "B"),
        QT_TRANSLATE_NOOP("ZrByteText", "kB"), QT_TRANSLATE_NOOP("ZrByteText", "MB"),
        QT_TRANSLATE_NOOP("ZrByteText", "GB"), QT_TRANSLATE_NOOP("ZrByteText", "TB")};
    if (!std::isfinite(bytes) || bytes < 0.0)
        return {};
    std::size_t unit = 0;
    // What would be shown as 1000 is 1.00 of the next unit.
    while (bytes >= 999.5 && unit + 1 < std::size(units)) {
        bytes /= 1000.0;
        ++unit;
    }
    const int decimals = unit == 0 || bytes >= 99.95 ? 0 : bytes >= 9.995 ? 1 : 2;
    return {QString::number(bytes, 'f', decimals), QCoreApplication::translate("ZrByteText", units[unit])};
}
