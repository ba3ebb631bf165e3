#include "ZrKit/planning/ZrRouteCheck.h"

#include "ZrKit/planning/ZrAreaCheck.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrUtil/ZrUtil.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

constexpr double northOfGrid = 84.0; // degrees; UTM ends there
constexpr double southOfGrid = -80.0;
constexpr double coincidence = 0.01; // metres

QString Metres(double metres)
{
    return QString::number(metres, 'f', 1) + QStringLiteral(" m");
}

QString Number(double value)
{
    return QString::number(value, 'g', 9);
}

bool IsSpeed(double speed)
{
    return std::isfinite(speed) && speed > 0.0;
}

/// Number of the UTM zone, from 1, as `ZrProj::SetupUTM` chooses it.
int Zone(double lng)
{
    return static_cast<int>(std::fmod(std::floor((lng + 180.0) / 6.0), 60.0)) + 1;
}

QString ZoneName(const ZrWpt& wpt)
{
    if (!ZrGeoPoint{wpt.lat, wpt.lng}.IsValid())
        return QStringLiteral("unknown");
    return QString::number(Zone(wpt.lng)) + QLatin1Char(wpt.lat < 0.0 ? 'S' : 'N');
}

/// The checks that concern the waypoints and their order; each appends to the findings.
class PointChecks
{
public:
    PointChecks(const ZrWpts& route, const ZrRoutePath& path, const ZrRouteSpeeds& speeds,
        std::vector<ZrRouteFinding>& findings, const std::atomic<bool>* cancel)
        : m_route(route)
        , m_path(path)
        , m_speeds(speeds)
        , m_findings(findings)
        , m_cancel(cancel)
    {
        for (ZrListPos* pos = route.GetHeadPos(); pos;)
            m_wpts.push_back(route.GetNext(pos));
    }

    void Run()
    {
        CheckRoute();
        CheckRouteSpeed();
        for (std::size_t i = 0; i < m_wpts.size(); ++i) {
            if (m_cancel && *m_cancel)
                return;
            CheckPosition(i);
            CheckSpeed(i);
            CheckTurn(i);
        }
        for (const ZrRouteLeg& leg : m_path.Legs()) {
            if (m_cancel && *m_cancel)
                return;
            CheckLeg(leg);
        }
    }

private:
    using eSeverity = ZrRouteFinding::eSeverity;
    using eCode = ZrRouteFinding::eCode;

    static ZrGeoPoint PositionOf(const ZrWpt& wpt) { return {wpt.lat, wpt.lng}; }

    QString NameOf(std::size_t i) const { return ZrAreaCheck::NameOf(*m_wpts[i], static_cast<int>(i)); }

    void Add(eSeverity severity, eCode code, const QString& text)
    {
        m_findings.push_back({severity, code, -1, {}, text, {}});
    }

    void Add(eSeverity severity, eCode code, std::size_t i, const QString& text)
    {
        const ZrWpt& wpt = *m_wpts[i];
        m_findings.push_back({severity, code, static_cast<int>(i), wpt.uuid, text, PositionOf(wpt)});
    }

    void CheckRoute()
    {
        if (m_wpts.empty()) {
            Add(eSeverity::eError, eCode::eEmpty,
                QCoreApplication::translate("ZrRouteCheck", "The route has no waypoint."));
            return;
        }
        if (!m_route.linked)
            Add(eSeverity::eInfo, eCode::eNotLinked,
                QCoreApplication::translate("ZrRouteCheck",
                    "The points are not linked: a set of markers, checked as if it was to be run."));
        if (m_wpts.size() == 1)
            Add(eSeverity::eWarning, eCode::eSinglePoint, 0,
                QCoreApplication::translate("ZrRouteCheck", "%1 is the only waypoint: there is no leg.")
                    .arg(NameOf(0)));
        if (m_path.IsTooWide())
            Add(eSeverity::eError, eCode::eTooWide,
                QCoreApplication::translate("ZrRouteCheck",
                    "The route goes more than %1 degrees of longitude to a side of its middle, or beyond "
                    "%2 degrees of latitude: turns, lengths and areas are not checked.")
                    .arg(ZrRoutePath::MaxSpan)
                    .arg(ZrRoutePath::MaxLatitude));
    }

    QString PresetProblem(int type) const
    {
        const float presets[] = {m_speeds.slow, m_speeds.medium, m_speeds.fast};
        const char* const names[] = {"slow", "medium", "fast"};
        if (type < 1 || type > 3 || IsSpeed(static_cast<double>(presets[type - 1])))
            return {};
        return QCoreApplication::translate("ZrRouteCheck", "the %1 speed, which is %2 m/s")
            .arg(QLatin1String(names[type - 1]), Number(static_cast<double>(presets[type - 1])));
    }

