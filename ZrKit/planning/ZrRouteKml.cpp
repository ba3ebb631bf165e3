#include "ZrKit/planning/ZrRouteKml.h"

#include "ZrKit/export/ZrTrackText.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrUtil/ZrWpts.h"

#include <QXmlStreamReader>
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
            if (route.linked)
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
            return ZrTrackText::Longitude(wpt.lng) + QLatin1Char(',') + ZrTrackText::Latitude(wpt.lat);
        }

        void Line(const ZrWpts& route)
        {
            QStringList coordinates;
            for (ZrListPos* pos = route.GetHeadPos(); pos;)
                coordinates << Coordinates(*route.GetNext(pos));
            if (route.closed && !coordinates.isEmpty())
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

    class Reader
    {
    public:
        Reader(const QByteArray& bytes, ZrGeoShapes& shapes)
            : m_xml(bytes)
            , m_shapes(shapes)
        {
        }

        bool Run(QString& error)
        {
            if (m_xml.readNextStartElement() && m_xml.name() != QLatin1String("kml"))
                m_xml.raiseError(QStringLiteral("not a KML file"));
            if (!m_xml.hasError())
                Container(0);
            if (!m_xml.hasError())
                return true;
            error = QStringLiteral("line %1: %2").arg(m_xml.lineNumber()).arg(m_xml.errorString());
            return false;
        }

    private:
        static constexpr int MaxDepth = 64; // folders in folders; beyond it the file is hostile

        /// Document and Folder elements, which nest.
        void Container(int depth)
        {
            if (depth > MaxDepth) {
                m_xml.raiseError(QStringLiteral("folders nest too deeply"));
                return;
            }
            while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                if (m_xml.name() == QLatin1String("Document") || m_xml.name() == QLatin1String("Folder"))
                    Container(depth + 1);
                else if (m_xml.name() == QLatin1String("Placemark"))
                    Placemark();
                else if (m_xml.name() == QLatin1String("ExtendedData"))
                    Fields(m_shapes.route, &ZrRouteFields::AddRouteText);
                else
                    m_xml.skipCurrentElement();
            }
        }

        void Placemark()
        {
            QString name;
            QJsonObject fields;
            ZrGeoShapes found;
            m_unnamed = false;
            while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                if (m_xml.name() == QLatin1String("name"))
                    name = m_xml.readElementText();
                else if (m_xml.name() == QLatin1String("ExtendedData"))
                    Fields(fields, &ZrRouteFields::AddText);
                else
                    Geometry(found, 0);
            }
            if (m_unnamed)
                name.clear();
            for (ZrShapePoint& point : found.points)
                m_shapes.points.push_back({point.position, name, fields});
            for (ZrShapeLine& line : found.lines)
                m_shapes.lines.push_back({name, line.points});
            for (ZrArea& area : found.areas)
                m_shapes.areas.push_back({name, area.ring});
        }

        void Geometry(ZrGeoShapes& found, int depth)
        {
            if (m_xml.name() == QLatin1String("Point")) {
                const std::vector<ZrGeoPoint> points = CoordinatesWithin();
                if (!points.empty())
                    found.points.push_back({points.front(), {}, {}});
            } else if (m_xml.name() == QLatin1String("LineString")) {
                ZrShapeLine line;
                for (const ZrGeoPoint& point : CoordinatesWithin())
                    line.points.push_back({point, {}, {}});
                found.lines.push_back(line);
            } else if (m_xml.name() == QLatin1String("Polygon")) {
                Polygon(found);
            } else if (m_xml.name() == QLatin1String("MultiGeometry") && depth < MaxDepth) {
                while (!m_xml.hasError() && m_xml.readNextStartElement())
                    Geometry(found, depth + 1);
            } else {
                m_xml.skipCurrentElement();
            }
        }

        void Polygon(ZrGeoShapes& found)
        {
            while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                if (m_xml.name() == QLatin1String("outerBoundaryIs")) {
                    ZrArea area;
                    while (!m_xml.hasError() && m_xml.readNextStartElement())
                        area.ring = CoordinatesWithin();
                    if (area.ring.size() > 1 && area.ring.front() == area.ring.back())
                        area.ring.pop_back();
                    found.areas.push_back(area);
                    continue;
                }
                if (m_xml.name() == QLatin1String("innerBoundaryIs"))
                    m_shapes.warnings << QStringLiteral("line %1: a hole of a polygon was left out")
                                             .arg(m_xml.lineNumber());
                m_xml.skipCurrentElement();
            }
        }

        /// The positions of the `coordinates` element below this one.
        std::vector<ZrGeoPoint> CoordinatesWithin()
        {
            std::vector<ZrGeoPoint> points;
            while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                if (m_xml.name() != QLatin1String("coordinates")) {
                    m_xml.skipCurrentElement();
                    continue;
                }
                const QString text = m_xml.readElementText().simplified();
                for (const QString& tuple : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
                    const QStringList numbers = tuple.split(QLatin1Char(','));
                    bool ok[2] = {false, false};
                    ZrGeoPoint point;
                    if (numbers.size() >= 2) {
                        point.lng = numbers[0].toDouble(&ok[0]);
                        point.lat = numbers[1].toDouble(&ok[1]);
                    }
                    QString error;
                    if (!ok[0] || !ok[1])
                        error = QStringLiteral("\"%1\" is no longitude and latitude").arg(tuple);
                    else
                        ZrGeoShapes::Check(point, error);
                    if (!error.isEmpty()) {
                        m_xml.raiseError(error);
                        return {};
                    }
                    points.push_back(point);
                }
            }
            return points;
        }

        /// Keys of other makers are passed over: `ExtendedData` belongs to everybody.
        void Fields(QJsonObject& fields, bool (*add)(QJsonObject&, const QString&, const QString&))
        {
            while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                const QString key = m_xml.attributes().value(QLatin1String("name")).toString();
                if (m_xml.name() != QLatin1String("Data")) {
                    m_xml.skipCurrentElement();
                    continue;
                }
                while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                    if (m_xml.name() != QLatin1String("value")) {
                        m_xml.skipCurrentElement();
                        continue;
                    }
                    const QString text = m_xml.readElementText();
                    if (key == QLatin1String("unnamed"))
                        m_unnamed = true;
                    else
                        add(fields, key, text);
                }
            }
        }

        QXmlStreamReader m_xml;
        ZrGeoShapes& m_shapes;
        bool m_unnamed = false;
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
