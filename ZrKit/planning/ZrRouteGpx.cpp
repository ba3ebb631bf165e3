#include "ZrKit/planning/ZrRouteGpx.h"

#include "ZrKit/export/ZrTrackText.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrKit/planning/ZrShapeXml.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>
#include <QXmlStreamWriter>

namespace {

const QString& Namespace()
{
    static const QString uri = QStringLiteral("urn:zrkit:route");
    return uri;
}

/// The field of a point at longitude 180, for which GPX has only -180.
const QString& Antimeridian()
{
    static const QString key = QStringLiteral("antimeridian");
    return key;
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
        if (!route.linked)
            Fields(ZrRouteFields::Of(route));
        m_xml.writeEndDocument();
    }

private:
    void Point(const ZrWpt& wpt, const char* element)
    {
        m_xml.writeStartElement(QLatin1String(element));
        const QString longitude = ZrTrackText::Longitude(wpt.lng);
        m_xml.writeAttribute(QStringLiteral("lat"), ZrTrackText::Latitude(wpt.lat));
        m_xml.writeAttribute(QStringLiteral("lon"), longitude);
        if (!wpt.Name().isEmpty())
            m_xml.writeTextElement(QStringLiteral("name"), ZrTrackText::Clean(wpt.Name()));
        QJsonObject fields = ZrRouteFields::Of(wpt);
        if (wpt.name.isEmpty())
            fields.insert(QStringLiteral("unnamed"), true); // the name is the label that the route made
        if (wpt.lng > 0.0 && longitude.startsWith(QLatin1Char('-')))
            fields.insert(Antimeridian(), true);
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

class Reader : private ZrShapeXml
{
public:
    Reader(const QByteArray& bytes, ZrGeoShapes& shapes)
        : ZrShapeXml(bytes, shapes)
    {
    }

    bool Run(QString& error)
    {
        if (NextChild() && !Is("gpx"))
            Fail(QCoreApplication::translate("ZrRouteGpx", "not a GPX file"));
        while (NextChild()) {
            if (Is("wpt"))
                m_shapes.points.push_back(Point());
            else if (Is("rte"))
                Line("rtept", {}, m_shapes.lines);
            else if (Is("trk"))
                Track();
            else if (Is("extensions"))
                Fields(m_shapes.route, &ZrRouteFields::AddRoute);
            else
                Skip();
        }
        m_shapes.lines.insert(m_shapes.lines.end(), m_tracks.begin(), m_tracks.end());
        error = Error();
        return error.isEmpty();
    }

private:
    double Degrees(const char* attribute)
    {
        const QStringRef text = m_xml.attributes().value(QLatin1String(attribute));
        bool ok = false;
        const double value = text.toDouble(&ok);
        if (!ok)
            Fail(text.isNull() ? QCoreApplication::translate("ZrRouteGpx", "\"%1\" has no \"%2\"")
                                     .arg(m_xml.name(), QLatin1String(attribute))
                               : QCoreApplication::translate("ZrRouteGpx", "\"%1\" is no \"%2\"")
                                     .arg(text, QLatin1String(attribute)));
        return value;
    }

    ZrShapePoint Point()
    {
        ZrShapePoint point;
        point.position = {Degrees("lat"), Degrees("lon")};
        CheckPosition(point.position);
        m_unnamed = false;
        m_antimeridian = false;
        while (NextChild()) {
            if (Is("name"))
                point.name = Text();
            else if (Is("extensions"))
                Fields(point.fields, &ZrRouteFields::Add);
            else
                Skip();
        }
        if (m_unnamed)
            point.name.clear();
        if (m_antimeridian)
            point.position.lng = 180.0;
        return point;
    }

    void CheckPosition(const ZrGeoPoint& position)
    {
        QString error;
        if (!ZrGeoShapes::Check(position, error))
            Fail(error);
    }

    void Line(const char* pointElement, const QString& name, std::vector<ZrShapeLine>& lines)
    {
        ZrShapeLine line;
        line.name = name;
        while (NextChild()) {
            if (Is(pointElement))
                line.points.push_back(Point());
            else if (Is("name"))
                line.name = Text();
            else if (Is("extensions"))
                Fields(line.route, &ZrRouteFields::AddRoute);
            else
                Skip();
        }
        if (!line.points.empty())
            lines.push_back(line);
    }

    void Track()
    {
        QString name;
        while (NextChild()) {
            if (Is("trkseg"))
                Line("trkpt", name, m_tracks);
            else if (Is("name"))
                name = Text();
            else
                Skip();
        }
    }

    void Fields(QJsonObject& fields, AddField add)
    {
        while (NextChild()) {
            if (m_xml.namespaceUri() != Namespace() || !Is("field")) {
                Skip();
                continue;
            }
            const QString key = m_xml.attributes().value(QLatin1String("key")).toString();
            const QString text = Text();
            if (key == Antimeridian())
                m_antimeridian = true;
            else if (!TakeField(fields, add, key, text))
                Fail(
                    QCoreApplication::translate("ZrRouteGpx", "\"%1\" is no value of \"%2\"").arg(text, key));
        }
    }

    std::vector<ZrShapeLine> m_tracks;
    bool m_antimeridian = false; ///< the point lies at longitude 180
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
