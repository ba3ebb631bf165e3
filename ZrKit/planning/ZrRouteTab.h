#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QString>

class ZrWpts;
struct ZrGeoShapes;

/// Routes as a list of waypoints, a line each, with tabs between the columns: what spreadsheets and people
/// exchange. UTF-8; bytes that are none are read as Latin-1.
///
/// The first line that is not empty and no comment (`#`) may name the columns: `name`, `lat`, `long` (or
/// `lng`, `lon`, `latitude`, `longitude`) and the settings keys of further fields; other columns are passed
/// over. Without it a line holds latitude and longitude, or name, latitude and longitude. Positions are read
/// in every style of `ZrUnits::GetValue`; blanks around a value do not count, and an empty field keeps its
/// default. Any thread.
class ZR_KIT_EXPORT ZrRouteTab
{
public:
    /// Names the columns lat, long, name, z, r, speedtype and speed; positions with 9 decimals. The position
    /// comes first, for a name may begin with a `#`. The fields of the route stand in a comment that `Read`
    /// understands. Tabs and line ends in names become blanks. All waypoints must have valid positions.
    static QByteArray Write(const ZrWpts& route);

    /// Adds the points to \p shapes. False with "line N: reason" when a line has no position or a value that
    /// is none of its kind.
    static bool Read(const QByteArray& bytes, ZrGeoShapes& shapes, QString& error);
};
