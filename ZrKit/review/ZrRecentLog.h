#pragma once

#include "ZrUtil/ZrTypes.h"

#include <QString>

#include <limits>

/// One recording in a list of recent ones. A plain value.
struct ZrRecentLog
{
    enum eSonar : int
    {
        sonarUnknown, ///< not in what was looked at
        sonarNone,
        sonarPresent
    };

    QString path;
    u64 size = 0; ///< bytes of the log
    double start = std::numeric_limits<double>::quiet_NaN(); ///< seconds since 1970-01-01 UTC
    double duration = std::numeric_limits<double>::quiet_NaN(); ///< seconds; NaN when not known
    eSonar sonar = sonarUnknown;
    bool isDamaged = false;
    QString damage; ///< a sentence; empty unless damaged
    bool isIndexed = false; ///< it opens at once
};
