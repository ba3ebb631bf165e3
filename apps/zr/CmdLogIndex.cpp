// zr log index: makes the index beside a log, or reads the one that is there, and tells what it holds.

#include "CmdLogIndex.h"

#include "CliDataset.h"
#include "CliExit.h"
#include "CliHelp.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliText.h"
#include "CliTypes.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrIndexStamp.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

struct Options
{
    std::string log;
    std::string indexType;
    std::vector<std::string> coordTypes;
    bool rebuild = false;
    bool json = false;
};

CRecType TypeOf(const std::string& text)
{
    const cli::TypeChoice choice = *cli::parse_type(QString::fromStdString(text));
    return CRecType(choice.sub.value_or(0), choice.type);
}

/// Sets the record types that the options ask for. Returns the exit code, and complains unless it is 0.
int ChooseTypes(const Options& options, ZrSurveyDataset& dataset)
{
    if (!options.indexType.empty())
        dataset.idxType = TypeOf(options.indexType);
    if (options.coordTypes.empty())
        return exDone;
    if (options.coordTypes.size() > dataset.crdTypes.size()) {
        return cli::fail(exUsage,
            QStringLiteral("--coord-types: %1 are given, %2 at most")
                .arg(options.coordTypes.size())
                .arg(dataset.crdTypes.size()));
    }
    dataset.crdTypes = {};
    std::transform(options.coordTypes.begin(), options.coordTypes.end(), dataset.crdTypes.begin(), &TypeOf);
    return exDone;
}

/// The smallest and the largest of what is known, NaN when nothing is.
struct Range
{
    double least = std::numeric_limits<double>::quiet_NaN();
    double greatest = std::numeric_limits<double>::quiet_NaN();

    template <class Value> Range(const std::vector<ZrLogRec>& recs, Value value)
    {
        for (const ZrLogRec& rec : recs) {
            const double v = value(rec);
            if (!std::isfinite(v))
                continue;
            least = std::fmin(least, v);
            greatest = std::fmax(greatest, v);
        }
    }

    bool Known() const { return !std::isnan(least); }
};

/// What is told of a dataset.
struct Facts
{
    const CliDataset& log;
    Range times;
    Range depths;
    Range seabed;
    bool placed; ///< there is a known position
    int events;
    bool written; ///< an index stands beside the log

    explicit Facts(const CliDataset& loaded)
        : log(loaded)
        , times(loaded.dataset.recs, [](const ZrLogRec& rec) { return rec.time; })
        , depths(loaded.dataset.recs, [](const ZrLogRec& rec) { return static_cast<double>(rec.depth); })
        , seabed(loaded.dataset.recs,
              [](const ZrLogRec& rec) { return static_cast<double>(rec.depth + rec.altitude); })
        , placed(Range(loaded.dataset.recs, [](const ZrLogRec& rec) { return rec.latitude; }).Known())
        , events(loaded.dataset.events.GetCount())
        , written(!loaded.dataset.recs.empty() && loaded.reader.WriteError().isEmpty())
    {
    }

    double Duration() const { return std::round((times.greatest - times.least) * 1000.0) / 1000.0; }

    /// \p value of an extent, when there is a position at all.
    QJsonValue Extent(double value) const { return placed ? cli::json_number(value) : QJsonValue(); }
};

QJsonArray CoordTypes(const ZrDataset& dataset)
{
    QJsonArray types;
    for (const CRecType& type : dataset.crdTypes) {
        if (type != CRecType())
            types << QStringLiteral("%1:%2").arg(type.type).arg(type.sub);
    }
    return types;
}

void PrintJson(const Facts& facts)
{
    const ZrDataset& dataset = facts.log.dataset;
    const ZrDatasetReader& reader = facts.log.reader;
    const bool complete = reader.Complete();
    CliOutput::Get().Json({
        {QStringLiteral("path"), dataset.fileName},
        {QStringLiteral("index"), facts.log.fromIndex ? QStringLiteral("read") : QStringLiteral("built")},
        {QStringLiteral("reason"), facts.log.fromIndex ? QJsonValue() : QJsonValue(reader.Reason())},
        {QStringLiteral("written"), facts.written},
        {QStringLiteral("index_type"),
            QStringLiteral("%1:%2").arg(dataset.idxType.type).arg(dataset.idxType.sub)},
        {QStringLiteral("coord_types"), CoordTypes(dataset)},
        {QStringLiteral("records"), cli::json_count(dataset.recs.size())},
        {QStringLiteral("first_time"), cli::json_number(facts.times.least)},
        {QStringLiteral("last_time"), cli::json_number(facts.times.greatest)},
        {QStringLiteral("duration"), cli::json_number(facts.Duration())},
        {QStringLiteral("min_latitude"), facts.Extent(dataset.minLatitude)},
        {QStringLiteral("max_latitude"), facts.Extent(dataset.maxLatitude)},
        {QStringLiteral("mean_latitude"), facts.Extent(dataset.meanLatitude)},
        {QStringLiteral("min_longitude"), facts.Extent(dataset.minLongitude)},
        {QStringLiteral("max_longitude"), facts.Extent(dataset.maxLongitude)},
        {QStringLiteral("mean_longitude"), facts.Extent(dataset.meanLongitude)},
        {QStringLiteral("max_depth"), cli::json_number(facts.depths.greatest)},
        {QStringLiteral("max_seabed_depth"), cli::json_number(facts.seabed.greatest)},
        {QStringLiteral("events"), facts.events},
        {QStringLiteral("complete"), complete},
        {QStringLiteral("error"), complete ? QJsonValue() : QJsonValue(reader.Error())},
        {QStringLiteral("error_pos"), complete ? QJsonValue() : cli::json_count(reader.ErrorPos())},
    });
}

