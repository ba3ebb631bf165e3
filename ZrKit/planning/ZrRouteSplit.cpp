#include "ZrKit/planning/ZrRouteSplit.h"

#include "ZrKit/planning/ZrAreaCheck.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

/// A place where one route ends and the next one begins.
struct Stop
{
    std::size_t leg = 0; ///< that is run next
    double q = 0.0; ///< length of the path up to it
    bool isWaypoint = true; ///< the one where `leg` begins
    ZrLocalPoint local;
    ZrWpt wpt; ///< as it stands in the new routes; filled once the stop is chosen
};

struct Cost
{
    double metres = 0.0;
    double seconds = 0.0;
};

Cost operator+(Cost a, Cost b)
{
    return {a.metres + b.metres, a.seconds + b.seconds};
}

ZrRouteSplit::Result Failure(const QString& error)
{
    ZrRouteSplit::Result result;
    result.error = error;
    return result;
}

void Append(ZrWpts& route, const ZrWpt& wpt)
{
    auto copy = std::make_unique<ZrWpt>(wpt);
    route.AddTail(copy.get());
    static_cast<void>(copy.release());
}

/// A point that takes its properties from \p from.
ZrWpt NewPoint(const ZrWpt& from, ZrGeoPoint place)
{
    ZrWpt point = from;
    point.uuid = QUuid::createUuid();
    point.name.clear();
    point.pseudo.clear();
    point.lat = place.lat;
    point.lng = place.lng;
    point.r = 0.0;
    point.spdType = 0;
    point.atWpt = false;
    point.time = -1.0;
    return point;
}

/// The route as an open one that runs the same path.
std::unique_ptr<ZrWpts> Opened(const ZrWpts& route)
{
    auto line = std::make_unique<ZrWpts>(route);
    line->closed = false;
    if (route.closed && route.GetHead()) {
        line->GetTail()->r = 0.0; // the ends never turn, and it is none any more
        Append(*line, *route.GetHead());
    }
    return line;
}

/// An empty route that begins with the speed of \p leg.
std::unique_ptr<ZrWpts> Beginning(const ZrWpts& route, const ZrRouteLeg& leg)
{
    auto part = std::make_unique<ZrWpts>();
    part->prefix = route.prefix;
    part->linked = route.linked;
    part->speedType = route.speedType;
    part->speed = route.speed;
    if (leg.source != eRouteSpeedInherited) {
        part->speedType = leg.source == eRouteSpeedOwn ? 0 : leg.source;
        part->speed = std::isnan(leg.speed) ? route.speed : leg.speed;
    }
    return part;
}

class Splitter
{
public:
    Splitter(const ZrWpts& route, const ZrRouteSplit::Options& options)
        : m_line(Opened(route))
        , m_options(options)
        , m_path(*m_line)
    {
        for (ZrListPos* pos = m_line->GetHeadPos(); pos;)
            m_wpts.push_back(m_line->GetNext(pos));
    }

    ZrRouteSplit::Result Run()
    {
        const QString refusal = Refusal();
        if (!refusal.isEmpty())
            return Failure(refusal);
        m_lastSpeed = SpeedBehindLast();
        for (const ZrRouteLeg& leg : m_path.Legs())
            m_seconds.push_back(m_seconds.back() + leg.duration);
        ZrRouteSplit::Result result;
        Stop from = AtWaypoint(0);
        Finish(from);
        while (from.leg < m_path.Legs().size()) {
            Stop to = Farthest(from);
            if (to.leg == from.leg && to.q == from.q)
                return Failure(NoProgress(from));
            if (result.routes.size() == static_cast<std::size_t>(ZrRouteSplit::MaxRoutes))
                return Failure(QCoreApplication::translate(
                    "ZrRouteSplit", "The route is so long that it needs more than %1 routes.")
                                   .arg(ZrRouteSplit::MaxRoutes));
            Finish(to);
            result.routes.push_back(Part(from, to));
            from = to;
        }
        return result;
    }

private:
    QString Refusal() const
    {
        const auto isLimit = [](double limit) { return limit > 0.0; };
        if (m_path.Legs().empty())
            return QCoreApplication::translate(
                "ZrRouteSplit", "There is nothing to split: the route has no leg.");
        if (!isLimit(m_options.maxSeconds) || !isLimit(m_options.maxMetres))
            return QCoreApplication::translate(
                "ZrRouteSplit", "An endurance of %1 s and %2 m is not possible.")
                .arg(m_options.maxSeconds)
                .arg(m_options.maxMetres);
        if (std::isinf(m_options.maxSeconds) && std::isinf(m_options.maxMetres))
            return QCoreApplication::translate(
                "ZrRouteSplit", "There is no endurance to split by: neither seconds nor metres are given.");
        if (!(m_options.reserve >= 0.0 && m_options.reserve < 1.0))
            return QCoreApplication::translate(
                "ZrRouteSplit", "A reserve of %1 is not possible: it is a share from 0 to below 1.")
                .arg(m_options.reserve);
        if (m_path.IsTooWide())
            return QCoreApplication::translate(
                "ZrRouteSplit", "The route is too wide for its lengths to be known.");
        for (const ZrRouteLeg& leg : m_path.Legs()) {
            if (std::isnan(leg.length) || (std::isfinite(m_options.maxSeconds) && std::isnan(leg.speed)))
                return QCoreApplication::translate(
                    "ZrRouteSplit", "The %1 of the leg from %2 to %3 is not known.")
                    .arg(std::isnan(leg.length) ? QStringLiteral("length") : QStringLiteral("speed"),
                        NameOf(leg.from), NameOf(leg.to));
        }
        return {};
    }

