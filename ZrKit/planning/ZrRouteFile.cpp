#include "ZrKit/planning/ZrRouteFile.h"

#include "ZrKit/files/ZrReplaceFile.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrKit/planning/ZrRouteGeoJson.h"
#include "ZrKit/planning/ZrRouteGpx.h"
#include "ZrKit/planning/ZrRouteKml.h"
#include "ZrKit/planning/ZrRouteTab.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrWpts.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <algorithm>
#include <memory>

namespace {

    const QString& RouteSet()
    {
        static const QString name = QStringLiteral("Route");
        return name;
    }

    const QString& WaypointSet()
    {
        static const QString name = QStringLiteral("Waypoints");
        return name;
    }

    /// The fields of a route that the store's form of its waypoints has no place for.
    void SyncRoute(ZrXmlStore& store, ZrWpts& route)
    {
        ZrXmlSet* set = store.Set(RouteSet());
        ZrXmlObj* obj = set ? set->Obj(RouteSet(), RouteSet()) : nullptr;
        if (!obj)
            return;
        obj->Item(QStringLiteral("Prefix"), route.prefix);
        obj->Item(QStringLiteral("Linked"), route.linked);
        obj->Item(QStringLiteral("Closed"), route.closed);
        obj->Item(QStringLiteral("Speed"), route.speed, 10);
    }

    QByteArray WriteSettings(const ZrWpts& route)
    {
        QJsonObject root;
        zr::ZrSetModule module(zr::ePersistStoring, root);
        ZrWpts(route).settings(module);
        return QJsonDocument(root).toJson();
    }

    /// Applications name the set as they like: taken is ours, else the first whose objects have positions.
    ZrXmlSet* FindWaypoints(ZrXmlStore& store)
    {
        if (ZrXmlSet* set = store.Set(WaypointSet()))
            return set;
        for (ZrListPos* pos = store.GetHeadPos(); pos;) {
            ZrXmlSet* set = store.GetNext(pos);
            QString lat;
            ZrXmlObj* first = set->GetHead();
            if (first && first->GetItm(QStringLiteral("Lat"), lat))
                return set;
        }
        return nullptr;
    }

    bool IsLatin1(const QString& text)
    {
        return text == QString::fromLatin1(text.toLatin1());
    }

    QString NumberOf(int index, const ZrWpt& wpt)
    {
        return wpt.Name().isEmpty() ? QStringLiteral("waypoint %1").arg(index + 1)
                                    : QStringLiteral("waypoint %1 (%2)").arg(index + 1).arg(wpt.Name());
    }

    int LineOf(const QByteArray& bytes, int offset)
    {
        return static_cast<int>(std::count(bytes.begin(), bytes.begin() + std::min(offset, bytes.size()), '\n')) + 1;
    }

} // namespace

ZrRouteFile::eFormat ZrRouteFile::FormatOf(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("json"))
        return Settings;
    if (suffix == QLatin1String("xml"))
        return Store;
    if (suffix == QLatin1String("gpx"))
        return Gpx;
    if (suffix == QLatin1String("kml"))
        return Kml;
    return suffix == QLatin1String("geojson") ? GeoJson : List;
}

bool ZrRouteFile::Fail(const QString& path, const QString& reason)
{
    m_error = path + QLatin1String(": ") + reason;
    return false;
}

bool ZrRouteFile::ReadBytes(const QString& path, QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Fail(path, file.errorString());
    bytes = file.read(MaxSize + 1);
    if (file.error() != QFileDevice::NoError)
        return Fail(path, file.errorString());
    if (bytes.size() > MaxSize)
        return Fail(path, QStringLiteral("too large for a route (more than 64 MiB)"));
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes.remove(0, 3);
    if (bytes.trimmed().isEmpty())
        return Fail(path, QStringLiteral("the file is empty"));
    return true;
}

bool ZrRouteFile::Parse(
    const QByteArray& bytes, ZrWpts& route, ZrGeoShapes& shapes, bool& isRoute, QString& error)
{
    isRoute = false;
    const QByteArray head = bytes.trimmed().left(4096);
    if (head.startsWith('{')) {
        QJsonParseError parse;
        QJsonObject root = QJsonDocument::fromJson(bytes, &parse).object();
        if (parse.error != QJsonParseError::NoError) {
            error = QStringLiteral("line %1: %2").arg(LineOf(bytes, parse.offset)).arg(parse.errorString());
            return false;
        }
        if (!root.contains(QLatin1String("waypoints")))
            return ZrRouteGeoJson::Read(root, shapes, error);
        zr::ZrSetModule module(zr::ePersistLoading, root);
        route.settings(module);
        isRoute = true;
        return true;
    }
    if (head.contains("<gpx"))
        return ZrRouteGpx::Read(bytes, shapes, error);
    if (head.contains("<kml"))
        return ZrRouteKml::Read(bytes, shapes, error);
    if (!head.startsWith('<'))
        return ZrRouteTab::Read(bytes, shapes, error);
    error = QStringLiteral("neither GPX, KML nor a tag-structured store with waypoints");
    return false;
}

