// zr log track: where the vehicle has been, as a file for other programs.

#include "CmdLogTrack.h"

#include "CliDataset.h"
#include "CliExit.h"
#include "CliHelp.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliTarget.h"
#include "CliText.h"
#include "CliTypes.h"
#include "ZrKit/export/ZrTrackExport.h"
#include "ZrKit/export/ZrTrackSimplify.h"

#include <QFileInfo>
#include <QJsonObject>

namespace {

struct Options
{
    std::string log;
    std::string out;
    std::string first;
    std::string last;
    double simplify = 0.0; ///< metres; 0 keeps every record
    bool force = false;
    bool json = false;
};

/// A kind of file that the track is written as.
struct Format
{
    const char* ending; ///< of the file name, with the dot, lower case
    /// Writes the records from \p first up to, not including, \p end.
    bool (*write)(ZrDataset& dataset, const QString& path, const Options& options, int first, int end,
        IZrProgress* progress);
};

bool WriteCsv(
    ZrDataset& dataset, const QString& path, const Options&, int first, int end, IZrProgress* progress)
{
    return dataset.ExportTrack(path, first, end, progress);
}

ZrTrackPoint PointOf(const ZrLogRec& rec)
{
    ZrTrackPoint point;
    point.time = rec.time;
    point.latitude = rec.latitude;
    point.longitude = rec.longitude;
    point.depth = static_cast<double>(rec.depth);
    point.altitude = static_cast<double>(rec.altitude);
    point.heading = static_cast<double>(rec.heading);
    point.pitch = static_cast<double>(rec.pitch);
    point.roll = static_cast<double>(rec.roll);
    return point;
}

/// The events that belong to the records from \p first up to, not including, \p end, where the vehicle was
/// then.
std::vector<ZrTrackEvent> EventsOf(const ZrDataset& dataset, int first, int end)
{
    std::vector<ZrTrackEvent> events;
    for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;) {
        const ZrLogEvt* const from = dataset.events.GetNext(pos);
        if (from->rec < first || from->rec >= end)
            continue;
        const ZrLogRec& rec = dataset.recs[static_cast<std::size_t>(from->rec)];
        ZrTrackEvent event;
        event.time = from->time;
        event.latitude = rec.latitude;
        event.longitude = rec.longitude;
        event.text = from->text;
        event.detail = from->detail;
        events.push_back(event);
    }
    return events;
}

/// Track and events in the format that \p format names.
bool WriteTrack(ZrTrackExport::eFormat format, const ZrDataset& dataset, const QString& path,
    const Options& options, int first, int end)
{
    std::vector<ZrTrackPoint> points;
    points.reserve(static_cast<std::size_t>(end - first));
    for (int i = first; i < end; ++i)
        points.push_back(PointOf(dataset.recs[static_cast<std::size_t>(i)]));
    const std::vector<ZrTrackEvent> events = EventsOf(dataset, first, end);
    ZrTrackData data;
    data.name = QFileInfo(dataset.fileName).completeBaseName();
    if (options.simplify > 0.0) {
        std::vector<ZrTrackPoint> kept;
        for (const std::size_t i : ZrTrackSimplify::Kept(points, options.simplify, data.maxGap))
            kept.push_back(points[i]);
        points.swap(kept);
    }
    data.points = points;
    data.events = events;
    ZrTrackExport out;
    return out.Write(path, format, data);
}

template <ZrTrackExport::eFormat format>
bool WriteAs(
    ZrDataset& dataset, const QString& path, const Options& options, int first, int end, IZrProgress*)
{
    return WriteTrack(format, dataset, path, options, first, end);
}

constexpr Format formats[] = {
    {".csv", &WriteCsv},
    {".gpx", &WriteAs<ZrTrackExport::Gpx>},
    {".kml", &WriteAs<ZrTrackExport::Kml>},
    {".geojson", &WriteAs<ZrTrackExport::GeoJson>},
};

/// The format that the name of \p out asks for; null when none does.
const Format* FormatOf(const QString& out)
{
    for (const Format& format : formats) {
        if (out.endsWith(QLatin1String(format.ending), Qt::CaseInsensitive))
            return &format;
    }
    return nullptr;
}

int FailFormat(const QString& out)
{
    QStringList endings;
    for (const Format& format : formats)
        endings << QLatin1String(format.ending);
    return cli::fail(exUsage,
        QStringLiteral("%1: The name of the output must end in %2")
            .arg(out, endings.join(QStringLiteral(", "))));
}

/// The records that are written.
struct Range
{
    u64 first;
    u64 last; ///< included

