#include "ZrKit/planning/ZrRouteGeoJson.h"

#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrUtil/ZrWpts.h"

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

    class Reader
    {
    public:
        explicit Reader(ZrGeoShapes& shapes)
            : m_shapes(shapes)
        {
        }

        bool Run(const QJsonObject& object, QString& error)
        {
            const QString type = object.value(QLatin1String("type")).toString();
            if (type == QLatin1String("FeatureCollection")) {
                m_shapes.route = object.value(QLatin1String("route")).toObject();
                const QJsonArray features = object.value(QLatin1String("features")).toArray();
                for (int i = 0; i < features.size() && m_error.isEmpty(); ++i) {
                    m_place = QStringLiteral("feature %1: ").arg(i + 1);
                    ReadFeature(features[i].toObject());
                }
            } else if (type == QLatin1String("Feature")) {
                ReadFeature(object);
            } else {
                ReadGeometry(object, {}, 0);
            }
            error = m_error;
            return m_error.isEmpty();
        }

    private:
        void Fail(const QString& reason)
        {
            if (m_error.isEmpty())
                m_error = m_place + reason;
        }

        void ReadFeature(const QJsonObject& feature)
        {
            const QJsonValue geometry = feature.value(QLatin1String("geometry"));
            if (feature.value(QLatin1String("type")).toString() != QLatin1String("Feature"))
                Fail(QStringLiteral("not a GeoJSON feature"));
            else if (!geometry.isNull()) // a feature without a place
                ReadGeometry(geometry.toObject(), feature.value(QLatin1String("properties")).toObject(), 0);
        }

        void ReadGeometry(const QJsonObject& geometry, const QJsonObject& properties, int depth)
        {
            const QString type = geometry.value(QLatin1String("type")).toString();
            const QJsonArray coordinates = geometry.value(QLatin1String("coordinates")).toArray();
            const QString name = properties.value(QLatin1String("name")).toString();
            if (type == QLatin1String("Point")) {
                m_shapes.points.push_back({ReadPosition(coordinates), name, properties});
            } else if (type == QLatin1String("MultiPoint")) {
                for (const QJsonValue& position : coordinates)
                    m_shapes.points.push_back({ReadPosition(position.toArray()), name, {}});
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
            } else if (type == QLatin1String("GeometryCollection") && depth < 16) {
                for (const QJsonValue& part : geometry.value(QLatin1String("geometries")).toArray())
                    ReadGeometry(part.toObject(), properties, depth + 1);
            } else {
                Fail(type.isEmpty() ? QStringLiteral("not GeoJSON: no \"type\"")
                                    : QStringLiteral("\"%1\" is no type of GeoJSON geometry").arg(type));
            }
        }

        ZrGeoPoint ReadPosition(const QJsonArray& numbers)
        {
            if (numbers.size() < 2 || !numbers[0].isDouble() || !numbers[1].isDouble()) {
                Fail(QStringLiteral("a position must be an array of longitude and latitude"));
                return {};
            }
            const ZrGeoPoint point {numbers[1].toDouble(), numbers[0].toDouble()};
            QString error;
            if (!ZrGeoShapes::Check(point, error))
                Fail(error);
            return point;
        }

        void ReadLine(const QJsonArray& coordinates, const QString& name)
        {
            ZrShapeLine line;
            line.name = name;
            for (const QJsonValue& position : coordinates)
                line.points.push_back({ReadPosition(position.toArray()), {}, {}});
            m_shapes.lines.push_back(line);
        }

        void ReadPolygon(const QJsonArray& rings, const QString& name)
        {
            ZrArea area;
            area.name = name;
            for (const QJsonValue& position : rings.at(0).toArray())
                area.ring.push_back(ReadPosition(position.toArray()));
            if (area.ring.size() > 1 && area.ring.front() == area.ring.back())
                area.ring.pop_back();
            if (rings.size() > 1)
                m_shapes.warnings << m_place + QStringLiteral("the holes of a polygon were left out");
            m_shapes.areas.push_back(area);
        }

        ZrGeoShapes& m_shapes;
        QString m_place; ///< what begins every error
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
    return QJsonDocument(QJsonObject {{QStringLiteral("type"), QStringLiteral("FeatureCollection")},
                             {QStringLiteral("route"), ZrRouteFields::Of(route)},
                             {QStringLiteral("features"), features}})
        .toJson();
}

bool ZrRouteGeoJson::Read(const QJsonObject& object, ZrGeoShapes& shapes, QString& error)
{
    return Reader(shapes).Run(object, error);
}