    void CheckRouteSpeed()
    {
        QString problem = PresetProblem(m_route.speedType);
        if ((m_route.speedType < 1 || m_route.speedType > 3) && !IsSpeed(m_route.speed))
            problem
                = QCoreApplication::translate("ZrRouteCheck", "a speed of %1 m/s").arg(Number(m_route.speed));
        if (!problem.isEmpty())
            Add(eSeverity::eError, eCode::eBadSpeed,
                QCoreApplication::translate(
                    "ZrRouteCheck", "The route has %1: no leg that inherits it has a duration.")
                    .arg(problem));
    }

    void CheckPosition(std::size_t i)
    {
        const ZrWpt& wpt = *m_wpts[i];
        if (!std::isfinite(wpt.lat) || !std::isfinite(wpt.lng))
            Add(eSeverity::eError, eCode::eNoPosition, i,
                QCoreApplication::translate("ZrRouteCheck", "%1 has no position: latitude %2, longitude %3.")
                    .arg(NameOf(i), Number(wpt.lat), Number(wpt.lng)));
        else if (!PositionOf(wpt).IsValid())
            Add(eSeverity::eError, eCode::ePositionOutOfRange, i,
                QCoreApplication::translate("ZrRouteCheck",
                    "%1 is not on the earth: latitude %2 degrees (at most 90), longitude %3 degrees "
                    "(at most 180).")
                    .arg(NameOf(i), Number(wpt.lat), Number(wpt.lng)));
        else if (wpt.lat > northOfGrid || wpt.lat < southOfGrid)
            Add(eSeverity::eWarning, eCode::eBeyondGrid, i,
                QCoreApplication::translate("ZrRouteCheck",
                    "%1 is at latitude %2 degrees, where there is no UTM grid (84 north to 80 south).")
                    .arg(NameOf(i), Number(wpt.lat)));
    }

    void CheckSpeed(std::size_t i)
    {
        const ZrWpt& wpt = *m_wpts[i];
        if (wpt.spdType == 0)
            return;
        const bool used = i + 1 < m_wpts.size() || m_route.closed;
        const eSeverity severity = used ? eSeverity::eError : eSeverity::eWarning;
        const QString preset = PresetProblem(wpt.spdType);
        if (!preset.isEmpty())
            Add(severity, eCode::eBadSpeed, i,
                QCoreApplication::translate("ZrRouteCheck", "%1 asks for %2.").arg(NameOf(i), preset));
        else if (wpt.spdType < 0)
            Add(severity, eCode::eBadSpeed, i,
                QCoreApplication::translate("ZrRouteCheck", "%1 has the unknown speed type %2.")
                    .arg(NameOf(i), QString::number(wpt.spdType)));
        else if (wpt.spdType > 3 && !IsSpeed(wpt.speed))
            Add(severity, eCode::eBadSpeed, i,
                QCoreApplication::translate("ZrRouteCheck", "%1 has a speed of its own of %2 m/s.")
                    .arg(NameOf(i), Number(wpt.speed)));
    }

    void CheckTurn(std::size_t i)
    {
        const ZrWpt& wpt = *m_wpts[i];
        if (!std::isfinite(wpt.r)) {
            Add(eSeverity::eError, eCode::eBadRadius, i,
                QCoreApplication::translate("ZrRouteCheck", "%1 has a turn radius of %2 m.")
                    .arg(NameOf(i), Number(wpt.r)));
            return;
        }
        const ZrRouteTurn& turn = m_path.Turns()[i];
        const bool isEnd = i == 0 || i + 1 == m_wpts.size();
        if (isEnd && wpt.r != 0.0)
            Add(eSeverity::eInfo, eCode::eRadiusAtEnd, i,
                QCoreApplication::translate("ZrRouteCheck",
                    "%1 is an end of the route and does not turn; its radius of %2 has no effect.")
                    .arg(NameOf(i), Metres(std::fabs(wpt.r))));
        if (turn.state == ZrRouteTurn::eDoublesBack)
            Add(eSeverity::eError, eCode::eDoublesBack, i,
                QCoreApplication::translate(
                    "ZrRouteCheck", "The way doubles back at %1: a turn with a radius of %2 is not possible.")
                    .arg(NameOf(i), Metres(turn.radius)));
        else if (turn.state == ZrRouteTurn::eBeyondLeg)
            AddBeyondLeg(i);
        else if (turn.overlapsNext)
            AddOverlap(i);
    }

