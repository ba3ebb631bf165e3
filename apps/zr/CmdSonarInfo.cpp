// zr sonar info: what the side-scan lines of a log hold, and how much seabed they cover.

#include "CmdSonarInfo.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliOutput.h"
#include "CliRoute.h"
#include "CliSignals.h"
#include "CliSonarLine.h"
#include "CliTable.h"
#include "CliText.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarSummary.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cmath>

namespace {

struct Options
{
    std::string log;
    bool json = false;
};

using Range = ZrSonarSummary::Range;

const char* SideName(int side)
{
    return side == sidePort ? "port" : "starboard";
}

/// To the millisecond: the difference of two large numbers has digits that mean nothing.
double Rounded(double seconds)
{
    return std::round(seconds * 1000.0) / 1000.0;
}

double Duration(const ZrSonarSummary& summary)
{
    return Rounded(summary.time.most - summary.time.least);
}

/// Metres; NaN where the track has no length.
double SwathWidth(const ZrSonarSummary& summary)
{
    return summary.length > 0.0 ? summary.area / summary.length : std::numeric_limits<double>::quiet_NaN();
}

void AddRange(QJsonObject& object, const char* name, const Range& range)
{
    object.insert(QLatin1String(name) + QStringLiteral("_min"), cli::json_number(range.least));
    object.insert(QLatin1String(name) + QStringLiteral("_max"), cli::json_number(range.most));
}

QJsonArray SidesJson(const ZrSonarSummary& summary)
{
    QJsonArray array;
    for (const eSonarSide s : {sidePort, sideStarboard}) {
        const ZrSonarSummary::Side& side = summary.sides[s];
        QJsonObject object{
            {QStringLiteral("side"), QString::fromLatin1(SideName(s))},
            {QStringLiteral("pings"), cli::json_count(side.pings)},
        };
        AddRange(object, "samples", side.samples);
        AddRange(object, "slant_range", side.slantRange);
        AddRange(object, "frequency", side.frequency);
        AddRange(object, "sound_speed", side.soundSpeed);
        array << object;
    }
    return array;
}

/// The units of all keys that have one, wherever they stand.
QJsonObject UnitsJson()
{
    static const struct
    {
        const char* unit;
        std::vector<const char*> keys;
    } units[] = {
        {"bytes", {"size", "error_pos"}},
        {"s since 1970-01-01T00:00:00Z", {"first_time", "last_time"}},
        {"s", {"duration", "pause_duration"}},
        {"1/s", {"ping_rate"}},
        {"m",
            {"track_length", "line_spacing", "swath_width", "altitude_min", "altitude_max", "depth_min",
                "depth_max", "slant_range_min", "slant_range_max"}},
        {"m/s", {"mean_speed", "sound_speed_min", "sound_speed_max"}},
        {"m2", {"area"}},
        {"kHz", {"frequency_min", "frequency_max"}},
    };

    QJsonObject object;
    for (const auto& unit : units) {
        for (const char* key : unit.keys)
            object.insert(QString::fromLatin1(key), QString::fromLatin1(unit.unit));
    }
    return object;
}

void PrintJson(const ZrSonarLog& log, const ZrSonarSummary& summary)
{
    QJsonArray sources;
    for (const u16 source : summary.sources)
        sources << source;
    const bool complete = log.Damage().isEmpty();
    QJsonObject object{
        {QStringLiteral("path"), log.Path()},
        {QStringLiteral("size"), cli::json_count(log.FileSize())},
        {QStringLiteral("pings"), cli::json_count(summary.pings)},
        {QStringLiteral("pairs"), cli::json_count(summary.pairs)},
        {QStringLiteral("sources"), sources},
        {QStringLiteral("first_time"), cli::json_number(summary.time.least)},
        {QStringLiteral("last_time"), cli::json_number(summary.time.most)},
        {QStringLiteral("duration"), cli::json_number(Duration(summary))},
        {QStringLiteral("pauses"), cli::json_count(summary.pauses)},
        {QStringLiteral("pause_duration"), cli::json_number(Rounded(summary.pauseTime))},
        {QStringLiteral("ping_rate"), cli::json_number(summary.rate)},
        {QStringLiteral("track_length"),
            summary.withoutPosition == summary.pings ? QJsonValue() : cli::json_number(summary.length)},
        {QStringLiteral("mean_speed"), cli::json_number(summary.speed)},
        {QStringLiteral("line_spacing"), cli::json_number(summary.spacing)},
        {QStringLiteral("area"), cli::json_number(summary.area)},
        {QStringLiteral("swath_width"), cli::json_number(SwathWidth(summary))},
        {QStringLiteral("without_position"), cli::json_count(summary.withoutPosition)},
        {QStringLiteral("far_from_fix"), cli::json_count(summary.farFromFix)},
        {QStringLiteral("without_altitude"), cli::json_count(summary.withoutAltitude)},
        {QStringLiteral("sides"), SidesJson(summary)},
        {QStringLiteral("skipped"), cli::json_count(log.Skipped())},
        {QStringLiteral("complete"), complete},
        {QStringLiteral("error"), complete ? QJsonValue() : QJsonValue(log.DamageReason())},
        {QStringLiteral("error_pos"), complete ? QJsonValue() : cli::json_count(log.DamagePos())},
        {QStringLiteral("units"), UnitsJson()},
    };
    AddRange(object, "altitude", summary.altitude);
    AddRange(object, "depth", summary.depth);
    CliOutput::Get().Json(object);
}

/// "30.00 m", "-" when not known.
QString NumberText(double value, int decimals, const char* unit)
{
    return std::isfinite(value) ? QStringLiteral("%1 %2")
                                      .arg(QString::number(value, 'f', decimals), QString::fromUtf8(unit))
                                      .trimmed()
                                : QStringLiteral("-");
}

/// "20.00 to 30.00 m", "30.00 m" when they do not differ as they are shown.
QString RangeText(const Range& range, int decimals, const char* unit)
{
    const QString least = QString::number(range.least, 'f', decimals);
    if (!std::isfinite(range.least) || least == QString::number(range.most, 'f', decimals))
        return NumberText(range.most, decimals, unit);
    return least + QStringLiteral(" to ") + NumberText(range.most, decimals, unit);
}

QString PausesText(const ZrSonarSummary& summary)
{
    if (summary.pauses == 0)
        return QStringLiteral("none");
    return QStringLiteral("%1, %2").arg(summary.pauses).arg(cli::duration_text(Rounded(summary.pauseTime)));
}

QString SourcesText(const ZrSonarSummary& summary)
{
    QStringList texts;
    for (const u16 source : summary.sources)
        texts << QString::number(source);
    return texts.join(QStringLiteral(", "));
}

QString PositionsText(const ZrSonarSummary& summary)
{
    QStringList texts;
    if (summary.withoutPosition > 0)
        texts << cli::count_text(summary.withoutPosition, "ping", "pings") + QStringLiteral(" without");
    if (summary.farFromFix > 0) {
        texts << cli::count_text(summary.farFromFix, "ping", "pings")
                + QStringLiteral(" more than 60 s from a fix");
    }
    return texts.isEmpty() ? QStringLiteral("all pings") : texts.join(QStringLiteral(", "));
}

QString AltitudeText(const ZrSonarSummary& summary)
{
    const QString text = RangeText(summary.altitude, 2, "m");
    if (summary.withoutAltitude == 0 || summary.withoutAltitude == summary.pings)
        return text;
    return text + QStringLiteral(", ") + cli::count_text(summary.withoutAltitude, "ping", "pings")
        + QStringLiteral(" without");
}

QString AreaText(const ZrSonarSummary& summary)
{
    if (!std::isfinite(summary.area))
        return QStringLiteral("-");
    const QString text = NumberText(summary.area, 0, "m²");
    const double width = SwathWidth(summary);
    return std::isfinite(width)
        ? text + QStringLiteral(", a swath of ") + NumberText(width, 1, "m") + QStringLiteral(" on average")
        : text;
}

void PrintSides(const ZrSonarSummary& summary)
{
    CliTable table({QStringLiteral("Side"), QStringLiteral(">Pings"), QStringLiteral(">Samples"),
        QStringLiteral(">Slant range"), QStringLiteral(">Frequency"), QStringLiteral(">Sound speed")});
    for (const eSonarSide s : {sidePort, sideStarboard}) {
        const ZrSonarSummary::Side& side = summary.sides[s];
        table.Row({QString::fromLatin1(SideName(s)), QString::number(side.pings),
            RangeText(side.samples, 0, ""), RangeText(side.slantRange, 2, "m"),
            RangeText(side.frequency, 1, "kHz"), RangeText(side.soundSpeed, 1, "m/s")});
    }
    CliOutput::Get().Line(QString());
    for (const QString& line : table.Lines())
        CliOutput::Get().Line(line);
}

void PrintText(const ZrSonarLog& log, const ZrSonarSummary& summary)
{
    const bool placed = summary.withoutPosition < summary.pings;
    cli::print_field("Log", log.Path());
    cli::print_field("Size", cli::size_text_both(log.FileSize()));
    cli::print_field("Pings", QStringLiteral("%1, %2 with both sides").arg(summary.pings).arg(summary.pairs));
    if (summary.sources.size() > 1)
        cli::print_field("Sources", SourcesText(summary));
    cli::print_field("First", cli::time_text(summary.time.least));
    cli::print_field("Last", cli::time_text(summary.time.most));
    cli::print_field("Duration", cli::duration_text(Duration(summary)));
    cli::print_field("Pauses", PausesText(summary));
    cli::print_field("Rate", NumberText(summary.rate, 2, "pings/s"));
    cli::print_field("Track", placed ? NumberText(summary.length, 1, "m") : QStringLiteral("-"));
    cli::print_field("Speed", NumberText(summary.speed, 2, "m/s"));
    cli::print_field("Spacing", NumberText(summary.spacing, 3, "m from line to line"));
    cli::print_field("Altitude", AltitudeText(summary));
    cli::print_field("Depth", RangeText(summary.depth, 2, "m"));
    cli::print_field("Area", AreaText(summary));
    cli::print_field("Positions", PositionsText(summary));
    cli::print_field("Skipped", cli::count_text(log.Skipped(), "item", "items"));
    if (log.Damage().isEmpty())
        cli::print_field("End", QStringLiteral("clean"));
    else
        cli::print_field(
            "End", QStringLiteral("damaged at position %1: %2").arg(log.DamagePos()).arg(log.DamageReason()));
    PrintSides(summary);
}

int Run(const Options& options)
{
    CliSonarLine line;
    if (const int code = line.Load(QString::fromStdString(options.log)))
        return code;
    const ZrSonarLog& log = line.log;
    const auto summarise = [&log] {
        const cli::EndOnInterrupt stop;
        return ZrSonarSummary(log.Pings(), ZrSonarTrack(log.Pings(), {}));
    };
    const ZrSonarSummary summary = summarise();
    if (options.json)
        PrintJson(log, summary);
    else
        PrintText(log, summary);
    return line.EndCode();
}

} // namespace

void AddSonarInfo(CLI::App& sonar, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(sonar, run, "info",
        "Summarise the side-scan lines of a log: pings, ranges, track, area covered\n"
        "\n"
        "Of a damaged log everything up to the damage is counted; the exit code is 2, and "
        "so it is when the log holds no side-scan pings.",
        "Units: times are UTC, in JSON seconds since 1970-01-01; lengths and ranges\n"
        "metres, speeds m/s, frequencies kHz, areas square metres. The JSON object names\n"
        "its units under \"units\". More than 10 s without a ping are a pause: rate, track,\n"
        "speed, spacing and area leave pauses out. The area is each step of the track\n"
        "times the ground range of the sides that were recorded, at the recorded altitude\n"
        "over a flat seabed; what is seen twice counts twice.\n"
        "\n"
        "Examples:\n"
        "  zr sonar info dive.log\n"
        "  zr sonar info dive.log --json");
    cli::add_argument(*verb, "LOG", options->log, "Log to read");
    verb->add_flag("--json", options->json, "Print one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