void PrintField(const char* name, const QString& value)
{
    CliOutput::Get().Line(QString::fromLatin1(name).leftJustified(14) + value);
}

QString IndexText(const Facts& facts)
{
    if (facts.log.fromIndex)
        return QStringLiteral("read");
    const QString built = QStringLiteral("built: ") + facts.log.reader.Reason();
    return facts.log.dataset.recs.empty() ? built + QStringLiteral("; not written, there are no records")
                                          : built;
}

QString CoordTypesText(const ZrDataset& dataset)
{
    QStringList types;
    for (const CRecType& type : dataset.crdTypes) {
        if (type != CRecType())
            types << cli::type_text(type);
    }
    return types.isEmpty() ? QStringLiteral("-") : types.join(QStringLiteral(", "));
}

QString ExtentText(double least, double greatest, double mean)
{
    return QStringLiteral("%1° to %2°, mean %3°")
        .arg(
            QString::number(least, 'f', 8), QString::number(greatest, 'f', 8), QString::number(mean, 'f', 8));
}

QString MetresText(double value)
{
    return std::isnan(value) ? QStringLiteral("-") : QString::number(value, 'f', 2) + QStringLiteral(" m");
}

void PrintText(const Facts& facts)
{
    const ZrDataset& dataset = facts.log.dataset;
    PrintField("Log", dataset.fileName);
    PrintField("Index", IndexText(facts));
    PrintField("Index type", cli::type_text(dataset.idxType));
    PrintField("Coordinates", CoordTypesText(dataset));
    PrintField("Records", QString::number(dataset.recs.size()));
    if (!dataset.recs.empty()) {
        PrintField("First", cli::time_text(facts.times.least));
        PrintField("Last", cli::time_text(facts.times.greatest));
        PrintField("Duration", cli::duration_text(facts.Duration()));
        PrintField("Latitude",
            facts.placed ? ExtentText(dataset.minLatitude, dataset.maxLatitude, dataset.meanLatitude)
                         : QStringLiteral("-"));
        PrintField("Longitude",
            facts.placed ? ExtentText(dataset.minLongitude, dataset.maxLongitude, dataset.meanLongitude)
                         : QStringLiteral("-"));
        PrintField("Max. depth", MetresText(facts.depths.greatest));
        PrintField("Max. seabed", MetresText(facts.seabed.greatest));
    }
    PrintField("Events", QString::number(facts.events));
    const ZrDatasetReader& reader = facts.log.reader;
    if (reader.Complete())
        PrintField("End", QStringLiteral("clean"));
    else
        PrintField(
            "End", QStringLiteral("damaged at position %1: %2").arg(reader.ErrorPos()).arg(reader.Error()));
}

int Run(const Options& options)
{
    CliDataset log;
    if (const int code = ChooseTypes(options, log.dataset))
        return code;
    log.reader.rebuild = options.rebuild;
    if (const int code = log.Load(QString::fromStdString(options.log)))
        return code;
    const Facts facts(log);
    if (options.json)
        PrintJson(facts);
    else
        PrintText(facts);
    if (!log.reader.WriteError().isEmpty())
        return cli::fail(exBadOutput, log.reader.WriteError());
    return log.EndCode();
}

} // namespace

void AddLogIndex(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "index",
        "Make the index of a log, or read it, and tell what it holds\n"
        "\n"
        "Each item of the index type makes one record, which remembers the latest items of "
        "up to eight coordinate types. The index is kept as LOG.zri and LOG.zri.json, events as LOG.evt. "
        "An index that does not fit the log any more is made anew; events added by hand are kept.",
        "Units: a type T stands for T:0. Times are UTC, in JSON seconds since 1970-01-01;\n"
        "first and last are the earliest and the latest. Latitudes and longitudes are\n"
        "degrees, depths metres below the surface; null is what no record knows.\n"
        "\n"
        "Examples:\n"
        "  zr log index dive.log\n"
        "  zr log index dive.log --index-type 18 --coord-types 17:0,17:1 --json");
    cli::add_argument(*verb, "LOG", options->log, "Log to read");
    cli::add_value(*verb, "--index-type", options->indexType, "T[:S]", cli::check_type,
        "Items of this type make the records; 16, navigation, unless given");
    cli::add_list(*verb, "--coord-types", options->coordTypes, "T[:S],...", cli::check_type,
        "Up to eight types whose latest items a record remembers; 18,19,20,21,22,17:0,17:1,2 unless given");
    verb->add_flag("--rebuild", options->rebuild, "Scan the log even if the index fits it");
    verb->add_flag("--json", options->json, "Print one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
