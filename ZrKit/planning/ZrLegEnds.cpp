#include "ZrKit/planning/ZrLegEnds.h"

#include "ZrUtil/ZrWpt.h"
#include "ZrUtil/ZrWpts.h"

std::vector<QUuid> ZrLegEnds::Ids(const ZrWpts& route)
{
    std::vector<QUuid> ids;
    ids.reserve(static_cast<std::size_t>(route.GetCount()));
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        ids.push_back(route.GetNext(pos)->uuid);
    return ids;
}

ZrLegEnds ZrLegEnds::Of(const std::vector<ZrRouteLeg>& legs, const std::vector<QUuid>& ids, int leg)
{
    if (leg < 0 || static_cast<std::size_t>(leg) >= legs.size())
        return {};
    const ZrRouteLeg& between = legs[static_cast<std::size_t>(leg)];
    const auto from = static_cast<std::size_t>(between.from);
    const auto to = static_cast<std::size_t>(between.to);
    return from < ids.size() && to < ids.size() ? ZrLegEnds{ids[from], ids[to]} : ZrLegEnds();
}

int ZrLegEnds::IndexIn(const std::vector<ZrRouteLeg>& legs, const std::vector<QUuid>& ids) const
{
    int back = -1;
    for (std::size_t i = 0; i < legs.size() && !IsNull(); ++i) {
        const ZrLegEnds ends = Of(legs, ids, static_cast<int>(i));
        if (ends.from == from && ends.to == to)
            return static_cast<int>(i);
        if (ends.from == to && ends.to == from)
            back = static_cast<int>(i);
    }
    return back;
}

int ZrLegEnds::PlaceIn(const ZrWpts& route) const
{
    if (IsNull() || route.GetCount() < 2)
        return -1;
    int back = -1;
    int index = 0;
    const auto isThere = [&](const QUuid& first, const QUuid& second) {
        if (first == to && second == from)
            back = index;
        return first == from && second == to;
    };
    QUuid before;
    for (ZrListPos* pos = route.GetHeadPos(); pos; ++index) {
        const QUuid id = route.GetNext(pos)->uuid;
        if (index > 0 && isThere(before, id))
            return index;
        before = id;
    }
    return route.closed && isThere(before, route.GetHead()->uuid) ? index : back;
}
