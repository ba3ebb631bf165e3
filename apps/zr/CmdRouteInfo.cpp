// zr route info: how long a route is, how it turns, and what is in its waypoints.

#include "CmdRouteInfo.h"

#include "CliExit.h"
#include "CliFindings.h"
#include "CliHelp.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliRoute.h"
#include "CliSignals.h"
#include "CliTable.h"
#include "CliText.h"
#include "ZrKit/planning/ZrRouteCheck.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrUtil.h"
#include "ZrUtil/ZrWpts.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

struct Options
{
    std::string file;
    bool points = false;
    bool json = false;
};

/// A type of speed, and the preset that is its speed.
struct SpeedType
{
    eRouteSpeed type;
    const char* name;
};

constexpr SpeedType speedTypes[] = {
    {eRouteSpeedInherited, "inherited"},
    {eRouteSpeedSlow, "slow"},
    {eRouteSpeedMedium, "medium"},
    {eRouteSpeedFast, "fast"},
    {eRouteSpeedOwn, "own"},
};

/// Bounding box: degrees of the waypoints, and metres on the ground.
struct Box
{
    double south = 0.0;
    double west = 0.0;
    double north = 0.0;
    double east = 0.0;
    double width = 0.0; ///< east to west
    double height = 0.0; ///< north to south
};

/// All that is told about a route.
struct Facts
{
    QString path;
    ZrWpts route;
    ZrRoutePath way;
    std::vector<ZrRouteFinding> findings;
    Box box;

    Facts(const QString& file, const ZrWpts& from)
        : path(file)
        , route(from)
        , way(from)
        , findings(ZrRouteCheck::Run(from))
    {
        route.GetArea(box.south, box.west, box.north, box.east, true);
        Measure();
    }

    u64 Turns(bool fitting) const
    {
        return static_cast<u64>(
            std::count_if(way.Turns().begin(), way.Turns().end(), [fitting](const ZrRouteTurn& turn) {
                return turn.state != ZrRouteTurn::eNoTurn && (turn.state == ZrRouteTurn::eTurns) == fitting;
            }));
    }

    u64 Legs(eRouteSpeed type) const
    {
        return static_cast<u64>(std::count_if(way.Legs().begin(), way.Legs().end(),
            [type](const ZrRouteLeg& leg) { return leg.type == type; }));
    }

private:
    /// In the frame of the path, where the antimeridian is no seam.
    void Measure()
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        double left = nan;
        double right = nan;
        double bottom = nan;
        double top = nan;
        for (const ZrLocalPoint& point : way.Points()) {
            left = std::fmin(left, point.x);
            right = std::fmax(right, point.x);
            bottom = std::fmin(bottom, point.y);
            top = std::fmax(top, point.y);
        }
        box.width = way.IsTooWide() ? nan : right - left;
        box.height = way.IsTooWide() ? nan : top - bottom;
    }
};

QString Latin1(const char* text)
{
    return QString::fromLatin1(text);
}

const char* StateName(ZrRouteTurn::eState state)
{
    // In the order of eState.
    static const char* const names[] = {"none", "turns", "beyond-leg", "overlaps", "doubles-back"};
    return names[state];
}

/// The design's duration is -1 when the speed of the route is 0 or below.
double LegDuration(const ZrWpts& route)
{
    const double seconds = route.CalcDuration();
    return seconds < 0.0 ? std::numeric_limits<double>::quiet_NaN() : seconds;
}

QJsonArray WaypointsJson(const ZrWpts& route)
{
    QJsonArray array;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        ZrWpt wpt = *route.GetNext(pos);
        QJsonObject object;
        zr::ZrSetModule module(zr::ePersistStoring, object);
        ZrWpt::serialise(wpt, module);
        array << object;
    }
    return array;
}

QJsonArray LegsJson(const ZrRoutePath& way)
{
    QJsonArray array;
    for (const ZrRouteLeg& leg : way.Legs()) {
        array << QJsonObject{
            {QStringLiteral("from"), leg.from},
            {QStringLiteral("to"), leg.to},
            {QStringLiteral("direct"), cli::json_number(leg.direct)},
            {QStringLiteral("straight"), cli::json_number(leg.straight)},
            {QStringLiteral("arc"), cli::json_number(leg.arc)},
            {QStringLiteral("path_length"), cli::json_number(leg.length)},
            {QStringLiteral("speed"), cli::json_number(leg.speed)},
            {QStringLiteral("path_duration"), cli::json_number(leg.duration)},
            {QStringLiteral("speed_type"), Latin1(speedTypes[leg.type].name)},
            {QStringLiteral("speed_source"), Latin1(speedTypes[leg.source].name)},
        };
    }
    return array;
}

QJsonArray TurnsJson(const ZrRoutePath& way)
{
    QJsonArray array;
    for (std::size_t i = 0; i < way.Turns().size(); ++i) {
        const ZrRouteTurn& turn = way.Turns()[i];
        if (turn.state == ZrRouteTurn::eNoTurn)
            continue;
        array << QJsonObject{
            {QStringLiteral("index"), cli::json_count(i)},
            {QStringLiteral("state"), Latin1(StateName(turn.state))},
            {QStringLiteral("radius"), cli::json_number(turn.radius)},
            {QStringLiteral("deflection"), cli::json_number(ZrUtil::R2D(turn.deflection))},
            {QStringLiteral("reach"), cli::json_number(turn.reach)},
        };
    }
    return array;
}

