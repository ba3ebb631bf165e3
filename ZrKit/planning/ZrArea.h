#pragma once

#include "ZrKit/planning/ZrGeoPoint.h"

#include <QString>

#include <vector>

/// A named area of sea: the ring of its corners, in either sense of turning, the last one joined to the first
/// (which is not repeated). Holes are areas of their own.
struct ZrArea
{
    QString name;
    std::vector<ZrGeoPoint> ring;
};
