#include "ZrKit/planning/ZrRouteGeoJson.h"

#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrKit/planning/ZrTextLines.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

QJsonArray Position(const ZrWpt& wpt)
{
    return {wpt.lng, wpt.lat};
}

QJsonObject Geometry(const char* type, const QJsonArray& coordinates)
{
    return {{QStringLiteral("type"), QLatin1String(type)}, {QStringLiteral("coordinates"), coordinates}};
}

QJsonObject Feature(const QJsonObject& geometry, const QJsonObject& properties)
{
    return {{QStringLiteral("type"), QStringLiteral("Feature")}, {QStringLiteral("geometry"), geometry},
        {QStringLiteral("properties"), properties}};
}

QJsonObject PointFeature(const ZrWpt& wpt)
{
    QJsonObject properties = ZrRouteFields::Of(wpt);
    if (!wpt.name.isEmpty())
        properties.insert(QStringLiteral("name"), wpt.name);
    if (!wpt.pseudo.isEmpty())
        properties.insert(QStringLiteral("label"), wpt.Name()); // what maps show
    return Feature(Geometry("Point", Position(wpt)), properties);
}

QJsonObject LineFeature(const ZrWpts& route)
{
    QJsonArray coordinates;
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        coordinates.append(Position(*route.GetNext(pos)));
    if (route.closed)
        coordinates.append(Position(*route.GetHead()));
    return Feature(Geometry("LineString", coordinates), {{QStringLiteral("name"), route.prefix}});
}

/// As the programs that make GeoJSON of other formats call it.
QString NameOf(const QJsonObject& properties)
{
    for (const char* key : {"name", "Name", "title"}) {
        const QJsonValue name = properties.value(QLatin1String(key));
        if (name.isString() || name.isDouble())
            return ZrRouteFields::Text(name);
    }
    return {};
}

class Reader
{
public:
    Reader(const QByteArray& bytes, ZrGeoShapes& shapes)
        : m_bytes(bytes)
        , m_shapes(shapes)
    {
    }

    bool Run(const QJsonObject& object, QString& error)
    {
        const QString type = object.value(QLatin1String("type")).toString();
        if (type == QLatin1String("FeatureCollection"))
            ReadCollection(object);
        else if (type == QLatin1String("Feature"))
            ReadFeature(object);
        else
            ReadGeometry(object, {}, 0);
        error = m_error;
        return m_error.isEmpty();
    }

private:
    static constexpr int MaxDepth = 16; // collections in collections

    void Fail(const QString& reason)
    {
        if (m_error.isEmpty())
            m_error = Place() + reason;
    }

    /// What begins errors and warnings.
    QString Place() const
    {
        if (m_feature < 0)
            return {};
        return QCoreApplication::translate("ZrRouteGeoJson", "line %1: feature %2: ")
            .arg(ZrTextLines::OfElement(m_bytes, "features", m_feature))
            .arg(m_feature + 1);
    }

    void ReadCollection(const QJsonObject& object)
    {
        const QJsonObject route = object.value(QLatin1String("route")).toObject();
        for (auto field = route.begin(); field != route.end(); ++field)
            ZrRouteFields::AddRoute(m_shapes.route, field.key(), field.value());
        const QJsonValue features = object.value(QLatin1String("features"));
        if (!features.isArray())
            Fail(QCoreApplication::translate("ZrRouteGeoJson", "not GeoJSON: \"features\" is no list"));
        const QJsonArray list = features.toArray();
        for (int i = 0; i < list.size() && m_error.isEmpty(); ++i) {
            m_feature = i;
            ReadFeature(list[i].toObject());
        }
    }

    void ReadFeature(const QJsonObject& feature)
    {
        const QJsonValue geometry = feature.value(QLatin1String("geometry"));
        if (feature.value(QLatin1String("type")).toString() != QLatin1String("Feature"))
            Fail(QCoreApplication::translate("ZrRouteGeoJson", "not a GeoJSON feature"));
        else if (!geometry.isNull()) // a feature without a place
            ReadGeometry(geometry.toObject(), feature.value(QLatin1String("properties")).toObject(), 0);
    }

