#pragma once

#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

/// One record of a simulated survey, ready to be logged. A plain value.
struct ZrSimRecord
{
    CRecType type;
    u16 source = 0;
    u16 format = 0;
    double time = 0.0; ///< seconds since the epoch, simulated
    QByteArray payload; ///< not compressed
};