QJsonArray SpeedTypesJson(const Facts& facts)
{
    QJsonArray array;
    for (const SpeedType& type : speedTypes) {
        const ZrRoutePath::Totals totals = facts.way.Total(type.type);
        array << QJsonObject{
            {QStringLiteral("speed_type"), Latin1(type.name)},
            {QStringLiteral("legs"), cli::json_count(facts.Legs(type.type))},
            {QStringLiteral("path_length"), cli::json_number(totals.length)},
            {QStringLiteral("path_duration"), cli::json_number(totals.duration)},
        };
    }
    return array;
}

/// The units of all keys that have one, wherever they stand.
QJsonObject UnitsJson()
{
    static const struct
    {
        const char* unit;
        std::vector<const char*> keys;
    } units[] = {
        {"degrees", {"lat", "long", "head", "south", "west", "north", "east", "deflection"}},
        {"m",
            {"x", "y", "r", "q", "alt", "RICX", "RICY", "TP1X", "TP1Y", "TP1Q", "TP2X", "TP2Y", "TP2Q",
                "length", "width", "height", "leg_length", "path_length", "direct", "straight", "arc",
                "radius", "reach"}},
        {"m/s", {"speed", "slow_speed", "medium_speed", "fast_speed"}},
        {"s", {"leg_duration", "path_duration"}},
        {"s since 1970-01-01T00:00:00Z", {"time"}},
        {"rad", {"RIT"}},
    };

    QJsonObject object;
    for (const auto& unit : units) {
        for (const char* key : unit.keys)
            object.insert(Latin1(key), Latin1(unit.unit));
    }
    return object;
}

void PrintJson(const Facts& facts)
{
    const ZrWpts& route = facts.route;
    CliOutput::Get().Json({
        {QStringLiteral("path"), facts.path},
        {QStringLiteral("prefix"), route.prefix},
        {QStringLiteral("linked"), route.linked},
        {QStringLiteral("closed"), route.closed},
        {QStringLiteral("speed"), cli::json_number(route.speed)},
        {QStringLiteral("slow_speed"), cli::json_number(static_cast<double>(ZrWpts::s_msSlow))},
        {QStringLiteral("medium_speed"), cli::json_number(static_cast<double>(ZrWpts::s_msMedium))},
        {QStringLiteral("fast_speed"), cli::json_number(static_cast<double>(ZrWpts::s_msFast))},
        {QStringLiteral("waypoint_count"), cli::json_count(cli::count(route))},
        {QStringLiteral("leg_length"), cli::json_number(route.CalcRange())},
        {QStringLiteral("leg_duration"), cli::json_number(LegDuration(route))},
        {QStringLiteral("path_length"), cli::json_number(facts.way.Length())},
        {QStringLiteral("path_duration"), cli::json_number(facts.way.Duration())},
        {QStringLiteral("speed_types"), SpeedTypesJson(facts)},
        {QStringLiteral("area"),
            QJsonObject{
                {QStringLiteral("south"), cli::json_number(facts.box.south)},
                {QStringLiteral("west"), cli::json_number(facts.box.west)},
                {QStringLiteral("north"), cli::json_number(facts.box.north)},
                {QStringLiteral("east"), cli::json_number(facts.box.east)},
                {QStringLiteral("width"), cli::json_number(facts.box.width)},
                {QStringLiteral("height"), cli::json_number(facts.box.height)},
            }},
        {QStringLiteral("turn_count"), cli::json_count(facts.Turns(true))},
        {QStringLiteral("bad_turn_count"), cli::json_count(facts.Turns(false))},
        {QStringLiteral("turns"), TurnsJson(facts.way)},
        {QStringLiteral("legs"), LegsJson(facts.way)},
        {QStringLiteral("finding_count"), cli::json_count(facts.findings.size())},
        {QStringLiteral("findings"), cli::findings_json(facts.findings)},
        {QStringLiteral("waypoints"), WaypointsJson(route)},
        {QStringLiteral("units"), UnitsJson()},
    });
}

QString KindText(const ZrWpts& route)
{
    if (!route.linked)
        return QStringLiteral("a set of markers, lengths as if it was run");
    return route.closed ? QStringLiteral("a closed route") : QStringLiteral("an open route");
}

QString SpeedText(double speed)
{
    return std::isfinite(speed) ? QString::number(speed, 'g', 6) + QStringLiteral(" m/s")
                                : QStringLiteral("-");
}

QString DegreesText(double degrees)
{
    return std::isfinite(degrees) ? QString::number(degrees, 'f', 7) : QStringLiteral("-");
}

QString TurnsText(const Facts& facts)
{
    const u64 bad = facts.Turns(false);
    const QString good = QString::number(facts.Turns(true));
    return bad == 0 ? good : good + QStringLiteral(", and %1 that cannot be run").arg(bad);
}

