#include "ZrKit/planning/ZrPlanRecord.h"

#include "ZrUtil/ZrWpts.h"
#include "ZrUtil/ZrXmlStore.h"

QByteArray ZrPlanRecord::Encode(const ZrWpts& route)
{
    if (route.IsEmpty())
        return {};
    ZrWpts copy(route);
    ZrXmlStore store(true);
    copy.SyncXml(*store.AddSet(QStringLiteral("Waypoints")));
    QByteArray bytes;
    store.Save(bytes);
    return bytes;
}
