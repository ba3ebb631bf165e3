#pragma once

#include "ZrKit/geo/ZrGridBatch.h"

#include <QPointF>
#include <QString>

#include <vector>

/// A track on the grid of its UTM zone.
struct Track
{
    ZrGridBatch grid = ZrGridBatch::UtmZone(30, false);
    std::vector<QPointF> positions; ///< eastings and northings, metres
    QString error; ///< why there is none
};

/// The positions of the vehicle in a data log, in the zone of the first one.
Track ReadTrack(const QString& logPath);

/// A vehicle that wanders for \p count seconds at 2 m/s, always the same way, from \p start.
std::vector<QPointF> Wander(const QPointF& start, int count);
