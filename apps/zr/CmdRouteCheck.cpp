// zr route check: what is wrong with a route, before it is run.

#include "CmdRouteCheck.h"

#include "CliExit.h"
#include "CliFindings.h"
#include "CliHelp.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliRoute.h"
#include "CliSignals.h"
#include "CliText.h"
#include "ZrKit/planning/ZrRouteCheck.h"
#include "ZrUtil/ZrWpts.h"

namespace {

struct Options
{
    std::string file;
    std::vector<std::string> fences;
    std::vector<std::string> noGo;
    std::string margin;
    bool json = false;
};

int ReadAreas(const std::vector<std::string>& files, std::vector<ZrArea>& areas)
{
    for (const std::string& file : files) {
        if (const int code = cli::read_areas(QString::fromStdString(file), areas))
            return code;
    }
    return exDone;
}

void PrintJson(const QString& path, const ZrWpts& route, const ZrRouteCheck::Options& limits,
    const std::vector<ZrRouteFinding>& findings)
{
    CliOutput::Get().Json({
        {QStringLiteral("path"), path},
        {QStringLiteral("waypoints"), cli::json_count(cli::count(route))},
        {QStringLiteral("fences"), cli::json_count(limits.fences.size())},
        {QStringLiteral("no_go"), cli::json_count(limits.noGo.size())},
        {QStringLiteral("margin"), limits.margin},
        {QStringLiteral("errors"), cli::json_count(cli::count_findings(findings, ZrRouteFinding::eError))},
        {QStringLiteral("warnings"),
            cli::json_count(cli::count_findings(findings, ZrRouteFinding::eWarning))},
        {QStringLiteral("remarks"), cli::json_count(cli::count_findings(findings, ZrRouteFinding::eInfo))},
        {QStringLiteral("findings"), cli::findings_json(findings)},
    });
}

void PrintText(const QString& path, const ZrWpts& route, const ZrRouteCheck::Options& limits,
    const std::vector<ZrRouteFinding>& findings)
{
    cli::print_findings(findings, route);
    CliOutput::Get().Line(QStringLiteral("%1: %2, %3, %4, findings: %5")
                              .arg(path, cli::count_text(cli::count(route), "waypoint", "waypoints"),
                                  cli::count_text(limits.fences.size(), "fence", "fences"),
                                  cli::count_text(limits.noGo.size(), "no-go area", "no-go areas"),
                                  cli::findings_text(findings)));
}

int Run(const Options& options)
{
    const QString path = QString::fromStdString(options.file);
    ZrRouteCheck::Options limits;
    limits.margin = cli::number(options.margin, 0.0);
    if (const int code = ReadAreas(options.fences, limits.fences))
        return code;
    if (const int code = ReadAreas(options.noGo, limits.noGo))
        return code;
    ZrWpts route;
    if (const int code = cli::read_route(path, route))
        return code;
    std::vector<ZrRouteFinding> findings;
    {
        const cli::EndOnInterrupt stop;
        findings = ZrRouteCheck::Run(route, limits);
    }
    if (options.json)
        PrintJson(path, route, limits, findings);
    else
        PrintText(path, route, limits, findings);
    return cli::count_findings(findings, ZrRouteFinding::eError) == 0 ? exDone : exBadInput;
}

/// An option that may be given several times, each time with one file.
void AddFiles(
    CLI::App& verb, const std::string& name, std::vector<std::string>& files, const std::string& description)
{
    verb.add_option(name, files, description)->option_text("FILE")->allow_extra_args(false);
}

} // namespace

void AddRouteCheck(CLI::App& route, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(route, run, "check",
        "List what is wrong with a route before it is run\n"
        "\n"
        "Looks at positions, speeds, turns that do not fit their legs, borders of UTM "
        "zones, and at areas that the path with its turn arcs must not leave or enter. "
        "The exit code is 2 when there is an error; warnings and remarks are none.",
        "Units: lengths in metres, speeds in m/s, in JSON positions in degrees. Waypoints\n"
        "are counted from 0. Files of areas are GeoJSON, KML, GPX, route files, or lists\n"
        "of positions; each area in them counts, holes are left out.\n"
        "\n"
        "Examples:\n"
        "  zr route check plan.gpx\n"
        "  zr route check plan.json --fence bay.geojson --no-go wrecks.kml --margin 25");
    cli::add_argument(*verb, "FILE", options->file, "Route to check");
    AddFiles(*verb, "--fence", options->fences, "Areas that the path must stay inside of; may be repeated");
    AddFiles(*verb, "--no-go", options->noGo, "Areas that the path must stay outside of; may be repeated");
    cli::add_value(*verb, "--margin", options->margin, "M", cli::check_length,
        "Metres that the path must keep from their borders; 0 unless given");
    verb->add_flag("--json", options->json, "Print the result as one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
