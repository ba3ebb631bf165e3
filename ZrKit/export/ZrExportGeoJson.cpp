#include "ZrKit/export/ZrExportGeoJson.h"

#include "ZrKit/export/ZrTrackSegments.h"
#include "ZrKit/export/ZrTrackText.h"

#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace {

/// \p text as a JSON value, null when it is empty.
QByteArray Quoted(const QString& text)
{
    if (text.isEmpty())
        return QByteArrayLiteral("null");
    const QByteArray array
        = QJsonDocument(QJsonArray{ZrTrackText::Clean(text)}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

/// A longitude in [-180, 180).
double Wrapped(double longitude)
{
    return longitude - 360.0 * std::floor((longitude + 180.0) / 360.0);
}

/// Whether the shorter way from \p a to \p b leads across the antimeridian.
bool Crosses(const ZrTrackPoint& a, const ZrTrackPoint& b)
{
    return std::fabs(Wrapped(b.longitude) - Wrapped(a.longitude)) > 180.0;
}

/// The place between \p a and \p b at the antimeridian, on a straight line in degrees.
ZrTrackPoint AtAntimeridian(const ZrTrackPoint& a, const ZrTrackPoint& b)
{
    const double from = Wrapped(a.longitude);
    const double side = from < 0.0 ? -180.0 : 180.0;
    const double to = Wrapped(b.longitude) + 2.0 * side;
    const double share = (side - from) / (to - from);
    ZrTrackPoint point;
    point.latitude = a.latitude + share * (b.latitude - a.latitude);
    point.depth = a.depth + share * (b.depth - a.depth);
    return point;
}

class Writer
{
public:
    explicit Writer(QIODevice& out)
        : m_out(out)
    {
    }

    bool Run(const ZrTrackData& data)
    {
        Put("{\"type\":\"FeatureCollection\",\"features\":[");
        for (const ZrTrackEvent& event : data.events)
            Event(event);
        ZrTrackSegments segments(data);
        ZrTrackReader points(data);
        while (m_ok && segments.Next())
            Segment(points, segments, data.name);
        Put("\n]}\n");
        return m_ok && !segments.IsFailed() && !points.IsFailed();
    }

private:
    using Part = QByteArray (Writer::*)(const ZrTrackPoint& point);

    void Put(const QByteArray& text) { m_ok = m_ok && m_out.write(text) == text.size(); }

    void Feature()
    {
        Put(m_any ? ",\n" : "\n");
        m_any = true;
        Put("{\"type\":\"Feature\",\"geometry\":");
    }

    void Event(const ZrTrackEvent& event)
    {
        Feature();
        if (event.HasPosition()) {
            Put("{\"type\":\"Point\",\"coordinates\":[" + ZrTrackText::Longitude(event.longitude).toLatin1()
                + ',' + ZrTrackText::Latitude(event.latitude).toLatin1() + "]}");
        } else {
            Put("null");
        }
        Put(",\"properties\":{\"kind\":\"event\",\"time\":" + Quoted(m_text.Time(event.time))
            + ",\"text\":" + Quoted(event.text) + ",\"detail\":" + Quoted(event.detail) + "}}");
    }

    void Segment(ZrTrackReader& points, const ZrTrackSegments& segment, const QString& name)
    {
        bool cut = false;
        ZrTrackPoint last = points.At(segment.First());
        for (std::size_t i = segment.First() + 1; i < segment.End() && !cut && !points.IsFailed(); ++i) {
            const ZrTrackPoint point = points.At(i);
            cut = Crosses(last, point);
            last = point;
        }
        const char* const type = segment.End() - segment.First() == 1 ? "Point"
            : cut                                                     ? "MultiLineString"
                                                                      : "LineString";
        Feature();
        Put(QByteArray("{\"type\":\"") + type + "\",\"coordinates\":");
        All(points, segment, cut, &Writer::Coordinates);
        Put("},\"properties\":{\"kind\":\"track\",\"name\":" + Quoted(name) + ",\"times\":");
        All(points, segment, cut, &Writer::Time);
        Put("}}");
    }

    /// What \p part makes of every point, nested as the geometry needs it.
    void All(ZrTrackReader& points, const ZrTrackSegments& segment, bool cut, Part part)
    {
        ZrTrackPoint last = points.At(segment.First());
        if (segment.End() - segment.First() == 1)
            return Put((this->*part)(last));
        Put(cut ? "[[" : "[");
        Put((this->*part)(last));
        for (std::size_t i = segment.First() + 1; m_ok && i < segment.End() && !points.IsFailed(); ++i) {
            const ZrTrackPoint point = points.At(i);
            if (Crosses(last, point))
                Cut(last, point, part);
            else
                Put(",");
            Put((this->*part)(point));
            last = point;
        }
        Put(cut ? "]]" : "]");
    }

    /// Ends the line at the antimeridian behind \p a and begins one on its other side before \p b.
    void Cut(const ZrTrackPoint& a, const ZrTrackPoint& b, Part part)
    {
        const ZrTrackPoint point = AtAntimeridian(a, b);
        m_side = Wrapped(a.longitude) < 0.0 ? "-180" : "180";
        Put("," + (this->*part)(point) + "],[");
        m_side = Wrapped(a.longitude) < 0.0 ? "180" : "-180";
        Put((this->*part)(point) + ",");
    }

    QByteArray Coordinates(const ZrTrackPoint& point)
    {
        const QByteArray longitude
            = point.HasPosition() ? ZrTrackText::Longitude(point.longitude).toLatin1() : QByteArray(m_side);
        const QByteArray elevation = ZrTrackText::Elevation(point.depth).toLatin1();
        return '[' + longitude + ',' + ZrTrackText::Latitude(point.latitude).toLatin1()
            + (elevation.isEmpty() ? QByteArray() : ',' + elevation) + ']';
    }

    QByteArray Time(const ZrTrackPoint& point) { return Quoted(m_text.Time(point.time)); }

    QIODevice& m_out;
    ZrTrackText m_text;
    bool m_ok = true;
    bool m_any = false; ///< a feature was written
    const char* m_side = ""; ///< the longitude of points at the antimeridian, which have none of their own
};

} // namespace

bool ZrExportGeoJson::Write(QIODevice& out, const ZrTrackData& data)
{
    return Writer(out).Run(data);
}
