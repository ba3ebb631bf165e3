// zr sonar target: where something seen in a side-scan line lies, and how large it is.

#include "CmdSonarTarget.h"

#include "CliExit.h"
#include "CliGeo.h"
#include "CliHelp.h"
#include "CliMessages.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliRoute.h"
#include "CliSonarLine.h"
#include "CliText.h"
#include "CliTypes.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarMeasure.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <QJsonObject>

namespace {

struct Options
{
    std::string log;
    std::string line;
    std::string column;
    std::string toLine;
    std::string toColumn;
    std::string shadowColumn;
    std::string side;
    CliTrackOptions track;
    CliAltitudeOption altitude;
    bool json = false;
};

/// What was measured.
struct Found
{
    ZrSonarTarget target;
    std::optional<ZrSonarTarget> end;
    ZrSonarMeasure::Extent extent;
    std::optional<ZrSonarMeasure::Shadow> shadow;
};

std::string CheckSide(const std::string& text)
{
    return cli::check_word(text, "port starboard");
}

/// The spot of a column. Returns the exit code, and complains unless it is 0.
int SpotOf(const Options& options, const CliSonarLine& line, const std::string& number,
    const std::string& columnText, ZrSonarSpot& spot)
{
    spot.ping = std::stoull(number);
    if (const int code = line.CheckLine(spot.ping))
        return code;
    const ZrSonarPing ping = line.log.Pings()[spot.ping];
    const u64 port = ping.sides[sidePort].sampleCount;
    const u64 starboard = ping.sides[sideStarboard].sampleCount;
    const u64 column = std::stoull(columnText);
    const std::optional<eSonarSide> side = cli::parse_side(options.side);
    const u64 count = side ? ping.sides[*side].sampleCount : port + starboard;
    if (column >= count) {
        const QString words = count == 0
            ? QStringLiteral("There is no column %1 in line %2, which has none")
            : QStringLiteral("There is no column %1 in line %2; the last one is %3");
        return cli::fail(exUsage,
            count == 0 ? words.arg(column).arg(spot.ping) : words.arg(column).arg(spot.ping).arg(count - 1));
    }
    spot.side = side ? *side : column < port ? sidePort : sideStarboard;
    const u64 sample = side ? column : column < port ? port - 1 - column : column - port;
    spot.sample = static_cast<double>(sample);
    return exDone;
}

/// Likewise.
int Measure(const Options& options, const CliSonarLine& line, Found& found)
{
    const ZrSonarTrack track(line.log.Pings(), options.track.Settings());
    const ZrSonarGeo geo(line.log.Pings(), track, line.bottom);
    ZrSonarMeasure measure(geo);
    const auto refuse = [&] {
        return cli::fail(
            exBadInput, QString::fromStdString(options.log) + QStringLiteral(": ") + measure.Error());
    };
    ZrSonarSpot spot;
    if (const int code = SpotOf(options, line, options.line, options.column, spot))
        return code;
    if (!geo.KnowsAltitudes())
        cli::complain(QStringLiteral("warning: The log knows no altitude; ranges are slant ranges"));
    if (!measure.Place(spot, found.target))
        return refuse();
    if (!options.toLine.empty() || !options.toColumn.empty()) {
        ZrSonarSpot to;
        const std::string& number = options.toLine.empty() ? options.line : options.toLine;
        const std::string& column = options.toColumn.empty() ? options.column : options.toColumn;
        if (const int code = SpotOf(options, line, number, column, to))
            return code;
        found.end.emplace();
        if (!measure.Place(to, *found.end) || !measure.Between(spot, to, found.extent))
            return refuse();
        found.target.length = found.extent.length;
        found.target.width = found.extent.width;
    }
    if (!options.shadowColumn.empty()) {
        ZrSonarSpot end;
        if (const int code = SpotOf(options, line, options.line, options.shadowColumn, end))
            return code;
        if (end.side != spot.side)
            return cli::fail(exUsage, QStringLiteral("--shadow-column lies on the other side of the track"));
        found.shadow.emplace();
        if (!measure.Height(spot, end.sample, *found.shadow))
            return refuse();
        found.target.height = found.shadow->height;
    }
    return exDone;
}

QString SideText(eSonarSide side)
{
    return side == sidePort ? QStringLiteral("port") : QStringLiteral("starboard");
}

QString Metres(double metres)
{
    return std::isfinite(metres) ? QString::number(metres, 'f', 2) + QStringLiteral(" m")
                                 : QStringLiteral("-");
}

void PrintText(const Found& found)
{
    const ZrSonarTarget& target = found.target;
    cli::print_field("Target",
        QStringLiteral("line %1, %2, sample %3")
            .arg(target.spot.ping)
            .arg(SideText(target.spot.side))
            .arg(target.spot.sample));
    cli::print_field("Time", cli::time_text(target.time));
    cli::print_field("Position", cli::degrees_text(target.position.lat, target.position.lng));
    cli::print_field("Slant", Metres(target.slantRange));
    cli::print_field("Ground", Metres(target.groundRange));
    cli::print_field("Altitude", Metres(target.altitude));
    if (found.end) {
        cli::print_field("To",
            QStringLiteral("line %1, %2, sample %3, at %4")
                .arg(found.end->spot.ping)
                .arg(SideText(found.end->spot.side))
                .arg(found.end->spot.sample)
                .arg(cli::degrees_text(found.end->position.lat, found.end->position.lng)));
        cli::print_field("Distance",
            QStringLiteral("%1, bearing %2 degrees")
                .arg(Metres(found.extent.distance), QString::number(found.extent.bearing, 'f', 1)));
        cli::print_field("Length", Metres(target.length) + QStringLiteral(" along the track"));
        cli::print_field("Width", Metres(target.width) + QStringLiteral(" across the track"));
    }
    if (found.shadow) {
        cli::print_field("Height",
            QStringLiteral("%1, +/- %2 for a sample; by ground ranges %3")
                .arg(Metres(target.height), Metres(found.shadow->step), Metres(found.shadow->flatHeight)));
        cli::print_field("Shadow", Metres(found.shadow->length) + QStringLiteral(" over the seabed"));
    }
}

QJsonObject SpotJson(const ZrSonarTarget& target)
{
    QJsonObject object{
        {QStringLiteral("line"), cli::json_count(target.spot.ping)},
        {QStringLiteral("side"), SideText(target.spot.side)},
        {QStringLiteral("sample"), target.spot.sample},
        {QStringLiteral("time"), cli::json_number(target.time)},
        {QStringLiteral("slant_range"), cli::json_number(target.slantRange)},
        {QStringLiteral("ground_range"), cli::json_number(target.groundRange)},
        {QStringLiteral("altitude"), cli::json_number(target.altitude)},
    };
    cli::add_position(object, target.position.lat, target.position.lng);
    return object;
}

void PrintJson(const Options& options, const Found& found)
{
    QJsonObject result = SpotJson(found.target);
    result.insert(QStringLiteral("in"), QString::fromStdString(options.log));
    result.insert(QStringLiteral("length"), cli::json_number(found.target.length));
    result.insert(QStringLiteral("width"), cli::json_number(found.target.width));
    result.insert(QStringLiteral("height"), cli::json_number(found.target.height));
    if (found.end) {
        result.insert(QStringLiteral("to"), SpotJson(*found.end));
        result.insert(QStringLiteral("distance"), found.extent.distance);
        result.insert(QStringLiteral("bearing"), found.extent.bearing);
    }
    if (found.shadow) {
        result.insert(QStringLiteral("height_step"), found.shadow->step);
        result.insert(QStringLiteral("height_flat"), found.shadow->flatHeight);
        result.insert(QStringLiteral("shadow_length"), found.shadow->length);
    }
    CliOutput::Get().Json(result);
}

int Run(const Options& options)
{
    CliSonarLine line;
    if (const int code = line.Load(QString::fromStdString(options.log)))
        return code;
    if (const int code = line.LoadBottom(options.altitude))
        return code;
    Found found;
    if (const int code = Measure(options, line, found))
        return code;
    if (options.json)
        PrintJson(options, found);
    else
        PrintText(found);
    return line.EndCode();
}

} // namespace