bool ZrRouteFile::FromShapes(const ZrGeoShapes& shapes, ZrWpts& route)
{
    const std::vector<ZrShapePoint>* points = &shapes.points;
    if (points->empty() && !shapes.lines.empty())
        points = &shapes.lines.front().points;
    else if (!shapes.lines.empty() && !shapes.route.contains(QLatin1String("linked")))
        points = &shapes.lines.front().points; // another maker's file: the line is the route
    const bool isLine = points != &shapes.points;
    if (shapes.lines.size() > 1)
        m_warnings << QStringLiteral("of %1 routes and lines the first was taken").arg(shapes.lines.size());
    if (isLine && !shapes.points.empty())
        m_warnings << QStringLiteral("%1 points beside the line were left out").arg(shapes.points.size());

    route.linked = !shapes.lines.empty();
    if (isLine)
        route.prefix = shapes.lines.front().name;
    ZrRouteFields::Apply(shapes.route, route);
    for (const ZrShapePoint& point : *points) {
        auto wpt = std::make_unique<ZrWpt>();
        ZrRouteFields::Apply(point.fields, *wpt);
        wpt->name = point.name;
        wpt->lat = point.position.lat;
        wpt->lng = point.position.lng;
        route.AddTail(wpt.get());
        wpt.release();
    }
    return !points->empty();
}

bool ZrRouteFile::Read(const QString& path, ZrWpts& route)
{
    m_error.clear();
    m_warnings.clear();
    QByteArray bytes;
    if (!ReadBytes(path, bytes))
        return false;

    ZrWpts read;
    ZrXmlStore store(false);
    QString error;
    ZrXmlSet* set = bytes.trimmed().startsWith('<') && store.Load(path) ? FindWaypoints(store) : nullptr;
    if (set) {
        SyncRoute(store, read);
        read.SyncXml(*set);
    } else {
        ZrGeoShapes shapes;
        bool isRoute = false;
        if (!Parse(bytes, read, shapes, isRoute, error))
            return Fail(path, error);
        m_warnings = shapes.warnings;
        if (!isRoute)
            FromShapes(shapes, read);
    }
    if (read.IsEmpty())
        return Fail(path, QStringLiteral("no route and no waypoints in it"));
    read.UpdatePseudo();
    read.Recalc(true);
    route = read;
    return true;
}

bool ZrRouteFile::ReadShapes(const QString& path, ZrGeoShapes& shapes)
{
    m_error.clear();
    m_warnings.clear();
    QByteArray bytes;
    if (!ReadBytes(path, bytes))
        return false;
    ZrWpts route;
    bool isRoute = false;
    QString error;
    ZrGeoShapes read;
    if (Parse(bytes, route, read, isRoute, error)) {
        m_warnings = read.warnings;
    } else if (!Read(path, route)) { // the store is the form that Parse does not know
        return Fail(path, error);
    } else {
        isRoute = true;
    }
    for (ZrListPos* pos = isRoute ? route.GetHeadPos() : nullptr; pos;) {
        const ZrWpt& wpt = *route.GetNext(pos);
        read.points.push_back({{wpt.lat, wpt.lng}, wpt.name, ZrRouteFields::Of(wpt)});
    }
    shapes = read;
    return true;
}

bool ZrRouteFile::StoreBytes(const ZrWpts& route, QByteArray& bytes)
{
    ZrXmlStore store(true);
    ZrWpts copy(route);
    SyncRoute(store, copy);
    copy.SyncXml(*store.Set(WaypointSet()));
    const QTemporaryDir dir; // the store writes over a file in place
    const QString path = dir.filePath(QStringLiteral("route.xml"));
    QFile file(path);
    if (!dir.isValid() || !store.Save(path) || !file.open(QIODevice::ReadOnly)) {
        m_error = QStringLiteral("the store cannot be made in %1").arg(dir.path());
        return false;
    }
    bytes = file.readAll();
    return true;
}

bool ZrRouteFile::Write(const QString& path, eFormat format, const ZrWpts& route)
{
    m_error.clear();
    m_warnings.clear();
    int index = 0;
    for (ZrListPos* pos = route.GetHeadPos(); pos; ++index) {
        const ZrWpt& wpt = *route.GetNext(pos);
        QString error;
        if (format != Settings && format != Store && !ZrGeoShapes::Check({wpt.lat, wpt.lng}, error))
            return Fail(path, NumberOf(index, wpt) + QLatin1String(": ") + error);
        if (format == Store && !(IsLatin1(wpt.name) && IsLatin1(wpt.filename)))
            m_warnings << NumberOf(index, wpt) + QStringLiteral(": characters beyond Latin-1 were replaced");
    }

    QByteArray bytes;
    switch (format) {
    case Settings:
        bytes = WriteSettings(route);
        break;
    case Store:
        if (!StoreBytes(route, bytes))
            return false;
        break;
    case Gpx:
        bytes = ZrRouteGpx::Write(route);
        break;
    case Kml:
        bytes = ZrRouteKml::Write(route);
        break;
    case GeoJson:
        bytes = ZrRouteGeoJson::Write(route);
        break;
    case List:
        bytes = ZrRouteTab::Write(route);
        break;
    }
    return zr::replace_file(path, bytes, &m_error);
}
