#include "ZrUtil/ZrWpts.h"

#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrUtil.h"
#include "ZrUtil/ZrXmlSet.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

template class ZrLstMgd<ZrWpt>;

float ZrWpts::s_msSlow = 0.25F;
float ZrWpts::s_msMedium = 0.5F;
float ZrWpts::s_msFast = 1.0F;

namespace {

/// Kinds without a colour of their own keep \p colour.
void SetColour(QColor& colour, eZrWptType type)
{
    if (type == eZrWptBlue)
        colour = QColor(Qt::blue);
    else if (type == eZrWptRed)
        colour = QColor(Qt::red);
    else if (type == eZrWptYellow)
        colour = QColor(Qt::yellow);
}

bool SamePosition(const ZrWpt& a, const ZrWpt& b)
{
    return a.lat == b.lat && a.lng == b.lng;
}

} // namespace

ZrWpts::ZrWpts(const ZrWpts& other)
    : ZrLstMgd<ZrWpt>()
    , zr::IPersistable(other)
{
    CopyFrom(other);
}

ZrWpts& ZrWpts::operator=(const ZrWpts& other)
{
    if (this != &other) {
        RemoveAll();
        CopyFrom(other);
    }
    return *this;
}

void ZrWpts::CopyFrom(const ZrWpts& other)
{
    prefix = other.prefix;
    linked = other.linked;
    closed = other.closed;
    speedType = other.speedType;
    speed = other.speed;
    for (ZrListPos* pos = other.GetHeadPos(); pos;) {
        auto copy = std::make_unique<ZrWpt>(*other.GetNext(pos));
        AddTail(copy.get());
        copy.release();
    }
}

ZrWpt* ZrWpts::Add(double lat, double lng, eZrWptType type, int where)
{
    auto added = std::make_unique<ZrWpt>();
    added->lat = lat;
    added->lng = lng;
    added->z = 0.0;
    added->type = static_cast<u8>(type);
    SetColour(added->colour, type);

    if (IsEmpty() || where == eAddTail) {
        AddTail(added.get());
    } else if (where == eAddHead) {
        AddHead(added.get());
    } else if (where == eAddLeg) {
        ZrWpt* from = nullptr;
        ZrWpt* to = nullptr;
        const int side = LL2Segment(lat, lng, from, to);
        if (!from || side > 0)
            AddTail(added.get());
        else if (side < 0)
            AddHead(added.get());
        else
            InsertAfter(Find(from), added.get());
    }
    ZrWpt* wpt = added.release();
    UpdatePseudo();
    Recalc(true);
    return wpt;
}

void ZrWpts::Delete(ZrWpt* wpt)
{
    Remove(wpt);
    UpdatePseudo();
    Recalc(true);
}

double ZrWpts::CalcRange() const
{
    double range = 0.0;
    const ZrWpt* last = nullptr;
    for (ZrListPos* pos = GetHeadPos(); pos;) {
        const ZrWpt* wpt = GetNext(pos);
        if (last)
            range += ZrUtil::LL2LLRng(last->lat, last->lng, wpt->lat, wpt->lng);
        last = wpt;
    }
    return range;
}

double ZrWpts::CalcDuration() const
{
    if (speed <= 0.0)
        return -1.0;
    double duration = 0.0;
    double running = speed;
    const ZrWpt* last = nullptr;
    for (ZrListPos* pos = GetHeadPos(); pos;) {
        const ZrWpt* wpt = GetNext(pos);
        if (last) {
            if (last->spdType == 1)
                running = static_cast<double>(s_msSlow);
            else if (last->spdType == 2)
                running = static_cast<double>(s_msMedium);
            else if (last->spdType == 3)
                running = static_cast<double>(s_msFast);
            else if (last->spdType > 3 && last->speed > 0.0)
                running = last->speed;
            duration += ZrUtil::LL2LLRng(last->lat, last->lng, wpt->lat, wpt->lng) / running;
        }
        last = wpt;
    }
    return duration;
}

int ZrWpts::GetArea(double& minLat, double& minLng, double& maxLat, double& maxLng, bool init) const
{
    if (const ZrWpt* first = GetHead(); first && init) {
        minLat = maxLat = first->lat;
        minLng = maxLng = first->lng;
    }
    int count = 0;
    for (ZrListPos* pos = GetHeadPos(); pos; ++count) {
        const ZrWpt* wpt = GetNext(pos);
        minLat = std::min(minLat, wpt->lat);
        maxLat = std::max(maxLat, wpt->lat);
        minLng = std::min(minLng, wpt->lng);
        maxLng = std::max(maxLng, wpt->lng);
    }
    return count;
}