void AddSonarTarget(CLI::App& sonar, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(sonar, run, "target",
        "Tell where something in a side-scan line lies and how large it is\n"
        "\n"
        "Columns count samples across both sides as the raw waterfall shows them: with n port "
        "samples in the line, columns 0 to n-1 are port from the farthest to the nearest, and "
        "from n on starboard from the nearest to the farthest. With --side they count the "
        "samples of that side, the nearest being 0.",
        "Units: metres, degrees; lines are counted from 0.\n"
        "\n"
        "Length and width are those from the target to --to-line and --to-column, along and\n"
        "across the track; one of both that is left out is that of the target. The height\n"
        "takes --column for the last echo before the shadow, and a level seabed:\n"
        "altitude x (R - r) / R, with the slant ranges R of the shadow's end and r of the\n"
        "target.\n"
        "\n"
        "Examples:\n"
        "  zr sonar target dive.log --line 150 --column 1400\n"
        "  zr sonar target dive.log --line 150 --column 376 --side starboard --shadow-column 520\n"
        "  zr sonar target dive.log --line 140 --column 1400 --to-line 180 --to-column 1460");
    cli::add_argument(*verb, "LOG", options->log, "Log to read");
    cli::add_value(*verb, "--line", options->line, "N", cli::check_count, "Line of the target")->required();
    cli::add_value(*verb, "--column", options->column, "M", cli::check_count, "Column of the target")
        ->required();
    cli::add_value(*verb, "--to-line", options->toLine, "N", cli::check_count, "Line of its other end");
    cli::add_value(*verb, "--to-column", options->toColumn, "M", cli::check_count, "Column of its other end");
    cli::add_value(*verb, "--shadow-column", options->shadowColumn, "M", cli::check_count,
        "Column where its shadow ends, in the line of the target");
    cli::add_value(*verb, "--side", options->side, "SIDE", CheckSide,
        "port or starboard: columns count the samples of that side");
    options->track.AddTo(*verb);
    options->altitude.AddTo(*verb);
    verb->add_flag("--json", options->json, "Print the result as one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
