#include "ZrTestPositions.h"

std::function<QGeoPositionInfoSource*(QObject*)> ZrTestPositions::s_make;
