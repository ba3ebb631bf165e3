#include "ZrKit/planning/ZrRouteKml.h"

#include "ZrKit/export/ZrTrackText.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrKit/planning/ZrShapeXml.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>
#include <QXmlStreamWriter>

namespace {

class Writer
{
public:
    explicit Writer(QByteArray& bytes)
        : m_xml(&bytes)
    {
        m_xml.setAutoFormatting(true);
        m_xml.setAutoFormattingIndent(1);
    }

    void Run(const ZrWpts& route)
    {
        m_xml.writeStartDocument();
        m_xml.writeStartElement(QStringLiteral("kml"));
        m_xml.writeDefaultNamespace(QStringLiteral("http://www.opengis.net/kml/2.2"));
        m_xml.writeStartElement(QStringLiteral("Document"));
        Text("name", route.prefix);
        Fields(ZrRouteFields::Of(route));
        if (route.linked && route.GetCount() > 1)
            Line(route);
        for (ZrListPos* pos = route.GetHeadPos(); pos;)
            Point(*route.GetNext(pos));
        m_xml.writeEndDocument();
    }

private:
    void Text(const char* element, const QString& text)
    {
        if (!text.isEmpty())
            m_xml.writeTextElement(QLatin1String(element), ZrTrackText::Clean(text));
    }

    static QString Coordinates(const ZrWpt& wpt)
    {
        return ZrTrackText::Number(wpt.lng, 8) + QLatin1Char(',') + ZrTrackText::Latitude(wpt.lat);
    }

    void Line(const ZrWpts& route)
    {
        QStringList coordinates;
        for (ZrListPos* pos = route.GetHeadPos(); pos;)
            coordinates << Coordinates(*route.GetNext(pos));
        if (route.closed)
            coordinates << coordinates.front();
        m_xml.writeStartElement(QStringLiteral("Placemark"));
        Text("name", route.prefix);
        m_xml.writeStartElement(QStringLiteral("LineString"));
        Text("tessellate", QStringLiteral("1"));
        Text("coordinates", coordinates.join(QLatin1Char(' ')));
        m_xml.writeEndElement();
        m_xml.writeEndElement();
    }

    void Point(const ZrWpt& wpt)
    {
        m_xml.writeStartElement(QStringLiteral("Placemark"));
        Text("name", wpt.Name());
        QJsonObject fields = ZrRouteFields::Of(wpt);
        if (wpt.name.isEmpty())
            fields.insert(QStringLiteral("unnamed"), true); // the name is the label that the route made
        Fields(fields);
        m_xml.writeStartElement(QStringLiteral("Point"));
        Text("coordinates", Coordinates(wpt));
        m_xml.writeEndElement();
        m_xml.writeEndElement();
    }

    void Fields(const QJsonObject& fields)
    {
        m_xml.writeStartElement(QStringLiteral("ExtendedData"));
        for (auto field = fields.begin(); field != fields.end(); ++field) {
            m_xml.writeStartElement(QStringLiteral("Data"));
            m_xml.writeAttribute(QStringLiteral("name"), field.key());
            m_xml.writeTextElement(
                QStringLiteral("value"), ZrTrackText::Clean(ZrRouteFields::Text(field.value())));
            m_xml.writeEndElement();
        }
        m_xml.writeEndElement();
    }

    QXmlStreamWriter m_xml;
};

class Reader : private ZrShapeXml
{
public:
    Reader(const QByteArray& bytes, ZrGeoShapes& shapes)
        : ZrShapeXml(bytes, shapes)
    {
    }

    bool Run(QString& error)
    {
        if (NextChild()) {
            if (Is("kml"))
                Container(0);
            else
                Fail(QCoreApplication::translate("ZrRouteKml", "not a KML file"));
        }
        error = Error();
        return error.isEmpty();
    }

private:
    static constexpr int MaxDepth = 64; // folders in folders; beyond it the file is hostile

    /// Document and Folder elements, which nest.
    void Container(int depth)
    {
        if (depth > MaxDepth)
            Fail(QCoreApplication::translate("ZrRouteKml", "folders nest too deeply"));
        while (NextChild()) {
            if (Is("Document") || Is("Folder"))
                Container(depth + 1);
            else if (Is("Placemark"))
                Placemark();
            else if (Is("ExtendedData"))
                Fields(m_shapes.route, &ZrRouteFields::AddRoute);
            else
                Skip();
        }
    }