    QString NameOf(int i) const { return ZrAreaCheck::NameOf(*m_wpts[static_cast<std::size_t>(i)], i); }

    QString NoProgress(const Stop& from) const
    {
        const ZrRouteLeg& leg = m_path.Legs()[from.leg];
        return QCoreApplication::translate("ZrRouteSplit",
            "The endurance does not suffice for the leg from %1 to %2, %3 m after the start%4.")
            .arg(NameOf(leg.from), NameOf(leg.to), QString::number(from.q, 'f', 1),
                m_options.returnToStart
                    ? QCoreApplication::translate("ZrRouteSplit", ", with the way there and back")
                    : QString());
    }

    /// The speed with which a way goes on from the last waypoint: it may have one of its own.
    double SpeedBehindLast() const
    {
        ZrWpts further(*m_line);
        Append(further, *m_wpts.front());
        return ZrRoutePath(further).Legs().back().speed;
    }

    double SpeedAt(std::size_t leg) const
    {
        return leg < m_path.Legs().size() ? m_path.Legs()[leg].speed : m_lastSpeed;
    }

    Stop AtWaypoint(std::size_t i) const
    {
        const bool isEnd = i == m_path.Legs().size();
        Stop stop;
        stop.leg = i;
        stop.q = isEnd ? m_path.Legs().back().q + m_path.Legs().back().length : m_path.Legs()[i].q;
        stop.local = m_path.Points()[i];
        return stop;
    }

    /// On the straight of a leg; \p q from its beginning to its end.
    Stop OnLeg(std::size_t i, double q) const
    {
        Stop stop;
        stop.leg = i;
        stop.q = q;
        stop.isWaypoint = false;
        stop.local = m_path.Frame().ToLocal(m_path.At(q));
        return stop;
    }

    void Finish(Stop& stop) const
    {
        const ZrWpt& wpt = *m_wpts[stop.leg];
        stop.wpt = stop.isWaypoint ? wpt : NewPoint(wpt, m_path.At(stop.q));
        stop.wpt.r = 0.0;
    }

    /// Metres by which the way to (or from) a waypoint is longer than that to the tangent point.
    double Reach(std::size_t i) const
    {
        const ZrRouteTurn& turn = m_path.Turns()[i];
        return turn.state == ZrRouteTurn::eTurns ? turn.reach : 0.0;
    }

    /// What the path costs up to a waypoint where a run begins, or up to a place on a straight.
    Cost Before(const Stop& from) const
    {
        const ZrRouteLeg& leg = m_path.Legs()[from.leg];
        const double q = from.q - (from.isWaypoint ? Reach(from.leg) : 0.0);
        return {q, m_seconds[from.leg] + (q - leg.q) / leg.speed};
    }

    /// The same where a run ends: at a waypoint it goes straight there instead of along the arc.
    Cost UpTo(const Stop& to) const
    {
        if (!to.isWaypoint)
            return Before(to);
        const ZrRouteLeg& leg = m_path.Legs()[to.leg - 1];
        const double more = Reach(to.leg) - leg.arc;
        return {to.q + more, m_seconds[to.leg] + more / leg.speed};
    }

    Cost OfRun(const Stop& from, const Stop& to) const
    {
        const Cost begin = Before(from);
        const Cost end = UpTo(to);
        return {end.metres - begin.metres, end.seconds - begin.seconds};
    }

    /// A straight way between a stop and the start.
    Cost OfTransit(const Stop& stop) const
    {
        if (!m_options.returnToStart)
            return {};
        const double metres = m_path.Distance(stop.local, m_path.Points().front());
        return {metres, metres / SpeedAt(stop.leg)};
    }

    bool Suffices(Cost cost) const
    {
        constexpr double rounding = 1.0 + 1e-9;
        const double usable = (1.0 - m_options.reserve) * rounding;
        return cost.metres <= m_options.maxMetres * usable
            && (std::isinf(m_options.maxSeconds) || cost.seconds <= m_options.maxSeconds * usable);
    }

