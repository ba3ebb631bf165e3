// zr route convert: a route in another form.

#include "CmdRouteConvert.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliOutput.h"
#include "CliRoute.h"
#include "CliText.h"
#include "ZrUtil/ZrWpts.h"

namespace {

struct Options : cli::RouteOptions
{
    std::string in;
};

int Run(const Options& options)
{
    const QString in = QString::fromStdString(options.in);
    CliRouteTarget target;
    if (const int code = target.Prepare(options.Out(), options, {in}))
        return code;
    ZrWpts route;
    if (const int code = cli::read_route(in, route))
        return code;
    if (const int code = target.Write(route))
        return code;
    if (!options.json) {
        CliOutput::Get().Line(target.Text(cli::count(route)));
        return exDone;
    }
    QJsonObject result = target.Json();
    result.insert(QStringLiteral("in"), in);
    result.insert(QStringLiteral("waypoints"), cli::json_count(cli::count(route)));
    CliOutput::Get().Json(result);
    return exDone;
}

} // namespace

void AddRouteConvert(CLI::App& route, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(route, run, "convert",
        "Write a route in another form\n"
        "\n"
        "The form of IN is told by its content, that of OUT by its ending, unless --to "
        "gives it: .json the settings of applications, .xml their tag-structured store, "
        ".gpx, .kml, .geojson, and .txt, .tsv or .tab a list with a waypoint on each line. "
        "What a form cannot hold is told on standard error.",
        "Units: positions are degrees, lengths metres, speeds m/s. Positions are kept to\n"
        "1e-7 degrees by every form. Labels, grid positions and turns are computed anew.\n"
        "\n"
        "Examples:\n"
        "  zr route convert plan.json plan.gpx\n"
        "  zr route convert chart.kml list --to list");
    cli::add_argument(*verb, "IN", options->in, "Route to read");
    cli::add_argument(*verb, "OUT", options->out, "File to write");
    cli::add_route_options(*verb, *options);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
