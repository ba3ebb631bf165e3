#pragma once

#include <QString>

/// Something that is not as it must be; thrown where the tour cannot go on.
struct TourFailure
{
    QString expected;
    QString found;
};
