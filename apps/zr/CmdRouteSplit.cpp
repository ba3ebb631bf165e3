// zr route split: several routes of one that is too long for a single dive.

#include "CmdRouteSplit.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliMessages.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliRoute.h"
#include "CliSignals.h"
#include "CliText.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/planning/ZrRouteSplit.h"
#include "ZrUtil/ZrWpts.h"

#include <QFileInfo>
#include <QJsonArray>

namespace {

struct Options : cli::RouteOptions
{
    std::string in;
    std::string hours;
    std::string km;
    std::string reserve;
    bool returnToStart = false;
    bool wholeLegs = false;
};

std::string CheckEndurance(const std::string& text)
{
    return cli::check_number(text, 1e-6, 1e6, "hours or kilometres");
}

std::string CheckReserve(const std::string& text)
{
    return cli::check_number(text, 0.0, 99.9, "percent");
}

/// "dives-2.gpx" of "dives.gpx", with as many digits as the last number has.
QString PartName(const QString& out, std::size_t number, std::size_t count)
{
    const QFileInfo info(out);
    const int digits = QString::number(count).size();
    const QString suffix = info.suffix();
    const QString stem = suffix.isEmpty() ? out : out.chopped(suffix.size() + 1);
    const QString name
        = stem + QLatin1Char('-') + QString::number(number).rightJustified(digits, QLatin1Char('0'));
    return suffix.isEmpty() ? name : name + QLatin1Char('.') + suffix;
}

ZrRouteSplit::Options Limits(const Options& options)
{
    ZrRouteSplit::Options limits;
    limits.maxSeconds = 3600.0 * cli::number(options.hours, limits.maxSeconds);
    limits.maxMetres = 1000.0 * cli::number(options.km, limits.maxMetres);
    limits.reserve = cli::number(options.reserve, 0.0) / 100.0;
    limits.returnToStart = options.returnToStart;
    limits.cutLegs = !options.wholeLegs;
    return limits;
}

/// Writes the parts. All places are looked at before the first one is written. Returns the exit code, and
/// complains unless it is 0.
int Write(const Options& options, const QString& in, ZrRouteSplit::Result& dives)
{
    const std::size_t count = dives.routes.size();
    std::vector<CliRouteTarget> targets(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (const int code = targets[i].Prepare(PartName(options.Out(), i + 1, count), options, {in}))
            return code;
    }
    QJsonArray parts;
    for (std::size_t i = 0; i < count; ++i) {
        ZrWpts& route = *dives.routes[i];
        route.UpdatePseudo();
        route.Recalc(true);
        if (const int code = targets[i].Write(route))
            return code;
        const ZrRoutePath path(route);
        if (!options.json) {
            CliOutput::Get().Line(
                QStringLiteral("%1, %2, %3")
                    .arg(targets[i].Text(cli::count(route)), cli::metres_text(path.Length()),
                        cli::duration_text(path.Duration())));
            continue;
        }
        QJsonObject part = targets[i].Json();
        part.insert(QStringLiteral("waypoints"), cli::json_count(cli::count(route)));
        part.insert(QStringLiteral("path_length"), cli::json_number(path.Length()));
        part.insert(QStringLiteral("path_duration"), cli::json_number(path.Duration()));
        parts << part;
    }
    if (options.json)
        CliOutput::Get().Json({{QStringLiteral("in"), in}, {QStringLiteral("routes"), parts}});
    return exDone;
}

int Run(const Options& options)
{
    const QString in = QString::fromStdString(options.in);
    if (options.hours.empty() && options.km.empty())
        return cli::fail(exUsage, QStringLiteral("One of --hours and --km must be given"));
    if (QFileInfo(options.Out()).fileName().isEmpty())
        return cli::fail(exBadOutput, options.Out() + QStringLiteral(": This names no file"));
    // A wrong ending is told before the work begins.
    CliRouteTarget target;
    cli::RouteOptions any = options;
    any.force = true;
    if (const int code = target.Prepare(PartName(options.Out(), 1, 1), any, {in}))
        return code;
    ZrWpts route;
    if (const int code = cli::read_route(in, route))
        return code;
    ZrRouteSplit::Result dives;
    {
        const cli::EndOnInterrupt stop;
        dives = ZrRouteSplit::Split(route, Limits(options));
    }
    if (!dives.IsOk())
        return cli::fail(exBadInput, in + QStringLiteral(": ") + dives.error);
    return Write(options, in, dives);
}

} // namespace

void AddRouteSplit(CLI::App& route, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(route, run, "split",
        "Make several routes of one that is too long for a single dive\n"
        "\n"
        "Each is as long as the endurance allows, over the turn arcs. They are written as "
        "OUT with -1, -2 ... before the ending. One of --hours and --km must be given.",
        "Units: hours and kilometres of a dive, the reserve in percent of both.\n"
        "\n"
        "Examples:\n"
        "  zr route split plan.json dive.json --hours 6 --reserve 20\n"
        "  zr route split plan.gpx dive.gpx --km 12 --return");
    cli::add_argument(*verb, "IN", options->in, "Route to read");
    cli::add_argument(*verb, "OUT", options->out, "Name for the files to write: dive.gpx gives dive-1.gpx");
    cli::add_value(*verb, "--hours", options->hours, "H", CheckEndurance, "Most hours of a dive");
    cli::add_value(*verb, "--km", options->km, "K", CheckEndurance, "Most kilometres of a dive");
    cli::add_value(*verb, "--reserve", options->reserve, "PCT", CheckReserve,
        "Percent of both that stay unused; 0 unless given");
    verb->add_flag("--return", options->returnToStart,
        "Each dive begins and ends at the first waypoint of the whole; both ways count");
    verb->add_flag("--whole-legs", options->wholeLegs, "Dives end at waypoints only");
    cli::add_route_options(*verb, *options);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
