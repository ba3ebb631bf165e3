#include "ZrKit/export/ZrTrackExport.h"

#include "ZrKit/export/ZrExportCsv.h"
#include "ZrKit/export/ZrExportGeoJson.h"
#include "ZrKit/export/ZrExportGpx.h"
#include "ZrKit/export/ZrExportKml.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>

ZrTrackExport::eFormat ZrTrackExport::FormatOf(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QStringLiteral("gpx"))
        return Gpx;
    if (suffix == QStringLiteral("kml"))
        return Kml;
    if (suffix == QStringLiteral("geojson") || suffix == QStringLiteral("json"))
        return GeoJson;
    return Csv;
}

bool ZrTrackExport::WriteTo(QIODevice& out, eFormat format, const ZrTrackData& data)
{
    switch (format) {
    case Gpx:
        return ZrExportGpx::Write(out, data);
    case Kml:
        return ZrExportKml::Write(out, data);
    case GeoJson:
        return ZrExportGeoJson::Write(out, data);
    case Csv:
        break;
    }
    return ZrExportCsv::Write(out, data);
}

bool ZrTrackExport::Write(const QString& path, eFormat format, const ZrTrackData& data)
{
    m_error.clear();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        m_error = QCoreApplication::translate("ZrTrackExport", "Cannot create %1: %2.")
                      .arg(path, file.errorString());
        return false;
    }
    // Committing alone does not notice when the bytes that still wait in memory find no room.
    if (!WriteTo(file, format, data) || !file.flush() || !file.commit()) {
        m_error = QCoreApplication::translate("ZrTrackExport", "Cannot write %1: %2.")
                      .arg(path, file.errorString());
        return false;
    }
    return true;
}
