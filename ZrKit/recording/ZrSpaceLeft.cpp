#include "ZrKit/recording/ZrSpaceLeft.h"

#include <algorithm>
#include <cmath>

ZrSpaceLeft ZrSpaceLeft::Of(qint64 freeBytes, qint64 stopBelow, const Rates& rates)
{
    const auto isRate = [](double rate) { return std::isfinite(rate) && rate > 0.0; };
    ZrSpaceLeft left;
    double rate = 0.0;
    if (isRate(rates.recording)) {
        left.by = byRecording;
        rate = rates.recording;
    } else if (isRate(rates.source)) {
        left.by = bySource;
        rate = rates.source;
    } else if (isRate(rates.last)) {
        left.by = byLast;
        rate = rates.last;
    }
    if (left.by != byNothing && freeBytes >= 0) {
        const double room = static_cast<double>(freeBytes) - static_cast<double>(stopBelow);
        left.seconds = std::max(room, 0.0) / rate;
    }
    return left;
}
