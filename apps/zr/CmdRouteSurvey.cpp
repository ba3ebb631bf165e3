// zr route survey: lines over an area, or along a guide, as a route.

#include "CmdRouteSurvey.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliSignals.h"
#include "CliSurvey.h"
#include "CliText.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/planning/ZrSurveyCorridor.h"
#include "ZrKit/planning/ZrSurveyPattern.h"
#include "ZrUtil/ZrWpts.h"

#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>

namespace {

/// A survey as planned, and what it covers.
struct Survey
{
    ZrSurveyPlan plan;
    QString name; ///< of the area or the guide
};

QString NameOf(const QString& path)
{
    return QFileInfo(path).completeBaseName();
}

/// All positions of a file.
std::vector<ZrGeoPoint> PointsOf(const ZrGeoShapes& shapes)
{
    std::vector<ZrGeoPoint> points;
    for (const ZrShapePoint& point : shapes.points)
        points.push_back(point.position);
    for (const ZrShapeLine& line : shapes.lines) {
        for (const ZrShapePoint& point : line.points)
            points.push_back(point.position);
    }
    for (const ZrArea& area : shapes.areas)
        points.insert(points.end(), area.ring.begin(), area.ring.end());
    return points;
}

/// The rectangle, north up, around \p points, wider by \p margin metres on all sides.
ZrArea BoxAround(const std::vector<ZrGeoPoint>& points, double margin)
{
    const ZrLocalFrame frame = ZrLocalFrame::Around(points);
    const ZrLocalPoint first = frame.ToLocal(points.front());
    ZrLocalPoint low = first;
    ZrLocalPoint high = first;
    for (const ZrGeoPoint& point : points) {
        const ZrLocalPoint at = frame.ToLocal(point);
        low = {std::min(low.x, at.x), std::min(low.y, at.y)};
        high = {std::max(high.x, at.x), std::max(high.y, at.y)};
    }
    low = {low.x - margin, low.y - margin};
    high = {high.x + margin, high.y + margin};
    ZrArea area;
    for (const ZrLocalPoint corner : {low, ZrLocalPoint{high.x, low.y}, high, ZrLocalPoint{low.x, high.y}})
        area.ring.push_back(frame.ToGeo(corner));
    return area;
}

/// Returns the exit code, and complains unless it is 0, as all functions below do.
int ReadBox(const CliSurvey& options, const QString& in, ZrArea& area)
{
    if (const int code = cli::check_input(in))
        return code;
    ZrRouteFile file;
    ZrGeoShapes shapes;
    bool read = false;
    {
        const cli::EndOnInterrupt stop;
        read = file.ReadShapes(in, shapes);
    }
    if (!read)
        return cli::fail(exBadInput, file.Error());
    cli::warn(in, file.Warnings());
    std::vector<ZrGeoPoint> points = PointsOf(shapes);
    const auto isBad = [](const ZrGeoPoint& point) { return !point.IsValid(); };
    points.erase(std::remove_if(points.begin(), points.end(), isBad), points.end());
    if (points.empty())
        return cli::fail(exBadInput, in + QStringLiteral(": no positions in it"));
    area = BoxAround(points, cli::number(options.box, 0.0));
    area.name = NameOf(in);
    return exDone;
}

int ReadArea(const CliSurvey& options, const QString& in, ZrArea& area)
{
    std::vector<ZrArea> areas;
    if (const int code = cli::read_areas(in, areas))
        return code;
    const QString wanted = QString::fromStdString(options.area);
    QStringList names;
    for (const ZrArea& candidate : areas) {
        names << QLatin1Char('"') + candidate.name + QLatin1Char('"');
        if (candidate.name == wanted || (wanted.isEmpty() && areas.size() == 1)) {
            area = candidate;
            return exDone;
        }
    }
    const QString list = names.join(QStringLiteral(", "));
    if (wanted.isEmpty())
        return cli::fail(
            exUsage, QStringLiteral("%1: There are several areas; --area chooses one of %2").arg(in, list));
    return cli::fail(
        exUsage, QStringLiteral("%1: There is no area \"%2\"; there is %3").arg(in, wanted, list));
}

int PlanPattern(const CliSurvey& options, const QString& in, Survey& survey)
{
    ZrArea area;
    if (const int code = options.box.empty() ? ReadArea(options, in, area) : ReadBox(options, in, area))
        return code;
    ZrSurveyPattern pattern;
    bool made = false;
    {
        const cli::EndOnInterrupt stop;
        made = pattern.Make(area, options.PatternSettings());
    }
    if (!made)
        return cli::fail(exBadInput, in + QStringLiteral(": ") + pattern.Error());
    survey = {pattern.Plan(), area.name};
    return exDone;
}

int PlanCorridor(const CliSurvey& options, const QString& in, Survey& survey)
{
    ZrWpts guide;
    if (const int code = cli::read_route(in, guide))
        return code;
    std::vector<ZrGeoPoint> points;
    for (ZrListPos* pos = guide.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *guide.GetNext(pos);
        points.push_back({wpt.lat, wpt.lng});
    }
    ZrSurveyCorridor corridor;
    bool made = false;
    {
        const cli::EndOnInterrupt stop;
        made = corridor.Make(points, options.CorridorSettings());
    }
    if (!made)
        return cli::fail(exBadInput, in + QStringLiteral(": ") + corridor.Error());
    survey = {corridor.Plan(), guide.prefix.isEmpty() ? NameOf(in) : guide.prefix};
    return exDone;
}

void PrintText(
    const Survey& survey, const ZrWpts& route, const ZrRoutePath& path, const CliRouteTarget& target)
{
    const ZrSurveyPlan& plan = survey.plan;
    cli::print_field("Survey", route.prefix);
    cli::print_field("Heading", QString::number(plan.heading, 'f', 2) + QStringLiteral(" degrees"));
    cli::print_field("Lines",
        QStringLiteral("%1, together %2").arg(plan.lines.size()).arg(cli::metres_text(plan.lineLength)));
    cli::print_field("Path",
        QStringLiteral("%1 over the turn arcs, %2")
            .arg(cli::metres_text(path.Length()), cli::duration_text(path.Duration())));
    cli::print_field("Findings", QString::number(plan.findings.size()));
    cli::print_field("Written", target.Text(cli::count(route)));
}

void PrintJson(const CliSurvey& options, const Survey& survey, const ZrWpts& route, const ZrRoutePath& path,
    const CliRouteTarget& target)
{
    QJsonArray findings;
    for (const ZrSurveyFinding& finding : survey.plan.findings)
        findings << finding.text;
    QJsonObject result = target.Json();
    result.insert(QStringLiteral("in"), QString::fromStdString(options.in));
    result.insert(QStringLiteral("name"), route.prefix);
    result.insert(QStringLiteral("heading"), survey.plan.heading);
    result.insert(QStringLiteral("lines"), cli::json_count(survey.plan.lines.size()));
    result.insert(QStringLiteral("line_length"), survey.plan.lineLength);
    result.insert(QStringLiteral("waypoints"), cli::json_count(cli::count(route)));
    result.insert(QStringLiteral("path_length"), cli::json_number(path.Length()));
    result.insert(QStringLiteral("path_duration"), cli::json_number(path.Duration()));
    result.insert(QStringLiteral("grid_id"), route.GetHead()->gridId.toString());
    result.insert(QStringLiteral("findings"), findings);
    CliOutput::Get().Json(result);
}

int Run(const CliSurvey& options)
{
    const QString in = QString::fromStdString(options.in);
    if (options.corridor && options.CorridorSettings().linesLeft == 0
        && options.CorridorSettings().linesRight == 0 && options.noCentre)
        return cli::fail(exUsage, QStringLiteral("There is no line to run: --left 0 --right 0 --no-centre"));
    CliRouteTarget target;
    if (const int code = target.Prepare(options.Out(), options, {in}))
        return code;
    Survey survey;
    if (const int code
        = options.corridor ? PlanCorridor(options, in, survey) : PlanPattern(options, in, survey))
        return code;
    ZrWpts route;
    route.linked = true;
    route.prefix = options.name.empty() ? survey.name : QString::fromStdString(options.name);
    survey.plan.AppendTo(route);
    if (const int code = target.Write(route))
        return code;
    for (const ZrSurveyFinding& finding : survey.plan.findings)
        cli::complain(finding.text);
    const ZrRoutePath path(route);
    if (options.json)
        PrintJson(options, survey, route, path, target);
    else
        PrintText(survey, route, path, target);
    return exDone;
}

} // namespace

void AddRouteSurvey(CLI::App& route, CliRun& run)
{
    const auto options = std::make_shared<CliSurvey>();
    CLI::App* verb = cli::add_verb(route, run, "survey",
        "Plan survey lines over an area, or along a guide\n"
        "\n"
        "IN holds the area: a polygon in GeoJSON or KML, or a route, a track or a list of "
        "positions whose points are its corners. With --corridor it holds the line that "
        "is followed. Turns that the vehicle cannot make are told on standard error.",
        "Units: lengths in metres, headings in degrees true, speeds in m/s. OUT is a\n"
        "route that is linked, its waypoints named after the lines: \"L1 S\" is the start\n"
        "of line 1, \"L1 E\" its end, \"L1 T1\" a turn behind it, \"X1 S\" a line across.\n"
        "\n"
        "Examples:\n"
        "  zr route survey harbour.geojson plan.json --spacing 40 --turn-radius 15\n"
        "  zr route survey track.gpx plan.gpx --box 100 --heading 90 --alternate 20\n"
        "  zr route survey --corridor cable.kml plan.gpx --left 2 --right 2 --spacing 25");
    options->AddTo(*verb);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
