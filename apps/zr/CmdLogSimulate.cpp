// zr log simulate: the survey of a vehicle that is not there, as a log.

#include "CmdLogSimulate.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliMessages.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliRoute.h"
#include "CliSignals.h"
#include "CliTarget.h"
#include "CliText.h"
#include "CliTime.h"
#include "CliTypes.h"
#include "ZrKit/sim/ZrSimLog.h"
#include "ZrKit/sim/ZrSimSeaFloor.h"
#include "ZrKit/sim/ZrSimSource.h"
#include "ZrKit/sim/ZrSimSurvey.h"
#include "ZrUtil/ZrWpts.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

struct Options
{
    std::string plan;
    std::string out;
    std::string factor = "max";
    std::string start;
    std::string seed;
    std::string current;
    std::string speed;
    std::string altitude;
    std::string depth;
    std::string relief;
    std::string range;
    std::string rate;
    std::string samples;
    std::string targets;
    std::string dropout;
    bool noSonar = false;
    bool noErrors = false;
    bool compress = false;
    bool force = false;
    bool json = false;
};

const std::string fastest = "max";

std::string CheckFactor(const std::string& text)
{
    if (text == fastest)
        return {};
    const std::string fault = cli::check_number(text, 1.0, ZrSimSource::MaxFactor, "times real time");
    return fault.empty() ? fault : fault + ", or max";
}

std::string CheckCurrent(const std::string& text)
{
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos)
        return "\"" + text + "\" is no current: SET,DRIFT in degrees and m/s, as in 90,0.3";
    const std::string fault = cli::check_heading(text.substr(0, comma));
    return fault.empty() ? cli::check_number(text.substr(comma + 1), 0.0, 100.0, "m/s") : fault;
}

std::string CheckSpeed(const std::string& text)
{
    return cli::check_number(text, 0.05, 50.0, "m/s");
}

std::string CheckDepth(const std::string& text)
{
    return cli::check_number(text, 0.0, 11000.0, "metres");
}

std::string CheckRange(const std::string& text)
{
    return cli::check_number(text, ZrSimSonarSettings::MinRange, ZrSimSonarSettings::MaxRange, "metres");
}

std::string CheckRate(const std::string& text)
{
    return cli::check_number(text, 0.1, ZrSimSettings::MaxRate, "hertz");
}

std::string CheckShare(const std::string& text)
{
    return cli::check_number(text, 0.0, 1.0, "share");
}

/// A whole number from \p least to \p most.
std::string CheckWhole(const std::string& text, int least, int most, const char* unit)
{
    const std::string fault = cli::check_number(text, least, most, unit);
    return fault.empty() && text.find_first_not_of("0123456789") != std::string::npos
        ? "\"" + text + "\" is no whole number"
        : fault;
}

std::string CheckSamples(const std::string& text)
{
    return CheckWhole(text, ZrSimSonarSettings::MinSamples, ZrSimSonarSettings::MaxSamples, "samples");
}

std::string CheckTargets(const std::string& text)
{
    return CheckWhole(text, 0, ZrSimSettings::MaxTargets, "targets");
}

ZrSimSettings SettingsOf(const Options& options)
{
    ZrSimSettings settings;
    if (!options.start.empty())
        settings.start = *cli::parse_time(QString::fromStdString(options.start));
    if (!options.seed.empty())
        settings.seed = settings.floor.seed = std::stoull(options.seed);
    const std::size_t comma = options.current.find(',');
    if (comma != std::string::npos) {
        settings.vehicle.currentSet = cli::number(options.current.substr(0, comma), 0.0);
        settings.vehicle.currentDrift = cli::number(options.current.substr(comma + 1), 0.0);
    }
    if (!options.speed.empty()) {
        settings.vehicle.usesPlanSpeeds = false;
        settings.vehicle.cruiseSpeed = settings.vehicle.maxSpeed = cli::number(options.speed, 1.0);
    }
    settings.vehicle.altitude = cli::number(options.altitude, settings.vehicle.altitude);
    settings.floor.depth = cli::number(options.depth, settings.floor.depth);
    settings.floor.relief = cli::number(options.relief, settings.floor.relief);
    settings.sonar.range = cli::number(options.range, settings.sonar.range);
    settings.sonar.rate = cli::number(options.rate, settings.sonar.rate);
    settings.sonar.samples = static_cast<int>(cli::number(options.samples, settings.sonar.samples));
    settings.scattered = static_cast<int>(cli::number(options.targets, settings.scattered));
    settings.pings = !options.noSonar;
    if (options.noErrors)
        settings.sensors = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    settings.sensors.dropout = cli::number(options.dropout, 0.0);
    return settings;
}