    Range(const Options& options, std::size_t count)
        : first(options.first.empty() ? 0 : std::stoull(options.first))
        , last(options.last.empty() ? count - 1 : std::stoull(options.last))
    {
    }

    /// Returns the exit code, and complains unless it is 0.
    int Check(std::size_t count) const
    {
        for (const u64 number : {first, last}) {
            if (number >= count) {
                return cli::fail(exUsage,
                    QStringLiteral("There is no record %1; the last one is %2").arg(number).arg(count - 1));
            }
        }
        if (first <= last)
            return exDone;
        return cli::fail(
            exUsage, QStringLiteral("--last (%1) lies before --first (%2)").arg(last).arg(first));
    }
};

int Write(
    const Options& options, CliDataset& log, const Format& format, const Range& range, CliTarget& target)
{
    if (const int code = target.CreateTemporary())
        return code;
    bool ok = false;
    {
        CliProgress progress(QStringLiteral("Writing"));
        ok = format.write(log.dataset, target.TemporaryPath(), options, static_cast<int>(range.first),
            static_cast<int>(range.last + 1), &progress);
    }
    if (!ok)
        return target.FailWriting();
    const u64 bytes = static_cast<u64>(QFileInfo(target.TemporaryPath()).size());
    if (const int code = target.Commit())
        return code;
    const QString out = QString::fromStdString(options.out);
    const u64 records = range.last - range.first + 1;
    if (!options.json) {
        CliOutput::Get().Line(
            QStringLiteral("%1: %2, %3")
                .arg(out, cli::count_text(records, "record", "records"), cli::size_text_both(bytes)));
        return exDone;
    }
    CliOutput::Get().Json({
        {QStringLiteral("in"), log.dataset.fileName},
        {QStringLiteral("out"), out},
        {QStringLiteral("first"), cli::json_count(range.first)},
        {QStringLiteral("last"), cli::json_count(range.last)},
        {QStringLiteral("records"), cli::json_count(records)},
        {QStringLiteral("bytes"), cli::json_count(bytes)},
    });
    return exDone;
}

int Run(const Options& options)
{
    const QString in = QString::fromStdString(options.log);
    const QString out = QString::fromStdString(options.out);
    const Format* const format = FormatOf(out);
    if (!format)
        return FailFormat(out);
    if (options.simplify > 0.0 && format->write == &WriteCsv)
        return cli::fail(
            exUsage, QStringLiteral("--simplify does not go with .csv, which holds every record"));
    CliTarget target;
    if (const int code = cli::check_input(in))
        return code;
    if (const int code = target.Prepare(out, options.force, {in}))
        return code;
    CliDataset log;
    log.FollowIndex(in);
    if (const int code = log.Load(in))
        return code;
    if (const int code = log.RequireRecords())
        return code;
    const Range range(options, log.dataset.recs.size());
    if (const int code = range.Check(log.dataset.recs.size()))
        return code;
    const int code = Write(options, log, *format, range, target);
    return code ? code : log.EndCode();
}

} // namespace

void AddLogTrack(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "track",
        "Write the track of the vehicle as a file for other programs\n"
        "\n"
        "The ending of OUT tells the format: .csv, one line for each record of the index;\n"
        ".gpx, .kml or .geojson, the track with the events of the log.",
        "Units: records are counted from 0. In the CSV times are local times of this\n"
        "computer (TZ=UTC in the environment gives UTC), dive time is hours since the\n"
        "first record, latitude and longitude are degrees, depths metres, angles degrees;\n"
        "nan is not known.\n"
        "\n"
        "Examples:\n"
        "  zr log track dive.log dive.csv\n"
        "  zr log track dive.log start.csv --first 0 --last 99\n"
        "  zr log track dive.log dive.gpx --simplify 2");
    cli::add_argument(*verb, "LOG", options->log, "Log to read");
    cli::add_argument(
        *verb, "OUT", options->out, "File to write, a name ending in .csv, .gpx, .kml or .geojson");
    cli::add_value(*verb, "--first", options->first, "N", cli::check_count, "First record; 0 unless given");
    cli::add_value(*verb, "--last", options->last, "N", cli::check_count,
        "Last record, which is included; that of the log unless given");
    verb->add_option("--simplify", options->simplify,
            "Leave out points that lie within this many metres of the line without them")
        ->option_text("METRES")
        ->check(CLI::Range(0.0, 1e6));
    verb->add_flag("--force", options->force, "Replace OUT when it exists");
    verb->add_flag("--json", options->json, "Print the result as one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
