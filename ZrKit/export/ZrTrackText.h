#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QDate>
#include <QString>

/// Numbers, times and texts as the track exports write them, whatever the locale. One thread at a time: the
/// date written last is remembered, since it costs more than the rest of a time.
class ZR_KIT_EXPORT ZrTrackText
{
public:
    /// "2021-03-03T14:05:09.000Z" for \p time in seconds since the epoch, rounded to the millisecond. Empty
    /// for NaN and beyond the years 1 to 9999.
    QString Time(double time);

    /// Degrees with 8 decimals, about a millimetre.
    static QString Latitude(double latitude);
    /// The same, brought into [-180, 180).
    static QString Longitude(double longitude);
    /// Metres above the surface with 2 decimals: depths are negative. Empty for NaN.
    static QString Elevation(double depth);
    /// \p value with \p decimals; empty when it is not finite. Never "-0.00".
    static QString Number(double value, int decimals);
    /// \p text without what XML 1.0 does not allow: control characters other than tab and line ends, halves
    /// of surrogate pairs, U+FFFE and U+FFFF.
    static QString Clean(const QString& text);

private:
    qint64 m_day = 0; ///< days since the epoch
    QString m_date; ///< the text of that day with the T; empty before the first
};
