#pragma once

#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

/// One item on its way from a foreign file into a log: key, source, format, time and encoded payload.
struct ZrImportItem
{
    CRecType type;
    u16 source = 0;
    u16 format = 0;
    double time = 0.0; ///< time of the data, seconds since 1970-01-01T00:00:00 UTC
    QByteArray payload;
};
