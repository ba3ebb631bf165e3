#include "ZrKit/planning/ZrRouteKey.h"

#include "ZrUtil/ZrWpts.h"

#include <QCryptographicHash>
#include <QDataStream>

QByteArray ZrRouteKey::Of(const ZrWpts& route)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << route.linked << route.closed << route.speedType << route.speed << ZrWpts::s_msSlow
        << ZrWpts::s_msMedium << ZrWpts::s_msFast;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *route.GetNext(pos);
        out << wpt.name << wpt.lat << wpt.lng << wpt.r << wpt.z << wpt.zType << wpt.alt << wpt.speed
            << wpt.spdType << wpt.time << wpt.head << wpt.headType;
    }
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
}
