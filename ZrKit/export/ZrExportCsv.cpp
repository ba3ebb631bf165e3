#include "ZrKit/export/ZrExportCsv.h"

#include "ZrKit/export/ZrTrackSegments.h"
#include "ZrKit/export/ZrTrackText.h"

#include <QIODevice>

namespace {

const char* const headerLine
    = "kind,segment,time,latitude,longitude,depth,altitude,heading,pitch,roll,text,detail\r\n";

/// \p text as one field, in quotes when it could be taken for several.
QString Field(const QString& text)
{
    QString field = ZrTrackText::Clean(text);
    const bool plain = !field.contains(QLatin1Char(',')) && !field.contains(QLatin1Char('"'))
        && !field.contains(QLatin1Char('\n')) && !field.contains(QLatin1Char('\r'));
    if (plain)
        return field;
    field.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + field + QLatin1Char('"');
}

QString EventLine(const ZrTrackEvent& event, ZrTrackText& text)
{
    QString line = QStringLiteral("event,,") + text.Time(event.time) + QLatin1Char(',');
    if (event.HasPosition())
        line += ZrTrackText::Latitude(event.latitude) + QLatin1Char(',')
            + ZrTrackText::Longitude(event.longitude);
    else
        line += QLatin1Char(',');
    return line + QStringLiteral(",,,,,,") + Field(event.text) + QLatin1Char(',') + Field(event.detail)
        + QStringLiteral("\r\n");
}

QString PointLine(const ZrTrackPoint& point, int segment, ZrTrackText& text)
{
    QString line = QStringLiteral("track,") + QString::number(segment) + QLatin1Char(',')
        + text.Time(point.time) + QLatin1Char(',') + ZrTrackText::Latitude(point.latitude) + QLatin1Char(',')
        + ZrTrackText::Longitude(point.longitude);
    for (const double value : {point.depth, point.altitude, point.heading, point.pitch, point.roll})
        line += QLatin1Char(',') + ZrTrackText::Number(value, 2);
    return line + QStringLiteral(",,\r\n");
}

} // namespace

bool ZrExportCsv::Write(QIODevice& out, const ZrTrackData& data)
{
    bool ok = true;
    const auto put = [&](const QByteArray& line) { ok = ok && out.write(line) == line.size(); };
    ZrTrackText text;
    put(headerLine);
    for (const ZrTrackEvent& event : data.events)
        put(EventLine(event, text).toUtf8());
    ZrTrackSegments segments(data);
    ZrTrackReader points(data);
    for (int number = 1; ok && segments.Next(); ++number) {
        for (std::size_t i = segments.First(); ok && i < segments.End() && !points.IsFailed(); ++i)
            put(PointLine(points.At(i), number, text).toUtf8());
    }
    return ok && !segments.IsFailed() && !points.IsFailed();
}
