#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QChar>
#include <QColor>
#include <QString>
#include <QUuid>

class ZrXmlObj;

namespace zr {
class ZrSetModule;
}

/// One point of a mission route, or one marker (target) of a survey: its identity, name and position, the
/// manoeuvre to make at it, and for a marker the description of the object found there.
///
/// A plain value: copying and moving go member by member, the UUID included; only a newly built waypoint gets
/// a new UUID. Lengths are metres, speeds m/s, positions decimal degrees with north and east positive.
///
/// The codes (`flags`, `spdType`, `headType`, `zType`, `type`, `src`, `shape`, `bottom`, `fileType`, `classA`
/// to `classD`) belong to the applications that edit waypoints; of them the route reads `spdType` alone, see
/// `ZrWpts`. What the route computes (`pseudo`, `x`, `y`, `q` and the turn from `ricX` to `tp2Q`) is stored
/// as well.
///
/// Not synchronised: one thread at a time.
class ZR_UTIL_EXPORT ZrWpt
{
public:
    QString name; ///< as typed by the user
    QString pseudo; ///< label made by the route: "Wpt: " n, "Mkr: " n, "Start Mission", "Finish Mission"
    QString filename; ///< file that the point belongs to or was taken from
    u8 fileType = 0; ///< kind of that file
    QUuid uuid = QUuid::createUuid(); ///< identity of the waypoint
    QUuid gridId; ///< identity of the survey pattern that the point belongs to; null for none
    QColor colour = QColor(Qt::yellow); ///< drawing colour
    double lat = 0.0; ///< latitude, degrees
    double lng = 0.0; ///< longitude, degrees
    double x = 0.0; ///< grid easting, metres; filled by the route
    double y = 0.0; ///< grid northing, metres; filled by the route
    double z = 0.0; ///< vertical coordinate
    double alt = 0.0; ///< altitude
    double r = 0.0; ///< turn radius, metres, by its magnitude; 0 for no rounded turn
    double p = 0.0; ///< attitude component
    double q = 0.0; ///< distance along the route from its first waypoint, metres; filled by the route
    double rx = 0.0; ///< rotation component
    double rz = 0.0; ///< rotation component
    double speed = 0.0; ///< speed on the leg, m/s
    double time = -1.0; ///< time stamp, seconds since 1970-01-01 UTC; −1 for none
    int spdType = 0; ///< 0 inherit, 1 slow, 2 medium, 3 fast, any other `speed`
    u32 flags = 0; ///< bits of the point
    double head = 0.0; ///< heading, degrees
    int headType = 0; ///< kind of heading
    int zType = 0; ///< kind of vertical coordinate (depth or altitude)
    bool atWpt = false; ///< action at the waypoint
    QUuid lookAt; ///< waypoint to look at; null for none
    u8 type = 0; ///< kind of point, see `eZrWptType`
    u8 src = 0; ///< source of the point
    u8 shape = 0; ///< shape class of a target
    float burial = 0.0F; ///< burial of a target
    float length = 0.0F; ///< length of a target, metres
    float height = 0.0F; ///< height of a target, metres
    float width = 0.0F; ///< width of a target, metres
    float viz = 0.0F; ///< visibility
    QChar bottomA = QLatin1Char('A'); ///< letter of the bottom classification
    int bottomN = 1; ///< number of the bottom classification
    u8 bottom = 0; ///< bottom type
    bool veg = false; ///< vegetation present
    float ripples = 0.0F; ///< ripples
    float current = 0.0F; ///< current
    u8 classA = 0; ///< classification code
    u8 classB = 0; ///< classification code
    u8 classC = 0; ///< classification code
    u8 classD = 0; ///< classification code
    double ricX = 0.0; ///< centre of the turn circle, grid easting, metres
    double ricY = 0.0; ///< centre of the turn circle, grid northing, metres
    double rit = 0.0; ///< angle swept from the first to the second tangent point, radians, counter-clockwise
    double tp1X = 0.0; ///< first tangent point, grid easting, metres
    double tp1Y = 0.0; ///< first tangent point, grid northing, metres
    double tp1Q = 0.0; ///< distance along the route at the first tangent point, metres
    double tp2X = 0.0; ///< second tangent point, grid easting, metres
    double tp2Y = 0.0; ///< second tangent point, grid northing, metres
    double tp2Q = 0.0; ///< distance along the route at the second tangent point, metres

    /// `name`, or `pseudo` when that is empty.
    QString Name() const;

    /// Stores into, or loads from, an object of the tag-structured store. Positions, grid values, the time
    /// and the turn have 10 decimals, other doubles six significant digits; the alpha of the colour is lost.
    /// A missing key leaves the field as it was, a UUID text that does not parse gives the null UUID.
    void SyncXml(ZrXmlObj& obj);

    /// The same for the JSON settings, which keep every digit. "bottomA" is a string of one character; an
    /// empty one leaves the field as it was.
    static void serialise(ZrWpt& wpt, zr::ZrSetModule& module);
};