    /// The farthest stop that can be reached, or \p from when there is none.
    Stop Farthest(const Stop& from) const
    {
        const Cost out = OfTransit(from);
        const auto reaches = [&](const Stop& to) { return Suffices(out + OfRun(from, to) + OfTransit(to)); };
        Stop best = from;
        for (std::size_t i = from.leg; i < m_path.Legs().size(); ++i) {
            const ZrRouteLeg& leg = m_path.Legs()[i];
            const double begin = i == from.leg ? from.q : leg.q;
            const double end = leg.q + leg.straight;
            const bool turns = Reach(i + 1) > 0.0;
            if (i > from.leg && !Suffices(out + OfRun(from, OnLeg(i, begin))))
                break;
            const Stop last = m_options.cutLegs && turns ? OnLeg(i, end) : AtWaypoint(i + 1);
            if (reaches(last))
                best = last;
            else if (m_options.cutLegs && end > begin)
                Cut(i, begin, end, reaches, best);
        }
        return best;
    }

    /// Moves \p best as far along a straight as can be reached.
    template <class F> void Cut(std::size_t leg, double begin, double end, const F& reaches, Stop& best) const
    {
        if (!reaches(OnLeg(leg, begin)))
            return;
        double low = begin;
        double high = end;
        for (int i = 0; i < 60 && high - low > 1e-7; ++i) {
            const double middle = (low + high) / 2.0;
            (reaches(OnLeg(leg, middle)) ? low : high) = middle;
        }
        // No slivers beside a waypoint.
        const double cut = std::min(low, end - ZrRouteSplit::MinRun);
        if (cut - begin >= ZrRouteSplit::MinRun)
            best = OnLeg(leg, cut);
        else if (Reach(leg) > 0.0 && begin == m_path.Legs()[leg].q)
            best = OnLeg(leg, begin);
    }

    std::unique_ptr<ZrWpts> Part(const Stop& from, const Stop& to) const
    {
        std::unique_ptr<ZrWpts> part = Beginning(*m_line, m_path.Legs()[from.leg]);
        const ZrLocalPoint start = m_path.Points().front();
        const auto isAway = [&](const Stop& stop) {
            return m_options.returnToStart && m_path.Distance(stop.local, start) >= ZrRoutePath::Tolerance;
        };
        const auto addStart = [&] {
            const ZrWpt& first = *m_wpts.front();
            ZrWpt point = NewPoint(first, {first.lat, first.lng});
            point.name = first.name;
            Append(*part, point);
        };
        if (isAway(from))
            addStart();
        Append(*part, from.wpt);
        const std::size_t behind = to.isWaypoint ? to.leg : to.leg + 1;
        for (std::size_t i = from.leg + 1; i < behind; ++i)
            Append(*part, *m_wpts[i]);
        Append(*part, to.wpt);
        if (isAway(to))
            addStart();
        part->UpdatePseudo();
        return part;
    }

    std::unique_ptr<ZrWpts> m_line;
    ZrRouteSplit::Options m_options;
    ZrRoutePath m_path;
    std::vector<const ZrWpt*> m_wpts;
    std::vector<double> m_seconds{0.0}; ///< duration of the path up to each leg
    double m_lastSpeed = 0.0;
};

ZrRouteSplit::Result Rest(const ZrWpts& route, int index, const ZrGeoPoint* place)
{
    const std::unique_ptr<ZrWpts> line = Opened(route);
    const ZrRoutePath path(*line);
    const int legs = static_cast<int>(path.Legs().size());
    if (index < 0 || index >= route.GetCount())
        return Failure(
            QCoreApplication::translate("ZrRouteSplit", "There is no waypoint %1 on a route of %2.")
                .arg(index)
                .arg(route.GetCount()));
    if (index >= legs)
        return Failure(QCoreApplication::translate(
            "ZrRouteSplit", "There is nothing left to run: %1 is the last waypoint.")
                           .arg(ZrAreaCheck::NameOf(*route.GetTail(), index)));
    if (place && !place->IsValid())
        return Failure(QCoreApplication::translate(
            "ZrRouteSplit", "The place of the interruption, latitude %1 and longitude %2, is not valid.")
                           .arg(place->lat)
                           .arg(place->lng));
    ZrRouteSplit::Result result;
    result.routes.push_back(Beginning(route, path.Legs()[static_cast<std::size_t>(index)]));
    ZrWpts& rest = *result.routes.back();
    ZrListPos* pos = line->FindIndex(index);
    ZrWpt first = *line->GetNext(pos);
    first.r = 0.0;
    Append(rest, place ? NewPoint(first, *place) : first);
    while (pos)
        Append(rest, *line->GetNext(pos));
    rest.UpdatePseudo();
    return result;
}

} // namespace

ZrRouteSplit::Result ZrRouteSplit::Split(const ZrWpts& route, const Options& options)
{
    return Splitter(route, options).Run();
}

ZrRouteSplit::Result ZrRouteSplit::Resume(const ZrWpts& route, int index)
{
    return Rest(route, index, nullptr);
}

ZrRouteSplit::Result ZrRouteSplit::Resume(const ZrWpts& route, int index, ZrGeoPoint place)
{
    return Rest(route, index, &place);
}