    void AddBeyondLeg(std::size_t i)
    {
        const ZrRouteTurn& turn = m_path.Turns()[i];
        const double before = m_path.Legs()[i - 1].direct;
        const double after = m_path.Legs()[i].direct;
        const bool isFirst = before <= after;
        Add(eSeverity::eError, eCode::eTurnBeyondLeg, i,
            QCoreApplication::translate("ZrRouteCheck",
                "The turn at %1 (%2 degrees with a radius of %3) needs %4 of the leg %5 %6, which is %7 "
                "long.")
                .arg(NameOf(i), QString::number(std::fabs(ZrUtil::R2D(turn.deflection)), 'f', 1),
                    Metres(turn.radius), Metres(turn.reach),
                    isFirst ? QStringLiteral("from") : QStringLiteral("to"), NameOf(isFirst ? i - 1 : i + 1),
                    Metres(isFirst ? before : after)));
    }

    void AddOverlap(std::size_t i)
    {
        const ZrRouteTurn& turn = m_path.Turns()[i];
        const ZrRouteTurn& next = m_path.Turns()[i + 1];
        Add(eSeverity::eError, eCode::eTurnsOverlap, i,
            QCoreApplication::translate("ZrRouteCheck",
                "The turns at %1 and %2 need %3 and %4 of the leg between them, which is %5 long.")
                .arg(NameOf(i), NameOf(i + 1), Metres(turn.reach), Metres(next.reach),
                    Metres(m_path.Legs()[i].direct)));
    }

    void CheckLeg(const ZrRouteLeg& leg)
    {
        const auto i = static_cast<std::size_t>(leg.from);
        const auto j = static_cast<std::size_t>(leg.to);
        const ZrWpt& from = *m_wpts[i];
        const ZrWpt& to = *m_wpts[j];
        if (!PositionOf(from).IsValid() || !PositionOf(to).IsValid())
            return;
        if (leg.direct < coincidence || PositionOf(from) == PositionOf(to))
            Add(eSeverity::eWarning, eCode::eCoincident, j,
                QCoreApplication::translate(
                    "ZrRouteCheck", "%1 is at the place of %2: the leg between them has no length.")
                    .arg(NameOf(j), NameOf(i)));
        if (std::fabs(to.lng - from.lng) > 180.0)
            Add(eSeverity::eWarning, eCode::eAntimeridianCrossed, i,
                QCoreApplication::translate("ZrRouteCheck",
                    "The leg from %1 to %2 crosses the antimeridian, from UTM zone %3 to %4; grid "
                    "positions are those of zone %5.")
                    .arg(NameOf(i), NameOf(j), ZoneName(from), ZoneName(to), ZoneName(*m_wpts.front())));
        else if (ZoneName(from) != ZoneName(to))
            Add(eSeverity::eWarning, eCode::eZoneCrossed, i,
                QCoreApplication::translate("ZrRouteCheck",
                    "The leg from %1 to %2 goes from UTM zone %3 to %4; grid positions are those of "
                    "zone %5.")
                    .arg(NameOf(i), NameOf(j), ZoneName(from), ZoneName(to), ZoneName(*m_wpts.front())));
    }

    const ZrWpts& m_route;
    const ZrRoutePath& m_path;
    ZrRouteSpeeds m_speeds;
    std::vector<ZrRouteFinding>& m_findings;
    const std::atomic<bool>* m_cancel;
    std::vector<const ZrWpt*> m_wpts;
};

} // namespace

std::vector<ZrRouteFinding> ZrRouteCheck::Run(const ZrWpts& route, const Options& options)
{
    std::vector<ZrRouteFinding> findings;
    // Those of the process are not even looked at where others are given: another thread may change them.
    const ZrRouteSpeeds speeds = options.speeds ? *options.speeds : ZrRouteSpeeds();
    const ZrRoutePath path(route, speeds);
    PointChecks(route, path, speeds, findings, options.cancel).Run();

    ZrAreaCheck areas(route, path, options.margin, findings, options.cancel);
    const auto isCancelled = [&options] { return options.cancel && *options.cancel; };
    for (std::size_t i = 0; i < options.fences.size() && !isCancelled(); ++i)
        areas.CheckFence(options.fences[i], static_cast<int>(i));
    for (std::size_t i = 0; i < options.noGo.size() && !isCancelled(); ++i)
        areas.CheckNoGo(options.noGo[i], static_cast<int>(i));

    std::stable_sort(findings.begin(), findings.end(),
        [](const ZrRouteFinding& a, const ZrRouteFinding& b) { return a.index < b.index; });
    return findings;
}

std::vector<ZrRouteFinding> ZrRouteCheck::Run(const ZrWpts& route)
{
    return Run(route, Options());
}
