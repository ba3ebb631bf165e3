// zr route resume: the rest of a route that was broken off.

#include "CmdRouteResume.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliMessages.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliRoute.h"
#include "CliText.h"
#include "CliTypes.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/planning/ZrRouteSplit.h"
#include "ZrUtil/ZrWpts.h"

#include <limits>

namespace {

struct Options : cli::RouteOptions
{
    std::string in;
    std::string from;
    std::string at;
};

/// The position of "50.1,-4.2"; not valid when it is none.
ZrGeoPoint ParsePlace(const std::string& text)
{
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos)
        return {};
    const std::string lat = text.substr(0, comma);
    const std::string lng = text.substr(comma + 1);
    if (!cli::check_number(lat, -90.0, 90.0, "degrees").empty()
        || !cli::check_number(lng, -180.0, 180.0, "degrees").empty())
        return {};
    return {cli::number(lat, 0.0), cli::number(lng, 0.0)};
}

std::string CheckPlace(const std::string& text)
{
    if (ParsePlace(text).IsValid())
        return {};
    return "\"" + text + "\" is no position: latitude and longitude in degrees, as in 50.1,-4.2";
}

int Run(const Options& options)
{
    const QString in = QString::fromStdString(options.in);
    CliRouteTarget target;
    if (const int code = target.Prepare(options.Out(), options, {in}))
        return code;
    ZrWpts route;
    if (const int code = cli::read_route(in, route))
        return code;
    const u64 from = std::stoull(options.from);
    if (from >= cli::count(route)) {
        return cli::fail(exUsage,
            QStringLiteral("There is no waypoint %1; the last one is %2")
                .arg(from)
                .arg(cli::count(route) - 1));
    }
    const int index = static_cast<int>(from);
    const ZrRouteSplit::Result rest = options.at.empty()
        ? ZrRouteSplit::Resume(route, index)
        : ZrRouteSplit::Resume(route, index, ParsePlace(options.at));
    if (!rest.IsOk())
        return cli::fail(exBadInput, in + QStringLiteral(": ") + rest.error);
    ZrWpts& made = *rest.routes.front();
    made.UpdatePseudo();
    made.Recalc(true);
    if (const int code = target.Write(made))
        return code;
    const ZrRoutePath path(made);
    if (!options.json) {
        CliOutput::Get().Line(QStringLiteral("%1, %2, %3")
                                  .arg(target.Text(cli::count(made)), cli::metres_text(path.Length()),
                                      cli::duration_text(path.Duration())));
        return exDone;
    }
    QJsonObject result = target.Json();
    result.insert(QStringLiteral("in"), in);
    result.insert(QStringLiteral("from"), index);
    result.insert(QStringLiteral("waypoints"), cli::json_count(cli::count(made)));
    result.insert(QStringLiteral("path_length"), cli::json_number(path.Length()));
    result.insert(QStringLiteral("path_duration"), cli::json_number(path.Duration()));
    CliOutput::Get().Json(result);
    return exDone;
}

} // namespace

void AddRouteResume(CLI::App& route, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(route, run, "resume",
        "Write the rest of a route that was broken off\n"
        "\n"
        "It begins at a waypoint, or, with --at, at a place on the leg behind that "
        "waypoint.",
        "Units: waypoints are counted from 0, as zr route info lists them; positions\n"
        "are degrees, lengths metres.\n"
        "\n"
        "Examples:\n"
        "  zr route resume plan.json rest.json --from 12\n"
        "  zr route resume plan.json rest.json --from 12 --at 50.1003,-4.2017");
    cli::add_argument(*verb, "IN", options->in, "Route to read");
    cli::add_argument(*verb, "OUT", options->out, "File to write");
    cli::add_value(*verb, "--from", options->from, "N", cli::check_count,
        "The waypoint to begin at, or the leg that begins there")
        ->required();
    cli::add_value(*verb, "--at", options->at, "LAT,LONG", CheckPlace, "Where on that leg to begin");
    cli::add_route_options(*verb, *options);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
