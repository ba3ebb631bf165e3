// zr log track: where the vehicle has been, as a file for other programs.

#include "CmdLogTrack.h"

#include "CliDataset.h"
#include "CliExit.h"
#include "CliHelp.h"
#include "CliInOut.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliTarget.h"
#include "CliText.h"
#include "CliTypes.h"
#include "ZrKit/export/ZrTrackExport.h"
#include "ZrKit/export/ZrTrackSimplify.h"
#include "ZrKit/review/ZrDatasetTrack.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonObject>

#include <algorithm>

namespace {

struct Options : CliInOut
{
    std::string first;
    std::string last;
    double simplify = 0.0; ///< metres; 0 keeps every record
};

/// What goes into the file.
struct Job
{
    ZrDataset& dataset;
    QString path; ///< to write to
    int first; ///< record
    int end; ///< behind the last record
    double simplify;
    IZrProgress* progress;
    u64 points = 0; ///< of the track that were written
};

/// Metres up to a thousand kilometres; not a number is refused too.
std::string CheckTolerance(const std::string& text)
{
    constexpr double largest = 1e6;
    bool ok = false;
    const double metres = QString::fromStdString(text).toDouble(&ok);
    if (ok && metres >= 0.0 && metres <= largest)
        return {};
    return "\"" + text + "\" is not a number of metres from 0 to 1000000";
}

/// A kind of file that the track is written as.
struct Format
{
    const char* ending; ///< of the file name, with the dot, lower case
    bool (*write)(Job& job);
};

bool WriteCsv(Job& job)
{
    job.points = static_cast<u64>(job.end - job.first);
    return job.dataset.ExportTrack(job.path, job.first, job.end, job.progress);
}

/// Track and events. Straight into the temporary file of the target, which a signal knows to remove.
template <ZrTrackExport::eFormat format> bool WriteAs(Job& job)
{
    const auto first = static_cast<std::size_t>(job.first);
    const auto end = static_cast<std::size_t>(job.end);
    std::vector<ZrTrackPoint> points = ZrDatasetTrack::Points(job.dataset, first, end);
    ZrTrackData data;
    data.name = QFileInfo(job.dataset.fileName).completeBaseName();
    if (job.simplify > 0.0) {
        std::vector<ZrTrackPoint> kept;
        for (const std::size_t i : ZrTrackSimplify::Kept(points, job.simplify, data.maxGap))
            kept.push_back(points[i]);
        points.swap(kept);
    }
    const auto placed = std::count_if(
        points.begin(), points.end(), [](const ZrTrackPoint& point) { return point.HasPosition(); });
    job.points = static_cast<u64>(placed);
    const std::vector<ZrTrackEvent> events = ZrDatasetTrack::Events(job.dataset, first, end);
    data.points = points;
    data.events = events;
    QFile file(job.path);
    return file.open(QIODevice::WriteOnly) && ZrTrackExport::WriteTo(file, format, data) && file.flush();
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

/// "12 records", for all but CSV with the points that the file shows.
QString CountsText(const Format& format, u64 records, u64 points)
{
    const QString text = cli::count_text(records, "record", "records");
    return format.write == &WriteCsv
        ? text
        : text + QStringLiteral(", ") + cli::count_text(points, "point", "points");
}

int Write(
    const Options& options, CliDataset& log, const Format& format, const Range& range, CliTarget& target)
{
    if (const int code = target.CreateTemporary())
        return code;
    bool ok = false;
    u64 points = 0;
    {
        CliProgress progress(QStringLiteral("Writing"));
        Job job{log.dataset, target.TemporaryPath(), static_cast<int>(range.first),
            static_cast<int>(range.last + 1), options.simplify, &progress};
        ok = format.write(job);
        points = job.points;
    }
    if (!ok)
        return target.FailWriting();
    const u64 bytes = static_cast<u64>(QFileInfo(target.TemporaryPath()).size());
    if (const int code = target.Commit())
        return code;
    const QString out = options.Out();
    const u64 records = range.last - range.first + 1;
    if (!options.json) {
        CliOutput::Get().Line(QStringLiteral("%1: %2, %3")
                                  .arg(out, CountsText(format, records, points), cli::size_text_both(bytes)));
        return exDone;
    }
    CliOutput::Get().Json({
        {QStringLiteral("in"), log.dataset.fileName},
        {QStringLiteral("out"), out},
        {QStringLiteral("first"), cli::json_count(range.first)},
        {QStringLiteral("last"), cli::json_count(range.last)},
        {QStringLiteral("records"), cli::json_count(records)},
        {QStringLiteral("points"), cli::json_count(points)},
        {QStringLiteral("bytes"), cli::json_count(bytes)},
    });
    return exDone;
}

int Run(const Options& options)
{
    const Format* const format = FormatOf(options.Out());
    if (!format)
        return FailFormat(options.Out());
    if (options.simplify > 0.0 && format->write == &WriteCsv)
        return cli::fail(
            exUsage, QStringLiteral("--simplify does not go with .csv, which holds every record"));
    CliTarget target;
    if (const int code = options.Prepare(target))
        return code;
    CliDataset log;
    log.FollowIndex(options.In());
    if (const int code = log.Load(options.In()))
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
    options->AddArguments(*verb, "File to write, a name ending in .csv, .gpx, .kml or .geojson");
    cli::add_value(*verb, "--first", options->first, "N", cli::check_count, "First record; 0 unless given");
    cli::add_value(*verb, "--last", options->last, "N", cli::check_count,
        "Last record, which is included; that of the log unless given");
    verb->add_option("--simplify", options->simplify,
            "Leave out points that lie within this many metres of the line without them")
        ->option_text("METRES")
        ->check(CheckTolerance);
    options->AddFlags(*verb);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
