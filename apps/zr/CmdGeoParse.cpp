// zr geo parse: what a text is as a position.

#include "CmdGeoParse.h"

#include "CliGeo.h"
#include "CliHelp.h"
#include "CliOutput.h"
#include "CliTexts.h"

namespace {

struct Options
{
    std::vector<std::string> positions;
    bool json = false;
};

QString Convert(const cli::TextInput& input, const Options& options)
{
    QString error;
    ZrPositionText position;
    if (!ZrPositionText::Parse(input.texts[0], position, &error))
        return error;
    if (options.json) {
        QJsonObject object{
            {QStringLiteral("number"), input.number},
            {QStringLiteral("text"), input.texts[0]},
            {QStringLiteral("form"), position.isGrid ? QStringLiteral("grid") : QStringLiteral("geographic")},
        };
        cli::add_position(object, position.lat, position.lng);
        if (position.isGrid)
            cli::add_grid(object, position.zone, position.south, position.east, position.north);
        CliOutput::Get().Json(object);
        return QString();
    }
    QString line = cli::degrees_text(position.lat, position.lng);
    if (position.isGrid)
        line += QStringLiteral(" (zone %1)").arg(cli::zone_text(position.zone, position.south));
    CliOutput::Get().Line(line);
    return QString();
}

int Run(const Options& options)
{
    return cli::for_each_text(
        options.positions, 1, [&](const cli::TextInput& input) { return Convert(input, options); });
}

} // namespace

void AddGeoParse(CLI::App& geo, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(geo, run, "parse",
        "Read positions as people write them, and print decimal degrees\n"
        "\n"
        "Latitude and longitude come in this order unless letters say otherwise. What can be read in two "
        "ways is "
        "refused, with both of them in the message.",
        "Units: degrees, north and east positive; in JSON grid values are metres.\n"
        "\n"
        "Examples:\n"
        "  zr geo parse \"N51° 7' 24.444\\\" W1° 30' 15\\\"\"\n"
        "  zr geo parse \"zone 30U, 444500 mE, 5551200 mN\"\n"
        "  zr geo parse --json < pasted.txt");
    verb->add_option("POSITION", options->positions, "Positions; without any, lines of standard input")
        ->option_text("[POSITION]...");
    verb->add_flag("--json", options->json, "Print one JSON object for each position");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
