// zr log cut: the items between two positions as a log of their own.

#include "CmdLogCut.h"

#include "CliExit.h"
#include "CliExport.h"
#include "CliHelp.h"
#include "CliInOut.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliPosition.h"
#include "CliTarget.h"
#include "CliText.h"
#include "CliTypes.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrUtil/ZrPlayer.h"

namespace {

struct Options : CliInOut
{
    std::string from;
    std::string to;
    std::string lead; ///< empty: none
    std::vector<std::string> types;
};

/// Whether an item starts at \p pos, or, with \p orEnd, the log ends there. Returns the exit code, and
/// complains unless it is 0.
int CheckItemAt(const QString& path, u64 pos, bool orEnd)
{
    ZrLogScan scan;
    ZrLogItem item;
    u64 found = 0;
    if (scan.Open(path) && scan.SeekTo(pos))
        scan.Next(item, found);
    if (scan.State() == ZrLogScan::Scanning || (orEnd && scan.State() == ZrLogScan::AtEnd))
        return exDone;
    if (scan.State() == ZrLogScan::AtEnd)
        return cli::fail(
            exBadInput, QStringLiteral("%1: Position %2 is the end of the log").arg(path).arg(pos));
    return cli::fail_scan(path, scan);
}

/// The positions of the cut in bytes.
struct Range
{
    CliPosition from;
    CliPosition to;
    CliPosition lead;
    bool hasLead;

    explicit Range(const Options& options)
        : from(CliPosition::FromOption(options.from))
        , to(CliPosition::FromOption(options.to))
        , lead(CliPosition::FromOption(options.lead))
        , hasLead(!options.lead.empty())
    {
    }

    /// Resolves shares and checks what can be checked. Returns the exit code, and complains unless it is 0.
    int Resolve(const QString& path)
    {
        if (const int code = CliPosition::Resolve(path, {&from, &to, &lead}))
            return code;
        if (from.bytes > to.bytes) {
            return cli::fail(
                exUsage, QStringLiteral("--to (%1) lies before --from (%2)").arg(to.bytes).arg(from.bytes));
        }
        if (const int code = CheckItemAt(path, from.bytes, true))
            return code;
        return hasLead ? CheckItemAt(path, lead.bytes, false) : int(exDone);
    }
};

QJsonObject Details(const Options& options, const Range& range)
{
    QJsonObject details{
        {QStringLiteral("in"), options.In()},
        {QStringLiteral("from"), cli::json_count(range.from.bytes)},
        {QStringLiteral("to"), cli::json_count(range.to.bytes)},
    };
    if (range.hasLead)
        details.insert(QStringLiteral("lead"), cli::json_count(range.lead.bytes));
    return details;
}

int Run(const Options& options)
{
    const QString in = options.In();
    CliTarget target;
    if (const int code = options.Prepare(target))
        return code;
    Range range(options);
    if (const int code = range.Resolve(in))
        return code;

    std::vector<cli::TypeChoice> types;
    for (const std::string& type : options.types)
        types.push_back(*cli::parse_type(QString::fromStdString(type)));
    std::vector<u8> filter = cli::type_filter(types);
    const u64 from = range.from.bytes;
    const u64 to = range.to.bytes;

    cli::Export job;
    job.in = in;
    job.out = options.Out();
    job.from = from;
    job.to = to;
    job.json = options.json;
    job.details = Details(options, range);
    job.run = [&](const QString& out, IZrProgress* progress) {
        if (range.hasLead)
            return ZrPlayer::ExportFileSegmentWithVideo(in, out, from, to, range.lead.bytes, progress);
        if (types.empty())
            return ZrPlayer::ExportFileSegment(in, out, from, to, progress);
        return ZrPlayer::ExportFileSegment(
            in, out, filter.data(), static_cast<u16>(filter.size()), from, to, progress);
    };
    return cli::run_export(job, target);
}

} // namespace

void AddLogCut(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "cut",
        "Copy the items between two positions into a new log\n"
        "\n"
        "Items are copied as they are. One that starts before the end is copied whole.\n"
        "The new log says in its header when it was made.",
        "Units: POS is a number of bytes from the start of the file, or a share of the\n"
        "file as in 33%: the first item that starts at or after it, else the end of the\n"
        "file.\n"
        "\n"
        "Examples:\n"
        "  zr log cut dive.log first.log --from 0% --to 33%\n"
        "  zr log cut dive.log sonar.log --from 48 --to 100% --types 16,17\n"
        "  zr log cut dive.log clip.log --from 70311 --to 91200 --lead 48");
    options->AddArguments(*verb, "Log to write");
    cli::add_value(*verb, "--from", options->from, "POS", CliPosition::Check, "Start of the first item")
        ->required();
    cli::add_value(*verb, "--to", options->to, "POS", CliPosition::Check,
        "Copy the items that start before this position")
        ->required();
    CLI::Option* types = cli::add_list(
        *verb, "--types", options->types, "T,...", cli::check_export_type, "Only items of these types");
    CLI::Option* lead = cli::add_value(*verb, "--lead", options->lead, "POS", CliPosition::Check,
        "Copy the item at this position first, the key frame of a video; its size counts towards the "
        "part that is copied, which ends that much earlier; not together with --types");
    types->excludes(lead);
    options->AddFlags(*verb);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
