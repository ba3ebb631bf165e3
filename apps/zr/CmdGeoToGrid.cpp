// zr geo to-grid: positions in the UTM grid.

#include "CmdGeoToGrid.h"

#include "CliGeo.h"
#include "CliHelp.h"
#include "CliOutput.h"
#include "CliText.h"
#include "CliTexts.h"
#include "ZrUtil/ZrUnits.h"

namespace {

struct Options
{
    std::vector<std::string> positions;
    int zone = 0;
    int precision = 2;
    bool feet = false;
    bool json = false;
};

QString Convert(const cli::TextInput& input, const Options& options)
{
    QString error;
    ZrPositionText position;
    cli::GridPosition grid;
    if (!ZrPositionText::Parse(input.texts[0], position, &error)
        || !cli::to_grid(position.lat, position.lng, options.zone, grid, error))
        return error;
    if (!options.json) {
        CliOutput::Get().Line(cli::grid_text(grid, options.precision));
        return QString();
    }
    QJsonObject object{{QStringLiteral("number"), input.number}};
    cli::add_position(object, position.lat, position.lng);
    cli::add_grid(object, grid.zone, grid.south, grid.east, grid.north);
    object.insert(QStringLiteral("convergence"), cli::json_number(grid.convergence));
    CliOutput::Get().Json(object);
    return QString();
}

int Run(const Options& options)
{
    if (options.feet)
        ZrUnits::SetShortLengthToFt();
    return cli::for_each_text(
        options.positions, 1, [&](const cli::TextInput& input) { return Convert(input, options); });
}

} // namespace

void AddGeoToGrid(CLI::App& geo, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(geo, run, "to-grid",
        "Convert positions to zone, easting and northing of the UTM grid\n"
        "\n"
        "WGS 84, Transverse Mercator by series. Every position is put into its own zone unless "
        "--zone names one.",
        "Units: metres, or US survey feet; in JSON always metres and degrees.\n"
        "\n"
        "Examples:\n"
        "  zr geo to-grid \"51.5, -1.25\" \"52 30 N 1 15 W\"\n"
        "  zr geo to-grid --zone 31 --json < positions.txt\n"
        "  zr geo to-grid -- \"-33.9 18.4\"");
    verb->add_option("POSITION", options->positions, "Positions; without any, lines of standard input")
        ->option_text("[POSITION]...");
    verb->add_option("--zone", options->zone, "Zone of all positions, 1 to 60")
        ->option_text("N")
        ->check(CLI::Range(1, 60));
    verb->add_option("--precision", options->precision, "Decimals, 0 to 6 (2)")
        ->option_text("N")
        ->check(CLI::Range(0, 6));
    verb->add_flag("--feet", options->feet, "Write US survey feet");
    verb->add_flag("--json", options->json, "Print one JSON object for each position");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
