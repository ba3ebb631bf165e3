#include "ZrKit/export/ZrExportKml.h"

#include "ZrKit/export/ZrTrackSegments.h"
#include "ZrKit/export/ZrTrackText.h"
#include "ZrKit/export/ZrTrackXml.h"

namespace {

class Writer
{
public:
    explicit Writer(QIODevice& out)
        : m_xml(out, QStringLiteral("kml"), QStringLiteral("http://www.opengis.net/kml/2.2"))
    {
    }

    bool Run(const ZrTrackData& data)
    {
        m_xml.writeNamespace(m_gx, QStringLiteral("gx"));
        m_xml.writeStartElement(QStringLiteral("Document"));
        m_xml.Text("name", data.name);
        Folder("Events");
        for (const ZrTrackEvent& event : data.events)
            Event(event);
        m_xml.writeEndElement();
        Folder("Track");
        ZrTrackSegments segments(data);
        ZrTrackReader points(data);
        for (int number = 1; !m_xml.hasError() && segments.Next(); ++number)
            Segment(points, segments, number);
        return m_xml.End() && !segments.IsFailed() && !points.IsFailed();
    }

private:
    void Folder(const char* name)
    {
        m_xml.writeStartElement(QStringLiteral("Folder"));
        m_xml.Text("name", QLatin1String(name));
    }

    static QString Coordinates(const ZrTrackPoint& point, QChar separator)
    {
        const QString elevation = ZrTrackText::Elevation(point.depth);
        return ZrTrackText::Longitude(point.longitude) + separator + ZrTrackText::Latitude(point.latitude)
            + separator + (elevation.isEmpty() ? QStringLiteral("0") : elevation);
    }

    void Event(const ZrTrackEvent& event)
    {
        m_xml.writeStartElement(QStringLiteral("Placemark"));
        m_xml.Text("name", event.text);
        m_xml.Text("description", event.detail);
        TimeStamp(event.time);
        if (event.HasPosition()) {
            m_xml.writeStartElement(QStringLiteral("Point"));
            m_xml.Text("coordinates",
                ZrTrackText::Longitude(event.longitude) + QLatin1Char(',')
                    + ZrTrackText::Latitude(event.latitude));
            m_xml.writeEndElement();
        }
        m_xml.writeEndElement();
    }

    void TimeStamp(double time)
    {
        const QString text = m_text.Time(time);
        if (text.isEmpty())
            return;
        m_xml.writeStartElement(QStringLiteral("TimeStamp"));
        m_xml.Text("when", text);
        m_xml.writeEndElement();
    }

    void Segment(ZrTrackReader& points, const ZrTrackSegments& segment, int number)
    {
        m_xml.writeStartElement(QStringLiteral("Placemark"));
        m_xml.Text("name", QStringLiteral("Segment %1").arg(number));
        bool timed = true;
        for (std::size_t i = segment.First(); i < segment.End() && timed; ++i)
            timed = !m_text.Time(points.At(i).time).isEmpty();
        if (segment.End() - segment.First() == 1)
            SinglePoint(points.At(segment.First()));
        else if (timed)
            Track(points, segment);
        else
            LineString(points, segment);
        m_xml.writeEndElement();
    }

    void SinglePoint(const ZrTrackPoint& point)
    {
        TimeStamp(point.time);
        m_xml.writeStartElement(QStringLiteral("Point"));
        m_xml.Text("altitudeMode", QStringLiteral("absolute"));
        m_xml.Text("coordinates", Coordinates(point, QLatin1Char(',')));
        m_xml.writeEndElement();
    }

    /// Whether point \p i of a segment is there to be written.
    bool GoesOn(const ZrTrackReader& points, const ZrTrackSegments& segment, std::size_t i) const
    {
        return i < segment.End() && !m_xml.hasError() && !points.IsFailed();
    }

    void Track(ZrTrackReader& points, const ZrTrackSegments& segment)
    {
        m_xml.writeStartElement(m_gx, QStringLiteral("Track"));
        m_xml.Text("altitudeMode", QStringLiteral("absolute"));
        for (std::size_t i = segment.First(); GoesOn(points, segment, i); ++i)
            m_xml.Text("when", m_text.Time(points.At(i).time));
        for (std::size_t i = segment.First(); GoesOn(points, segment, i); ++i)
            m_xml.writeTextElement(
                m_gx, QStringLiteral("coord"), Coordinates(points.At(i), QLatin1Char(' ')));
        m_xml.writeEndElement();
    }

    void LineString(ZrTrackReader& points, const ZrTrackSegments& segment)
    {
        m_xml.writeStartElement(QStringLiteral("LineString"));
        m_xml.Text("altitudeMode", QStringLiteral("absolute"));
        m_xml.writeStartElement(QStringLiteral("coordinates"));
        for (std::size_t i = segment.First(); GoesOn(points, segment, i); ++i) {
            if (i > segment.First())
                m_xml.writeCharacters(QStringLiteral(" "));
            m_xml.writeCharacters(Coordinates(points.At(i), QLatin1Char(',')));
        }
        m_xml.writeEndElement();
        m_xml.writeEndElement();
    }

    const QString m_gx = QStringLiteral("http://www.google.com/kml/ext/2.2");
    ZrTrackXml m_xml;
    ZrTrackText m_text;
};

} // namespace

bool ZrExportKml::Write(QIODevice& out, const ZrTrackData& data)
{
    return Writer(out).Run(data);
}
