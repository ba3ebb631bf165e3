#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>
#include <QStringList>

/// A position as people are to read it: in the geographic style and the units in force, see `ZrUnits`.
///
/// UTM values are those of the zone of the position; the projection of the process stays as it is.
/// User-interface thread only.
///
/// \code
/// tile->Set(ZrPositionShown::Text(state.latitude.value, state.longitude.value), QString());
/// \endcode
class ZR_KIT_EXPORT ZrPositionShown
{
public:
    static constexpr int Places = 7; ///< of decimal degrees, a centimetre on the ground

    /// Latitude and longitude, or easting and northing with the zone in front ("31 N", "651409.90 mE",
    /// "5663203.61 mN"), degrees. Empty unless both are finite.
    static QStringList Parts(double lat, double lng);

    static QString Text(double lat, double lng); ///< the same in one line

    /// \p detail as people are to read it when it is nothing but a position as `ZrRecordingSession` notes it
    /// with an event ("48.4457404, -68.8281234": decimal degrees with `Places`), else as it is.
    static QString OfDetail(const QString& detail);
};
