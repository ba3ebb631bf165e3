// zr geo format: positions in one style of writing.

#include "CmdGeoFormat.h"

#include "CliGeo.h"
#include "CliHelp.h"
#include "CliOutput.h"
#include "CliTexts.h"
#include "ZrUtil/ZrUnits.h"

namespace {

struct Options
{
    std::vector<std::string> positions;
    std::string style = "dmsfrac";
    bool json = false;
};

QString Convert(const cli::TextInput& input, const Options& options)
{
    QString error;
    ZrPositionText position;
    if (!ZrPositionText::Parse(input.texts[0], position, &error))
        return error;
    const eGeoStyle style = *cli::parse_style(options.style);
    QString text;
    if (style == eGeoUTM) {
        cli::GridPosition grid;
        if (!cli::to_grid(position.lat, position.lng, 0, grid, error))
            return error;
        text = cli::grid_text(grid, 2);
    } else {
        text = cli::styled_text(position.lat, position.lng, style);
    }
    if (!options.json) {
        CliOutput::Get().Line(text);
        return QString();
    }
    QJsonObject object{{QStringLiteral("number"), input.number}, {QStringLiteral("text"), text}};
    cli::add_position(object, position.lat, position.lng);
    CliOutput::Get().Json(object);
    return QString();
}

int Run(const Options& options)
{
    return cli::for_each_text(
        options.positions, 1, [&](const cli::TextInput& input) { return Convert(input, options); });
}

} // namespace

void AddGeoFormat(CLI::App& geo, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(geo, run, "format", "Write positions in one style",
        std::string("Styles: ") + cli::styleNames
            + ".\n"
              "Seconds and minutes are rounded without a carry: 59.9996 seconds are 60.000.\n"
              "\n"
              "Examples:\n"
              "  zr geo format \"51.123456789, -1.25\"\n"
              "  zr geo format --style degmin < positions.txt");
    verb->add_option("POSITION", options->positions, "Positions; without any, lines of standard input")
        ->option_text("[POSITION]...");
    cli::add_value(*verb, "--style", options->style, "S", cli::check_style, "Style of writing (dmsfrac)");
    verb->add_flag("--json", options->json, "Print one JSON object for each position");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