    void ReadGeometry(const QJsonObject& geometry, const QJsonObject& properties, int depth)
    {
        const QString type = geometry.value(QLatin1String("type")).toString();
        const QJsonArray coordinates = geometry.value(QLatin1String("coordinates")).toArray();
        const QString name = NameOf(properties);
        if (type == QLatin1String("Point")) {
            ReadPoint(coordinates, name, properties);
        } else if (type == QLatin1String("MultiPoint")) {
            for (const QJsonValue& position : coordinates)
                ReadPoint(position.toArray(), name, {});
        } else if (type == QLatin1String("LineString")) {
            ReadLine(coordinates, name);
        } else if (type == QLatin1String("MultiLineString")) {
            for (const QJsonValue& line : coordinates)
                ReadLine(line.toArray(), name);
        } else if (type == QLatin1String("Polygon")) {
            ReadPolygon(coordinates, name);
        } else if (type == QLatin1String("MultiPolygon")) {
            for (const QJsonValue& polygon : coordinates)
                ReadPolygon(polygon.toArray(), name);
        } else if (type != QLatin1String("GeometryCollection")) {
            Fail(type.isEmpty()
                    ? QCoreApplication::translate("ZrRouteGeoJson", "not GeoJSON: no \"type\"")
                    : QCoreApplication::translate("ZrRouteGeoJson", "\"%1\" is no type of GeoJSON geometry")
                          .arg(type));
        } else if (depth == MaxDepth) {
            Fail(QCoreApplication::translate("ZrRouteGeoJson", "geometries nest too deeply"));
        } else {
            for (const QJsonValue& part : geometry.value(QLatin1String("geometries")).toArray())
                ReadGeometry(part.toObject(), properties, depth + 1);
        }
    }

    ZrGeoPoint ReadPosition(const QJsonArray& numbers)
    {
        if (numbers.size() < 2 || !numbers[0].isDouble() || !numbers[1].isDouble()) {
            Fail(QCoreApplication::translate(
                "ZrRouteGeoJson", "a position must be a list of longitude and latitude"));
            return {};
        }
        const ZrGeoPoint point{numbers[1].toDouble(), numbers[0].toDouble()};
        QString error;
        if (!ZrGeoShapes::Check(point, error))
            Fail(error);
        return point;
    }

    /// Properties of other makers are passed over.
    void ReadPoint(const QJsonArray& coordinates, const QString& name, const QJsonObject& properties)
    {
        ZrShapePoint point{ReadPosition(coordinates), name, {}};
        for (auto field = properties.begin(); field != properties.end(); ++field)
            ZrRouteFields::Add(point.fields, field.key(), field.value());
        m_shapes.points.push_back(point);
    }

    void ReadLine(const QJsonArray& coordinates, const QString& name)
    {
        ZrShapeLine line;
        line.name = name;
        for (const QJsonValue& position : coordinates)
            line.points.push_back({ReadPosition(position.toArray()), {}, {}});
        if (!line.points.empty())
            m_shapes.lines.push_back(line);
    }

    void ReadPolygon(const QJsonArray& rings, const QString& name)
    {
        std::vector<ZrGeoPoint> ring;
        for (const QJsonValue& position : rings.at(0).toArray())
            ring.push_back(ReadPosition(position.toArray()));
        if (rings.size() > 1)
            m_shapes.LeaveOutHoles(rings.size() - 1, [this] {
                return Place()
                    + QCoreApplication::translate("ZrRouteGeoJson", "the holes of a polygon were left out");
            });
        if (!ring.empty())
            m_shapes.areas.push_back({name, ZrGeoShapes::Open(ring)});
    }

    const QByteArray& m_bytes;
    ZrGeoShapes& m_shapes;
    int m_feature = -1; ///< the one being read
    QString m_error;
};

} // namespace

QByteArray ZrRouteGeoJson::Write(const ZrWpts& route)
{
    QJsonArray features;
    if (route.linked && route.GetCount() > 1)
        features.append(LineFeature(route));
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        features.append(PointFeature(*route.GetNext(pos)));
    return QJsonDocument(
        QJsonObject{{QStringLiteral("type"), QStringLiteral("FeatureCollection")},
            {QStringLiteral("route"), ZrRouteFields::Of(route)}, {QStringLiteral("features"), features}})
        .toJson();
}

bool ZrRouteGeoJson::Read(
    const QJsonObject& object, const QByteArray& bytes, ZrGeoShapes& shapes, QString& error)
{
    return Reader(bytes, shapes).Run(object, error);
}
