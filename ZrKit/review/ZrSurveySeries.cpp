#include "ZrKit/review/ZrSurveySeries.h"

void ZrSurveySeries::Squeeze()
{
    times->Squeeze();
    track.shrink_to_fit();
    for (ZrPlotSeries* series : {&depth, &altitude, &seabed, &heading, &speed, &pitch, &roll})
        series->Squeeze();
}

u64 ZrSurveySeries::Bytes() const
{
    u64 bytes = times->Times().capacity() * sizeof(double) + track.capacity() * sizeof(Position);
    for (const ZrPlotSeries* series : {&depth, &altitude, &seabed, &heading, &speed, &pitch, &roll})
        bytes += series->Bytes();
    return bytes;
}