QJsonArray TargetsOf(const ZrSimSurvey& survey)
{
    QJsonArray array;
    for (const ZrSimTarget& target : survey.Floor().Targets()) {
        const ZrGeoPoint at = survey.Vehicle().Frame().ToGeo(target.at);
        array << QJsonObject{
            {QStringLiteral("kind"), target.KindName()},
            {QStringLiteral("latitude"), at.lat},
            {QStringLiteral("longitude"), at.lng},
            {QStringLiteral("heading"), target.heading},
            {QStringLiteral("length"), target.length},
            {QStringLiteral("width"), target.width},
            {QStringLiteral("height"), target.height},
        };
    }
    return array;
}

void PrintJson(const Options& options, const ZrSimSurvey& survey, const ZrSimLog& log)
{
    const double start = survey.Settings().start;
    CliOutput::Get().Json({
        {QStringLiteral("plan"), QString::fromStdString(options.plan)},
        {QStringLiteral("out"), QString::fromStdString(options.out)},
        {QStringLiteral("items"), cli::json_count(log.Items())},
        {QStringLiteral("pings"), cli::json_count(log.Pings())},
        {QStringLiteral("bytes"), cli::json_count(log.Bytes())},
        {QStringLiteral("first_time"), cli::json_number(start)},
        {QStringLiteral("last_time"), cli::json_number(start + log.Duration())},
        {QStringLiteral("path_length"), cli::json_number(survey.Vehicle().Length())},
        {QStringLiteral("targets"), TargetsOf(survey)},
        {QStringLiteral("error"), log.Error().isEmpty() ? QJsonValue() : QJsonValue(log.Error())},
    });
}

void PrintText(const Options& options, const ZrSimSurvey& survey, const ZrSimLog& log)
{
    const double start = survey.Settings().start;
    cli::print_field("Plan",
        QString::fromStdString(options.plan) + QStringLiteral(", ")
            + cli::metres_text(survey.Vehicle().Length()));
    cli::print_field("First", cli::time_text(start));
    cli::print_field("Last", cli::time_text(start + log.Duration()));
    cli::print_field("Pings", QString::number(log.Pings()));
    cli::print_field("Targets", QString::number(survey.Floor().Targets().size()));
    cli::print_field("Written",
        QStringLiteral("%1: %2, %3")
            .arg(QString::fromStdString(options.out), cli::count_text(log.Items(), "item", "items"),
                cli::size_text_both(log.Bytes())));
}

ZrSimLog::eResult Simulate(const Options& options, ZrSimSurvey& survey, ZrSimLog& log, const QString& path)
{
    log.compress = options.compress;
    log.factor = options.factor == fastest ? 0.0 : cli::number(options.factor, 0.0);
    CliProgress progress(QStringLiteral("Simulating"));
    const cli::CancelOnInterrupt stop(log.cancel);
    return log.Write(survey, path, &progress);
}

int Run(const Options& options)
{
    const QString plan = QString::fromStdString(options.plan);
    CliTarget target;
    if (const int code = target.Prepare(QString::fromStdString(options.out), options.force, {plan}))
        return code;
    ZrWpts route;
    if (const int code = cli::read_route(plan, route))
        return code;
    ZrSimSurvey survey(route, SettingsOf(options));
    ZrSimLog log;
    const ZrSimLog::eResult result = Simulate(options, survey, log, target.Path());
    switch (result) {
    case ZrSimLog::Cancelled:
        return cli::interrupt_code();
    case ZrSimLog::BadPlan:
        return cli::fail(exBadInput, plan + QStringLiteral(": ") + log.Error());
    case ZrSimLog::BadOutput:
        return cli::fail(exBadOutput, log.Error());
    case ZrSimLog::Done:
    case ZrSimLog::Incomplete:
        break;
    }
    if (options.json)
        PrintJson(options, survey, log);
    else
        PrintText(options, survey, log);
    return result == ZrSimLog::Done ? int(exDone)
                                    : cli::fail(exBadInput, plan + QStringLiteral(": ") + log.Error());
}

} // namespace