    void Placemark()
    {
        QString name;
        QJsonObject fields;
        ZrGeoShapes found;
        m_unnamed = false;
        while (NextChild()) {
            if (Is("name"))
                name = Text();
            else if (Is("ExtendedData"))
                Fields(fields, &ZrRouteFields::Add);
            else
                Geometry(found, 0);
        }
        if (m_unnamed)
            name.clear();
        for (const ZrShapePoint& point : found.points)
            m_shapes.points.push_back({point.position, name, fields});
        for (const ZrShapeLine& line : found.lines)
            m_shapes.lines.push_back({name, line.points, {}});
        for (const ZrArea& area : found.areas)
            m_shapes.areas.push_back({name, area.ring});
    }

    void Geometry(ZrGeoShapes& found, int depth)
    {
        if (Is("Point")) {
            const std::vector<ZrGeoPoint> points = CoordinatesWithin();
            if (!points.empty())
                found.points.push_back({points.front(), {}, {}});
        } else if (Is("LineString")) {
            ZrShapeLine line;
            for (const ZrGeoPoint& point : CoordinatesWithin())
                line.points.push_back({point, {}, {}});
            if (!line.points.empty())
                found.lines.push_back(line);
        } else if (Is("LinearRing")) {
            Ring(found);
        } else if (Is("Polygon")) {
            Polygon(found);
        } else if (Is("MultiGeometry")) {
            if (depth > MaxDepth)
                Fail(QCoreApplication::translate("ZrRouteKml", "geometries nest too deeply"));
            while (NextChild())
                Geometry(found, depth + 1);
        } else {
            Skip();
        }
    }

    void Ring(ZrGeoShapes& found)
    {
        const std::vector<ZrGeoPoint> ring = ZrGeoShapes::Open(CoordinatesWithin());
        if (!ring.empty())
            found.areas.push_back({{}, ring});
    }

    void Polygon(ZrGeoShapes& found)
    {
        while (NextChild()) {
            if (Is("outerBoundaryIs")) {
                while (NextChild())
                    Ring(found);
                continue;
            }
            if (Is("innerBoundaryIs"))
                m_shapes.LeaveOutHoles(1, [this] {
                    return QCoreApplication::translate(
                        "ZrRouteKml", "line %1: a hole of a polygon was left out")
                        .arg(m_xml.lineNumber());
                });
            Skip();
        }
    }

    /// The positions of the `coordinates` elements below this one.
    std::vector<ZrGeoPoint> CoordinatesWithin()
    {
        std::vector<ZrGeoPoint> points;
        while (NextChild()) {
            if (Is("coordinates")) {
                const qint64 line = m_xml.lineNumber();
                Coordinates(Text(), line, points);
            } else {
                Skip();
            }
        }
        return points;
    }

    /// \p line is where \p text begins.
    void Coordinates(const QString& text, qint64 line, std::vector<ZrGeoPoint>& points)
    {
        for (int begin = 0; begin < text.size() && !m_xml.hasError();) {
            if (text[begin] == QLatin1Char('\n'))
                ++line;
            int end = begin;
            while (end < text.size() && !text[end].isSpace())
                ++end;
            if (end > begin)
                points.push_back(Position(text.mid(begin, end - begin), line));
            else
                ++end;
            begin = end;
        }
    }

    ZrGeoPoint Position(const QString& tuple, qint64 line)
    {
        const QStringList numbers = tuple.split(QLatin1Char(','));
        bool ok[2] = {false, false};
        ZrGeoPoint point;
        if (numbers.size() >= 2) {
            point.lng = numbers[0].toDouble(&ok[0]);
            point.lat = numbers[1].toDouble(&ok[1]);
        }
        QString error;
        if (!ok[0] || !ok[1])
            Fail(QCoreApplication::translate("ZrRouteKml", "\"%1\" is no longitude and latitude").arg(tuple),
                line);
        else if (!ZrGeoShapes::Check(point, error))
            Fail(error, line);
        return point;
    }

    /// Keys and values of other makers are passed over: `ExtendedData` belongs to everybody.
    void Fields(QJsonObject& fields, AddField add)
    {
        while (NextChild()) {
            const QString key = m_xml.attributes().value(QLatin1String("name")).toString();
            if (!Is("Data")) {
                Skip();
                continue;
            }
            while (NextChild()) {
                if (Is("value"))
                    TakeField(fields, add, key, Text());
                else
                    Skip();
            }
        }
    }
};

} // namespace

QByteArray ZrRouteKml::Write(const ZrWpts& route)
{
    QByteArray bytes;
    Writer(bytes).Run(route);
    return bytes;
}

bool ZrRouteKml::Read(const QByteArray& bytes, ZrGeoShapes& shapes, QString& error)
{
    return Reader(bytes, shapes).Run(error);
}
