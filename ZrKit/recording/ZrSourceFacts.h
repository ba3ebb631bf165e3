#pragma once

#include "ZrKit/recording/ZrLiveValue.h"

#include <QString>
#include <QtGlobal>

#include <limits>

/// What a source gives, and what keeps it from giving any. A plain value; see `ZrSourceWatch`.
struct ZrSourceFacts
{
    enum eState : int
    {
        none = 0,
        opening = 1,
        waiting = 2, ///< open, and nothing that is sound has come yet
        receiving = 3,
        silent = 4, ///< nothing for too long
        unreadable = 5, ///< what comes is no data
        troubled = 6, ///< is tried again and again
        finished = 7,
        failed = 8
    };

    eState state = none;
    double perSecond = std::numeric_limits<double>::quiet_NaN(); ///< sentences or records; NaN not known
    double bytesPerSecond
        = std::numeric_limits<double>::quiet_NaN(); ///< that a recording of it takes, likewise
    double age = std::numeric_limits<double>::infinity(); ///< seconds since the last of them came
    double positionAge
        = std::numeric_limits<double>::quiet_NaN(); ///< since the last position, likewise; infinite for none
    bool isText = false; ///< sentences come, not records
    quint64 badLines = 0;
    QString reason; ///< of a failure or a trouble, a sentence

    /// They come, and no position is among them, or not for too long: a receiver without a fix, or none.
    bool LacksPosition() const { return state == receiving && positionAge > ZrLiveValue::StaleAfter; }

    /// Something is wrong that a person could put right.
    bool IsBad() const
    {
        return state == silent || state == unreadable || state == troubled || state == failed;
    }
};
