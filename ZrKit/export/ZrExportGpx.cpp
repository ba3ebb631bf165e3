#include "ZrKit/export/ZrExportGpx.h"

#include "ZrKit/export/ZrTrackSegments.h"
#include "ZrKit/export/ZrTrackText.h"
#include "ZrKit/export/ZrTrackXml.h"

namespace {

class Writer
{
public:
    explicit Writer(QIODevice& out)
        : m_xml(out, QStringLiteral("gpx"), QStringLiteral("http://www.topografix.com/GPX/1/1"))
    {
    }

    bool Run(const ZrTrackData& data)
    {
        m_xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.1"));
        m_xml.writeAttribute(QStringLiteral("creator"), QStringLiteral("ZrKit"));
        for (const ZrTrackEvent& event : data.events)
            Waypoint(event);
        m_xml.writeStartElement(QStringLiteral("trk"));
        m_xml.Text("name", data.name);
        ZrTrackSegments segments(data);
        ZrTrackReader points(data);
        while (!m_xml.hasError() && segments.Next())
            Segment(points, segments);
        return m_xml.End() && !segments.IsFailed() && !points.IsFailed();
    }

private:
    void Position(double latitude, double longitude)
    {
        m_xml.writeAttribute(QStringLiteral("lat"), ZrTrackText::Latitude(latitude));
        m_xml.writeAttribute(QStringLiteral("lon"), ZrTrackText::Longitude(longitude));
    }

    // The order of the elements is that of the schema.

    void Waypoint(const ZrTrackEvent& event)
    {
        if (!event.HasPosition())
            return;
        m_xml.writeStartElement(QStringLiteral("wpt"));
        Position(event.latitude, event.longitude);
        m_xml.Text("time", m_text.Time(event.time));
        m_xml.Text("name", event.text);
        m_xml.Text("desc", event.detail);
        m_xml.writeEndElement();
    }

    void Segment(ZrTrackReader& points, const ZrTrackSegments& segment)
    {
        m_xml.writeStartElement(QStringLiteral("trkseg"));
        for (std::size_t i = segment.First(); i < segment.End() && !m_xml.hasError(); ++i) {
            const ZrTrackPoint point = points.At(i);
            if (points.IsFailed())
                break;
            m_xml.writeStartElement(QStringLiteral("trkpt"));
            Position(point.latitude, point.longitude);
            m_xml.Text("ele", ZrTrackText::Elevation(point.depth));
            m_xml.Text("time", m_text.Time(point.time));
            m_xml.writeEndElement();
        }
        m_xml.writeEndElement();
    }

    ZrTrackXml m_xml;
    ZrTrackText m_text;
};

} // namespace

bool ZrExportGpx::Write(QIODevice& out, const ZrTrackData& data)
{
    return Writer(out).Run(data);
}
