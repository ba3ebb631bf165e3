#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/export/ZrTrackData.h"

#include <QString>

class QIODevice;

/// Writes a track and its events into a file that other programs read.
///
/// \code
/// ZrTrackData data;
/// data.name = QStringLiteral("Survey 7");
/// data.points = points;
/// data.events = events;
/// ZrTrackExport out;
/// if (!out.Write(path, ZrTrackExport::FormatOf(path), data))
///     return out.Error();
/// \endcode
///
/// What each format holds stands at `ZrExportGpx`, `ZrExportKml`, `ZrExportGeoJson` and `ZrExportCsv`. The
/// bytes depend on the data alone: not on the locale, the time zone or the time of writing. Memory does not
/// grow with the track. The file is built beside its place and takes it in one step at the end; a failure
/// leaves what was there. One thread at a time; several objects at once.
class ZR_KIT_EXPORT ZrTrackExport
{
public:
    enum eFormat : int
    {
        Gpx,
        Kml,
        GeoJson,
        Csv
    };

    /// By the suffix of \p path, in any case: gpx, kml, geojson or json; CSV for every other.
    static eFormat FormatOf(const QString& path);

    /// Replaces \p path. False, with the reason in `Error`, when it cannot be written.
    bool Write(const QString& path, eFormat format, const ZrTrackData& data);

    /// Writes to \p out, which is open for writing; for whoever has a place of their own for the file. False
    /// when it did not take everything. Flushing it is left to the caller. Any thread.
    static bool WriteTo(QIODevice& out, eFormat format, const ZrTrackData& data);

    /// Why the last `Write` failed, a sentence; empty when it did not.
    QString Error() const { return m_error; }

private:
    QString m_error;
};
