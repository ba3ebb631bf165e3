// zr geo from-grid: latitude and longitude of grid values.

#include "CmdGeoFromGrid.h"

#include "CliGeo.h"
#include "CliHelp.h"
#include "CliOutput.h"
#include "CliTexts.h"

namespace {

struct Options
{
    std::vector<std::string> positions;
    std::string zone;
    std::string style;
    bool json = false;
};

std::string CheckZone(const std::string& zone)
{
    // Whatever may stand before an easting and a northing that lie in every zone and band.
    ZrPositionText position;
    QString error;
    if (ZrPositionText::Parse(
            QString::fromStdString(zone) + QStringLiteral(" 500000 5000000"), position, &error)
        || error.startsWith(QLatin1String("The band ")))
        return {};
    return "\"" + zone + "\" is no zone: a number from 1 to 60 with a band letter, north or south, as in 30U";
}

QString Convert(const cli::TextInput& input, const Options& options)
{
    QString text = input.texts[0];
    if (!options.zone.empty())
        text.prepend(QString::fromStdString(options.zone) + QLatin1Char(' '));
    QString error;
    ZrPositionText position;
    if (!ZrPositionText::Parse(text, position, &error))
        return error;
    if (!position.isGrid)
        return QStringLiteral("It is not an easting and a northing with their zone");
    if (options.json) {
        QJsonObject object{{QStringLiteral("number"), input.number}};
        cli::add_position(object, position.lat, position.lng);
        cli::add_grid(object, position.zone, position.south, position.east, position.north);
        CliOutput::Get().Json(object);
    } else if (options.style.empty()) {
        CliOutput::Get().Line(cli::degrees_text(position.lat, position.lng));
    } else {
        CliOutput::Get().Line(cli::styled_text(position.lat, position.lng, *cli::parse_style(options.style)));
    }
    return QString();
}

int Run(const Options& options)
{
    return cli::for_each_text(
        options.positions, 1, [&](const cli::TextInput& input) { return Convert(input, options); });
}

} // namespace

void AddGeoFromGrid(CLI::App& geo, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(geo, run, "from-grid",
        "Convert zone, easting and northing of the UTM grid to latitude and longitude\n"
        "\n"
        "The zone stands with every position, in front or behind, or is named by --zone for all. N "
        "behind its number is the northern hemisphere, S the southern one unless it may be the band "
        "of that letter.",
        "Units: metres, or US survey feet with the labels ftE and ftN; degrees.\n"
        "\n"
        "Examples:\n"
        "  zr geo from-grid \"30U 444500 5551200\"\n"
        "  zr geo from-grid --zone \"34 south\" --style dms < values.txt");
    verb->add_option("POSITION", options->positions, "Grid positions; without any, lines of standard input")
        ->option_text("[POSITION]...");
    cli::add_value(
        *verb, "--zone", options->zone, "Z", CheckZone, "Zone of all positions, as in 30U or \"30 north\"");
    cli::add_value(*verb, "--style", options->style, "S", cli::check_style,
        "How latitude and longitude are written: deg, degmin, dms, dmsfrac, each with signed- in front for a "
        "sign "
        "instead of a letter")
        ->check([](const std::string& name) {
            return name == "utm" ? std::string("grid values are what is converted") : std::string();
        });
    verb->add_flag("--json", options->json, "Print one JSON object for each position");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
