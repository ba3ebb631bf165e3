#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QString>

class ZrWpts;
struct ZrGeoShapes;

/// Routes as a list of waypoints, a line each, with tabs between the columns: what spreadsheets and people
/// exchange. UTF-8.
///
/// The first line that is not empty and no comment (`#`) may name the columns: `name`, `lat`, `long` (or `lng`,
/// `lon`, `latitude`, `longitude`) and the settings keys of further fields. Without it a line holds latitude
/// and longitude, or name, latitude and longitude. Positions are read in every style of `ZrUnits::GetValue`.
/// Any thread.
class ZR_KIT_EXPORT ZrRouteTab
{
public:
    /// Names the columns name, lat, long, z, r, speedtype and speed; positions with 9 decimals. The fields of
    /// the route stand in a comment that `Read` understands. Tabs and line ends in names become blanks. All
    /// waypoints must have valid positions.
    static QByteArray Write(const ZrWpts& route);

    /// Adds the points to \p shapes. False with "line N: reason" when a line has no position.
    static bool Read(const QByteArray& bytes, ZrGeoShapes& shapes, QString& error);
};
