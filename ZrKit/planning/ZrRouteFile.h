#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <memory>

class ZrWpts;
struct ZrGeoShapes;

/// Reads and writes routes in the forms that applications, chart plotters and people use.
///
/// \code
/// ZrRouteFile file;
/// ZrWpts route;
/// if (!file.Read(path, route))
///     return file.Error(); // "harbour.gpx: line 12: latitude 95 is not within 90 degrees of the equator"
/// \endcode
///
/// Positions survive a round trip to 1e-7 degrees in every form, all other fields of waypoints in all forms
/// but the list (see `ZrRouteTab`) and the tag-structured store (see `ZrRouteStore`); names as each form
/// says.
///
/// Large files are read in two steps, so that nobody waits for the first one:
/// \code
/// file.Load(path);     // in any thread
/// file.Finish(route);  // then on the thread of routes
/// \endcode
///
/// Reading recomputes the labels and the route, which moves the projection of the process (`ZrUnits::utm`),
/// and the settings hold the speed presets of all routes (`ZrWpts::s_msSlow` …): the user-interface thread,
/// but for `Load` and `FinishBare`.
class ZR_KIT_EXPORT ZrRouteFile
{
public:
    enum eFormat : int
    {
        Settings, ///< JSON settings of `ZrWpts`, with every field
        Store, ///< tag-structured store, sets "Route" and "Waypoints"
        Gpx,
        Kml,
        GeoJson,
        List, ///< a waypoint a line, columns parted by tabs
    };

    /// Larger files are refused: they are no routes.
    static constexpr long long MaxSize = 64 * 1024 * 1024;

    /// Routes of more waypoints are refused.
    static constexpr int MaxWaypoints = 250000;

    /// By the suffix of \p path, in any case: json, xml, gpx, kml, geojson; the list for every other.
    static eFormat FormatOf(const QString& path);

    /// Replaces \p route by that of the file; a failure leaves it as it was.
    ///
    /// The form is told by the content. Of several routes in a file the first is taken, a route before a
    /// track; a file with points only gives a route that is not linked. False, with the reason in `Error`,
    /// when the file cannot be read, is damaged or holds no waypoint.
    bool Read(const QString& path, ZrWpts& route);

    /// The first step of `Read`, which looks at the file and all that is in it.
    bool Load(const QString& path);

    /// The same of the content of a file; the reason has no path.
    bool LoadBytes(const QByteArray& bytes);

    /// The second step, once, after a `Load` that succeeded.
    bool Finish(ZrWpts& route);

    /// The same in any thread: the route as the file has it, with nothing computed. \p presets has the speed
    /// presets that are with it, see `ZrRouteSettings::ReadPresets`.
    bool FinishBare(ZrWpts& route, QJsonObject& presets);

    /// The second step of `ReadShapes`, likewise.
    bool FinishShapes(ZrGeoShapes& shapes);

    /// `Read` from the content of a file; the reason has no path.
    bool FromBytes(const QByteArray& bytes, ZrWpts& route);

    /// Reads whatever shapes the file holds, without deciding what they mean; a settings file and a store
    /// give their waypoints as points, which must have valid positions. A failure leaves \p shapes as they
    /// were.
    bool ReadShapes(const QString& path, ZrGeoShapes& shapes);

    /// Replaces the file in one step. False, with the reason in `Error` and the file as it was, when it
    /// cannot be written or would be larger than `MaxSize`, and for all forms but the settings and the store
    /// when a waypoint has no valid position.
    bool Write(const QString& path, eFormat format, const ZrWpts& route);

    /// The content that `Write` gives a file; the reason has no path.
    bool ToBytes(eFormat format, const ZrWpts& route, QByteArray& bytes);

    /// Why the last call failed, a sentence, with the path where there is one; empty when it did not.
    QString Error() const { return m_error; }

    /// What the last call left out or could not keep, a sentence each.
    QStringList Warnings() const { return m_warnings; }

private:
    bool ReadBytes(const QString& path, QByteArray& bytes);
    bool Parse(const QByteArray& bytes);
    bool ParseJson(const QByteArray& bytes);
    bool Conclude(ZrWpts& route);
    bool TakeContent(ZrWpts& route, QJsonObject& presets);
    bool FromShapes(const ZrGeoShapes& shapes, ZrWpts& route);
    bool ShapesOf(const ZrWpts& route, ZrGeoShapes& shapes);
    bool Fail(const QString& reason);
    bool FailIn(const QString& path);

    struct Content;

    std::shared_ptr<Content> m_content; ///< what was loaded; null for none
    QString m_path; ///< of it
    QString m_error;
    QStringList m_warnings;
};