void AddLogSimulate(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "simulate",
        "Simulate the survey of a plan, as a log\n"
        "\n"
        "A vehicle runs the route of PLAN over a sea floor that is made up, with targets\n"
        "on it, and logs navigation, fixes, motion, depths and side-scan pings. The same\n"
        "plan and options give the same log.",
        "Units: metres, m/s, degrees; times are UTC. A waypoint whose kind of depth is 1\n"
        "asks for so many metres above the floor, any other one with a depth above 0 for\n"
        "that depth, and all others for the altitude of --altitude.\n"
        "\n"
        "When the vehicle cannot run to the end of the plan, the log holds what it could,\n"
        "and the exit code is 2.\n"
        "\n"
        "Examples:\n"
        "  zr log simulate plan.json survey.log\n"
        "  zr log simulate plan.gpx survey.log --speed 1.5 --range 75 --current 90,0.4\n"
        "  zr log simulate plan.json survey.log --start 2024-05-30T08:00:00Z --seed 7");
    cli::add_argument(*verb, "PLAN", options->plan, "Route to run");
    cli::add_argument(*verb, "OUT", options->out, "Log to write");
    cli::add_value(*verb, "--speed-factor", options->factor, "X", CheckFactor,
        "Times faster than real time, 1 to 50, or max: as fast as possible; max unless given");
    cli::add_value(*verb, "--start", options->start, "T", cli::check_time,
        "Time of the first record; 2021-03-03T14:05:09Z unless given");
    cli::add_value(*verb, "--seed", options->seed, "N", cli::check_count,
        "Another sea floor, other targets and errors; 1 unless given");
    cli::add_value(*verb, "--current", options->current, "SET,DRIFT", CheckCurrent,
        "Where the water moves to, degrees, and how fast, m/s; still unless given");
    cli::add_value(*verb, "--speed", options->speed, "V", CheckSpeed,
        "Speed on every leg, m/s; that of the plan, at most 3 m/s, unless given");
    cli::add_value(*verb, "--altitude", options->altitude, "M", CheckDepth,
        "Metres above the floor where the plan says nothing; 8 unless given");
    cli::add_value(*verb, "--depth", options->depth, "M", CheckDepth, "Mean depth of water; 25 unless given");
    cli::add_value(*verb, "--relief", options->relief, "M", CheckDepth,
        "Height of the hills above, and of the hollows below, the mean; 1.5 unless given");
    cli::add_value(*verb, "--range", options->range, "M", CheckRange,
        "Range of the sonar, 1 to 1000 metres; 50 unless given");
    cli::add_value(*verb, "--rate", options->rate, "HZ", CheckRate,
        "Pings a second; as many as the way of the sound allows unless given, and at most");
    cli::add_value(*verb, "--samples", options->samples, "N", CheckSamples,
        "Samples of a side, 16 to 16384; 1024 unless given");
    cli::add_value(*verb, "--targets", options->targets, "N", CheckTargets,
        "Targets laid beside the straights of the route; 8 unless given");
    cli::add_value(*verb, "--dropout", options->dropout, "SHARE", CheckShare,
        "Share of the readings in which one sensor is silent, 0 to 1; 0 unless given");
    verb->add_flag("--no-sonar", options->noSonar, "No pings");
    verb->add_flag("--no-errors", options->noErrors, "Sensors without errors");
    verb->add_flag("--compress", options->compress, "Store the payloads of sonar pings compressed");
    verb->add_flag("--force", options->force, "Replace OUT when it exists");
    verb->add_flag("--json", options->json, "Print the result, with the targets, as one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