int ZrWpts::GetCentre(double& lat, double& lng) const
{
    double latSum = 0.0;
    double lngSum = 0.0;
    int count = 0;
    for (ZrListPos* pos = GetHeadPos(); pos; ++count) {
        const ZrWpt* wpt = GetNext(pos);
        latSum += wpt->lat;
        lngSum += wpt->lng;
    }
    if (count > 0) {
        lat = latSum / count;
        lng = lngSum / count;
    }
    return count;
}

ZrListPos* ZrWpts::NearestTo(double lat, double lng) const
{
    ZrListPos* nearest = nullptr;
    double best = 0.0;
    for (ZrListPos* pos = GetHeadPos(); pos;) {
        ZrListPos* at = pos;
        const ZrWpt* wpt = GetNext(pos);
        const double dLat = wpt->lat - lat;
        const double dLng = wpt->lng - lng;
        const double distance = dLat * dLat + dLng * dLng;
        // A position that is no number is nearest only where all are so.
        if (!nearest || distance < best || (std::isnan(best) && !std::isnan(distance))) {
            nearest = at;
            best = distance;
        }
    }
    return nearest;
}

ZrListPos* ZrWpts::FollowingUnique(ZrListPos* pos) const
{
    const ZrWpt* from = GetNext(pos);
    while (pos && SamePosition(*GetAt(pos), *from))
        GetNext(pos);
    return pos;
}

ZrListPos* ZrWpts::PrecedingUnique(ZrListPos* pos) const
{
    const ZrWpt* from = GetPrev(pos);
    while (pos && SamePosition(*GetAt(pos), *from))
        GetPrev(pos);
    return pos;
}

void ZrWpts::Reverse()
{
    Invert();
    Recalc(true);
}

void ZrWpts::UpdatePseudo()
{
    int i = 0;
    for (ZrListPos* pos = GetHeadPos(); pos; ++i) {
        ZrWpt* wpt = GetNext(pos);
        if (!linked)
            wpt->pseudo = QCoreApplication::translate("ZrWpts", "Mkr: ") + QString::number(i + 1);
        else if (!closed && i == 0)
            wpt->pseudo = QCoreApplication::translate("ZrWpts", "Start Mission");
        else if (!closed && !pos)
            wpt->pseudo = QCoreApplication::translate("ZrWpts", "Finish Mission");
        else
            wpt->pseudo = QCoreApplication::translate("ZrWpts", "Wpt: ") + QString::number(i);
    }
}

void ZrWpts::settings(zr::ZrSetModule& module)
{
    module.item(QStringLiteral("prefix"), prefix);
    module.item(QStringLiteral("linked"), linked);
    module.item(QStringLiteral("closed"), closed);
    module.item(QStringLiteral("speed"), speed);
    module.item(QStringLiteral("SlowSpeed"), s_msSlow);
    module.item(QStringLiteral("MediumSpeed"), s_msMedium);
    module.item(QStringLiteral("FastSpeed"), s_msFast);

    const QString key = QStringLiteral("waypoints");
    QJsonArray array;
    if (module.is_storing()) {
        for (ZrListPos* pos = GetHeadPos(); pos;) {
            QJsonObject object;
            zr::ZrSetModule part(module.mode, object);
            ZrWpt::serialise(*GetNext(pos), part);
            array.append(object);
        }
        module.item(key, array);
    } else if (module.is_loading() && module.object->contains(key)) {
        module.item(key, array);
        RemoveAll();
        for (const QJsonValue& value : array) {
            QJsonObject object = value.toObject();
            zr::ZrSetModule part(module.mode, object);
            auto wpt = std::make_unique<ZrWpt>();
            ZrWpt::serialise(*wpt, part);
            AddTail(wpt.get());
            wpt.release();
        }
    }
}

void ZrWpts::SyncXml(ZrXmlSet& set)
{
    if (set.IsStoring()) {
        const QString type = QStringLiteral("Waypoint");
        const bool fresh = set.IsEmpty(); // no name can be there already, and none needs to be searched
        int i = 0;
        for (ZrListPos* pos = GetHeadPos(); pos; ++i) {
            const QString name = QStringLiteral("Wpt %1").arg(i);
            ZrXmlObj* obj
                = fresh ? set.GetAt(set.AddTail(new ZrXmlObj(name, type, &set))) : set.Obj(name, type);
            GetNext(pos)->SyncXml(*obj);
        }
        return;
    }
    std::vector<ZrXmlObj*> stored;
    for (ZrListPos* pos = set.GetHeadPos(); pos;) {
        ZrXmlObj* obj = set.GetNext(pos);
        if (obj->name != QLatin1String("No Data"))
            stored.push_back(obj);
    }
    SetSize(static_cast<unsigned int>(stored.size()));
    ZrListPos* pos = GetHeadPos();
    for (ZrXmlObj* obj : stored)
        GetNext(pos)->SyncXml(*obj);
    Recalc(true);
}