void PrintTable(const CliTable& table)
{
    CliOutput::Get().Line(QString());
    for (const QString& line : table.Lines())
        CliOutput::Get().Line(line);
}

void PrintSpeedTypes(const Facts& facts)
{
    CliTable table({QStringLiteral("Speed"), QStringLiteral(">Legs"), QStringLiteral(">Path"),
        QStringLiteral(">Duration")});
    for (const SpeedType& type : speedTypes) {
        const u64 legs = facts.Legs(type.type);
        if (legs == 0)
            continue;
        const ZrRoutePath::Totals totals = facts.way.Total(type.type);
        table.Row({Latin1(type.name), QString::number(legs), cli::metres_text(totals.length),
            cli::duration_text(totals.duration)});
    }
    PrintTable(table);
}

/// Metres of the path up to a waypoint, the turn there included.
double DistanceTo(std::size_t index, const ZrRoutePath& way)
{
    if (index == 0)
        return 0.0;
    const ZrRouteLeg& leg = way.Legs()[index - 1];
    return leg.q + leg.length;
}

void PrintPoints(const Facts& facts)
{
    CliTable table({QStringLiteral(">Index"), QStringLiteral("Name"), QStringLiteral(">Latitude"),
        QStringLiteral(">Longitude"), QStringLiteral(">z"), QStringLiteral(">Radius"), QStringLiteral("Turn"),
        QStringLiteral(">Speed"), QStringLiteral(">Path")});
    std::size_t i = 0;
    for (ZrListPos* pos = facts.route.GetHeadPos(); pos; ++i) {
        const ZrWpt& wpt = *facts.route.GetNext(pos);
        table.Row({QString::number(i), wpt.Name(), DegreesText(wpt.lat), DegreesText(wpt.lng),
            QString::number(wpt.z, 'g', 6), QString::number(wpt.r, 'g', 6),
            Latin1(StateName(facts.way.Turns()[i].state)), QString::number(wpt.speed, 'g', 6),
            cli::metres_text(DistanceTo(i, facts.way))});
    }
    PrintTable(table);
}

void PrintText(const Facts& facts, bool points)
{
    const ZrWpts& route = facts.route;
    cli::print_field("Route", facts.path);
    if (!route.prefix.isEmpty())
        cli::print_field("Prefix", route.prefix);
    cli::print_field("Kind", KindText(route));
    cli::print_field("Waypoints", QString::number(cli::count(route)));
    cli::print_field("Legs",
        QStringLiteral("%1 from point to point, %2")
            .arg(cli::metres_text(route.CalcRange()), cli::duration_text(LegDuration(route))));
    cli::print_field("Path",
        QStringLiteral("%1 over the turn arcs, %2")
            .arg(cli::metres_text(facts.way.Length()), cli::duration_text(facts.way.Duration())));
    cli::print_field("Speed", SpeedText(route.speed));
    cli::print_field("Area",
        QStringLiteral("latitude %1 to %2, longitude %3 to %4")
            .arg(DegreesText(facts.box.south), DegreesText(facts.box.north), DegreesText(facts.box.west),
                DegreesText(facts.box.east)));
    cli::print_field("Size",
        QStringLiteral("%1 west to east, %2 south to north")
            .arg(cli::metres_text(facts.box.width), cli::metres_text(facts.box.height)));
    cli::print_field("Turns", TurnsText(facts));
    cli::print_field("Findings", cli::findings_text(facts.findings));
    if (!facts.way.Legs().empty())
        PrintSpeedTypes(facts);
    if (points)
        PrintPoints(facts);
}

int Run(const Options& options)
{
    const QString path = QString::fromStdString(options.file);
    ZrWpts route;
    if (const int code = cli::read_route(path, route))
        return code;
    const auto look = [&] {
        const cli::EndOnInterrupt stop;
        return Facts(path, route);
    };
    const Facts facts = look();
    if (options.json)
        PrintJson(facts);
    else
        PrintText(facts, options.points);
    return exDone;
}

} // namespace

void AddRouteInfo(CLI::App& route, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(route, run, "info",
        "Summarise a route: waypoints, length, duration, area, turns, findings\n"
        "\n"
        "Legs go straight from waypoint to waypoint on a sphere, as applications count "
        "them, without the leg that closes a closed route; the path is what a vehicle "
        "makes: over the turn arcs, that leg included. What is wrong is counted; zr route "
        "check lists it.",
        "Units: positions are degrees, lengths metres, speeds m/s. The JSON object names\n"
        "its units under \"units\"; each waypoint has all its fields by their settings\n"
        "keys. Waypoints are counted from 0.\n"
        "\n"
        "Examples:\n"
        "  zr route info plan.gpx\n"
        "  zr route info plan.json --points\n"
        "  zr route info plan.json --json");
    cli::add_argument(*verb, "FILE", options->file, "Route to read");
    verb->add_flag("--points", options->points, "List the waypoints, too");
    verb->add_flag("--json", options->json, "Print one JSON object, with the waypoints");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
