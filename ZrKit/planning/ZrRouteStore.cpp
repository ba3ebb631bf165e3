#include "ZrKit/planning/ZrRouteStore.h"

#include "ZrKit/planning/ZrTextLines.h"
#include "ZrUtil/ZrWpts.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QCoreApplication>

#include <limits>
#include <memory>

namespace {

constexpr int MaxText = 900; // a line of the store has 1,023 bytes at most

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

QChar Storable(QChar c)
{
    if (c == QLatin1Char('"'))
        return QLatin1Char('\'');
    if (c < QLatin1Char(' '))
        return QLatin1Char(' ');
    return c.unicode() > 0xFF ? QLatin1Char('?') : c;
}

/// Makes \p text one that the store gives back; false when it was one.
bool MakeStorable(QString& text)
{
    const QString before = text;
    text.truncate(MaxText);
    for (QChar& c : text)
        c = Storable(c);
    return text != before;
}

void MakeStorable(ZrWpts& route, QStringList& warnings)
{
    const QString reason
        = QCoreApplication::translate("ZrRouteStore", ": text that the store cannot hold was changed");
    if (MakeStorable(route.prefix))
        warnings << QStringLiteral("prefix") + reason;
    int number = 1;
    for (ZrListPos* pos = route.GetHeadPos(); pos; ++number) {
        ZrWpt& wpt = *route.GetNext(pos);
        QString letter(wpt.bottomA);
        bool changed = MakeStorable(wpt.name);
        changed = MakeStorable(wpt.filename) || changed;
        changed = MakeStorable(letter) || changed;
        MakeStorable(wpt.pseudo);
        wpt.bottomA = letter.front();
        if (changed)
            warnings << QStringLiteral("waypoint %1").arg(number) + reason;
    }
}

bool IsWaypoint(const ZrXmlObj& obj)
{
    return obj.name != QLatin1String("No Data");
}

ZrXmlSet* FindWaypoints(ZrXmlStore& store)
{
    if (ZrXmlSet* set = store.Set(WaypointSet()))
        return set;
    for (ZrListPos* pos = store.GetHeadPos(); pos;) {
        ZrXmlSet* set = store.GetNext(pos);
        for (ZrListPos* at = set->GetHeadPos(); at;) {
            QString text;
            if (set->GetNext(at)->GetItm(QStringLiteral("Lat"), text))
                return set;
        }
    }
    return nullptr;
}

bool HasNumber(ZrXmlObj& obj, const QString& item)
{
    const double none = std::numeric_limits<double>::infinity();
    double value = none;
    obj.Item(item, value);
    return value != none;
}

/// Where the object \p obj of the set \p set begins.
int LineOf(const QByteArray& bytes, const QString& set, const QString& obj)
{
    const int setAt = bytes.indexOf('"' + set.toLatin1() + '"');
    return ZrTextLines::OfOffset(bytes, bytes.indexOf('"' + obj.toLatin1() + '"', setAt));
}

QString Check(const QByteArray& bytes, const ZrXmlSet& set)
{
    int number = 1;
    for (ZrListPos* pos = set.GetHeadPos(); pos;) {
        ZrXmlObj& obj = *set.GetNext(pos);
        if (!IsWaypoint(obj))
            continue;
        for (const QString& item : {QStringLiteral("Lat"), QStringLiteral("Lng")})
            if (!HasNumber(obj, item))
                return QCoreApplication::translate(
                    "ZrRouteStore", "line %1: waypoint %2: \"%3\" is no number")
                    .arg(LineOf(bytes, set.name, obj.name))
                    .arg(number)
                    .arg(item);
        ++number;
    }
    return {};
}

} // namespace

QByteArray ZrRouteStore::Write(const ZrWpts& route, QStringList& warnings)
{
    ZrXmlStore store(true);
    ZrWpts copy(route);
    MakeStorable(copy, warnings);
    SyncRoute(store, copy);
    copy.SyncXml(*store.Set(WaypointSet()));
    return store.FileForm();
}

bool ZrRouteStore::Read(const QByteArray& bytes, ZrWpts& route, QString& error)
{
    ZrXmlStore store(false);
    if (!Load(bytes, store, error))
        return false;
    Finish(store, route);
    return true;
}

bool ZrRouteStore::Load(const QByteArray& bytes, ZrXmlStore& store, QString& error)
{
    store.LoadFileForm(bytes);
    ZrXmlSet* set = FindWaypoints(store);
    if (bytes.contains("<XmlStore") && !bytes.contains("</XmlStore>"))
        error
            = QCoreApplication::translate("ZrRouteStore", "line %1: cut off, the end of the store is missing")
                  .arg(ZrTextLines::OfOffset(bytes, bytes.size()));
    else if (!set)
        error = QCoreApplication::translate(
            "ZrRouteStore", "neither GPX, KML nor a tag-structured store with waypoints");
    else
        error = Check(bytes, *set);
    return error.isEmpty();
}

void ZrRouteStore::Finish(ZrXmlStore& store, ZrWpts& route)
{
    FinishBare(store, route);
    route.Recalc(true);
}

void ZrRouteStore::FinishBare(ZrXmlStore& store, ZrWpts& route)
{
    SyncRoute(store, route);
    ZrXmlSet* set = FindWaypoints(store);
    for (ZrListPos* pos = set ? set->GetHeadPos() : nullptr; pos;) {
        ZrXmlObj& obj = *set->GetNext(pos);
        if (!IsWaypoint(obj))
            continue;
        auto wpt = std::make_unique<ZrWpt>();
        wpt->SyncXml(obj);
        route.AddTail(wpt.get());
        static_cast<void>(wpt.release());
    }
}
