// zr geo range: range and bearing from one position to another.

#include "CmdGeoRange.h"

#include "CliGeo.h"
#include "CliHelp.h"
#include "CliOutput.h"
#include "CliText.h"
#include "CliTexts.h"
#include "ZrUtil/ZrUtil.h"

#include <QRegularExpression>

namespace {

struct Options
{
    std::vector<std::string> positions;
    bool json = false;
};

QString Convert(const cli::TextInput& input, const Options& options)
{
    QStringList texts = input.texts;
    if (texts.size() == 1) {
        static const QRegularExpression between(
            QStringLiteral("\\s*(?:\\||\\t|\\bto\\b)\\s*"), QRegularExpression::CaseInsensitiveOption);
        texts = texts[0].split(between);
        if (texts.size() != 2)
            return QStringLiteral("There must be two positions with \"to\" between them");
    }
    ZrPositionText from;
    ZrPositionText to;
    QString error;
    if (!ZrPositionText::Parse(texts[0], from, &error))
        return QStringLiteral("First position: ") + error;
    if (!ZrPositionText::Parse(texts[1], to, &error))
        return QStringLiteral("Second position: ") + error;
    const double range = ZrUtil::LL2LLRng(from.lat, from.lng, to.lat, to.lng);
    const double bearing = ZrUtil::LL2LLBrg(from.lat, from.lng, to.lat, to.lng);
    if (!options.json) {
        CliOutput::Get().Line(QStringLiteral("%1 m %2°").arg(range, 0, 'f', 3).arg(bearing, 0, 'f', 4));
        return QString();
    }
    QJsonObject first;
    QJsonObject second;
    cli::add_position(first, from.lat, from.lng);
    cli::add_position(second, to.lat, to.lng);
    CliOutput::Get().Json({
        {QStringLiteral("number"), input.number},
        {QStringLiteral("from"), first},
        {QStringLiteral("to"), second},
        {QStringLiteral("range"), cli::json_number(range)},
        {QStringLiteral("bearing"), cli::json_number(bearing)},
    });
    return QString();
}

int Run(const Options& options)
{
    return cli::for_each_text(
        options.positions, 2, [&](const cli::TextInput& input) { return Convert(input, options); });
}

} // namespace

void AddGeoRange(CLI::App& geo, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(geo, run, "range",
        "Print range and initial bearing from one position to another\n"
        "\n"
        "Along the great circle of a sphere of 6371 km radius, as the routes are computed.",
        "Units: metres; degrees from true north, clockwise.\n"
        "\n"
        "Arguments are taken by twos. A line of standard input holds both positions with\n"
        "the word to, a vertical bar or a tab between them.\n"
        "\n"
        "Examples:\n"
        "  zr geo range \"51.5, -1.25\" \"51.6, -1.20\"\n"
        "  echo \"51.5 N 1.25 W to 30U 620000 5710000\" | zr geo range --json");
    verb->add_option(
            "POSITION", options->positions, "Positions by twos; without any, lines of standard input")
        ->option_text("[POSITION]...");
    verb->add_flag("--json", options->json, "Print one JSON object for each two positions");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
