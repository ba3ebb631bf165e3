#include "ZrKit/planning/ZrRouteGpx.h"

#include "ZrKit/export/ZrTrackText.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrUtil/ZrWpts.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

    const QString& Namespace()
    {
        static const QString uri = QStringLiteral("urn:zrkit:route");
        return uri;
    }

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
            m_xml.writeStartElement(QStringLiteral("gpx"));
            m_xml.writeDefaultNamespace(QStringLiteral("http://www.topografix.com/GPX/1/1"));
            m_xml.writeNamespace(Namespace(), QStringLiteral("zr"));
            m_xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.1"));
            m_xml.writeAttribute(QStringLiteral("creator"), QStringLiteral("ZrKit"));
            if (route.linked) {
                m_xml.writeStartElement(QStringLiteral("rte"));
                if (!route.prefix.isEmpty())
                    m_xml.writeTextElement(QStringLiteral("name"), ZrTrackText::Clean(route.prefix));
                Fields(ZrRouteFields::Of(route));
            }
            for (ZrListPos* pos = route.GetHeadPos(); pos;)
                Point(*route.GetNext(pos), route.linked ? "rtept" : "wpt");
            m_xml.writeEndDocument();
        }

    private:
        void Point(const ZrWpt& wpt, const char* element)
        {
            m_xml.writeStartElement(QLatin1String(element));
            m_xml.writeAttribute(QStringLiteral("lat"), ZrTrackText::Latitude(wpt.lat));
            m_xml.writeAttribute(QStringLiteral("lon"), ZrTrackText::Longitude(wpt.lng));
            if (!wpt.Name().isEmpty())
                m_xml.writeTextElement(QStringLiteral("name"), ZrTrackText::Clean(wpt.Name()));
            QJsonObject fields = ZrRouteFields::Of(wpt);
            if (wpt.name.isEmpty())
                fields.insert(QStringLiteral("unnamed"), true); // the name is the label that the route made
            Fields(fields);
            m_xml.writeEndElement();
        }

        void Fields(const QJsonObject& fields)
        {
            m_xml.writeStartElement(QStringLiteral("extensions"));
            for (auto field = fields.begin(); field != fields.end(); ++field) {
                m_xml.writeStartElement(Namespace(), QStringLiteral("field"));
                m_xml.writeAttribute(QStringLiteral("key"), field.key());
                m_xml.writeCharacters(ZrTrackText::Clean(ZrRouteFields::Text(field.value())));
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
            if (m_xml.readNextStartElement() && m_xml.name() != QLatin1String("gpx"))
                m_xml.raiseError(QStringLiteral("not a GPX file"));
            while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                if (m_xml.name() == QLatin1String("wpt"))
                    m_shapes.points.push_back(Point());
                else if (m_xml.name() == QLatin1String("rte"))
                    Line("rtept", true);
                else if (m_xml.name() == QLatin1String("trk"))
                    Track();
                else
                    m_xml.skipCurrentElement();
            }
            if (!m_xml.hasError())
                return true;
            error = QStringLiteral("line %1: %2").arg(m_xml.lineNumber()).arg(m_xml.errorString());
            return false;
        }

    private:
        double Degrees(const char* attribute)
        {
            const QStringRef text = m_xml.attributes().value(QLatin1String(attribute));
            bool ok = false;
            const double value = text.toDouble(&ok);
            if (!ok)
                m_xml.raiseError(QStringLiteral("\"%1\" is no %2").arg(text, QLatin1String(attribute)));
            return value;
        }

        ZrShapePoint Point()
        {
            ZrShapePoint point;
            point.position = {Degrees("lat"), Degrees("lon")};
            QString error;
            if (!m_xml.hasError() && !ZrGeoShapes::Check(point.position, error))
                m_xml.raiseError(error);
            m_unnamed = false;
            while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                if (m_xml.name() == QLatin1String("name"))
                    point.name = m_xml.readElementText();
                else if (m_xml.name() == QLatin1String("extensions"))
                    Fields(point.fields, &ZrRouteFields::AddText);
                else
                    m_xml.skipCurrentElement();
            }
            if (m_unnamed)
                point.name.clear();
            return point;
        }

        void Line(const char* pointElement, bool isRoute)
        {
            ZrShapeLine line;
            while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                if (m_xml.name() == QLatin1String(pointElement))
                    line.points.push_back(Point());
                else if (m_xml.name() == QLatin1String("name"))
                    line.name = m_xml.readElementText();
                else if (m_xml.name() == QLatin1String("extensions") && isRoute && m_shapes.lines.empty())
                    Fields(m_shapes.route, &ZrRouteFields::AddRouteText);
                else
                    m_xml.skipCurrentElement();
            }
            m_shapes.lines.push_back(line);
        }

        void Track()
        {
            while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                if (m_xml.name() == QLatin1String("trkseg"))
                    Line("trkpt", false);
                else
                    m_xml.skipCurrentElement();
            }
        }

        void Fields(QJsonObject& fields, bool (*add)(QJsonObject&, const QString&, const QString&))
        {
            while (!m_xml.hasError() && m_xml.readNextStartElement()) {
                if (m_xml.namespaceUri() != Namespace() || m_xml.name() != QLatin1String("field")) {
                    m_xml.skipCurrentElement();
                    continue;
                }
                const QString key = m_xml.attributes().value(QLatin1String("key")).toString();
                const QString text = m_xml.readElementText();
                if (key == QLatin1String("unnamed"))
                    m_unnamed = true;
                else if (!m_xml.hasError() && !add(fields, key, text))
                    m_xml.raiseError(QStringLiteral("\"%1\" is no value of \"%2\"").arg(text, key));
            }
        }

        QXmlStreamReader m_xml;
        ZrGeoShapes& m_shapes;
        bool m_unnamed = false;
    };

} // namespace

QByteArray ZrRouteGpx::Write(const ZrWpts& route)
{
    QByteArray bytes;
    Writer(bytes).Run(route);
    return bytes;
}

bool ZrRouteGpx::Read(const QByteArray& bytes, ZrGeoShapes& shapes, QString& error)
{
    return Reader(bytes, shapes).Run(error);
}
