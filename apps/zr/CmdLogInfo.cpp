// zr log info: what a log holds, and whether it ends cleanly.

#include "CmdLogInfo.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "CliTable.h"
#include "CliText.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrLogSummary.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cmath>

namespace {

struct Options
{
    std::string log;
    bool json = false;
};

/// What a scan has found.
struct Findings
{
    QString path;
    const ZrLogScan& scan;
    const ZrLogSummary& summary;
    bool headerRead; ///< the file header is sound, so version and creation time are known

    bool Complete() const { return scan.State() == ZrLogScan::AtEnd; }
};

/// Seconds between the earliest and the latest item, to the millisecond: the difference of two large numbers
/// has digits that mean nothing.
double Duration(const ZrLogSummary& summary)
{
    return std::round((summary.LastTime() - summary.FirstTime()) * 1000.0) / 1000.0;
}

QJsonObject TypeObject(const ZrLogSummary::Type& type)
{
    QJsonArray sources;
    for (const u16 source : type.sources)
        sources << source;
    return {
        {QStringLiteral("type"), type.key.type},
        {QStringLiteral("sub"), type.key.sub},
        {QStringLiteral("name"), zr::rec_type_name(type.key)},
        {QStringLiteral("count"), cli::json_count(type.count)},
        {QStringLiteral("stored_bytes"), cli::json_count(type.storedBytes)},
        {QStringLiteral("data_bytes"), cli::json_count(type.dataBytes)},
        {QStringLiteral("compressed"), cli::json_count(type.compressed)},
        {QStringLiteral("rate"), cli::json_number(type.Rate())},
        {QStringLiteral("first_time"), cli::json_number(type.firstTime)},
        {QStringLiteral("last_time"), cli::json_number(type.lastTime)},
        {QStringLiteral("sources"), sources},
    };
}

void PrintJson(const Findings& found)
{
    const ZrLogSummary& summary = found.summary;
    QJsonArray types;
    for (const auto& [key, type] : summary.Types())
        types << TypeObject(type);
    const bool complete = found.Complete();
    const ZrLogHeader& header = found.scan.Header();
    CliOutput::Get().Json({
        {QStringLiteral("path"), found.path},
        {QStringLiteral("size"), cli::json_count(found.scan.FileSize())},
        {QStringLiteral("version"), found.headerRead ? cli::json_count(header.version) : QJsonValue()},
        {QStringLiteral("created"), found.headerRead ? cli::json_number(header.created) : QJsonValue()},
        {QStringLiteral("items"), cli::json_count(summary.Items())},
        {QStringLiteral("first_time"), cli::json_number(summary.FirstTime())},
        {QStringLiteral("last_time"), cli::json_number(summary.LastTime())},
        {QStringLiteral("duration"), cli::json_number(Duration(summary))},
        {QStringLiteral("backward_jumps"), cli::json_count(summary.BackwardJumps())},
        {QStringLiteral("types"), types},
        {QStringLiteral("complete"), complete},
        {QStringLiteral("error"), complete ? QJsonValue() : QJsonValue(found.scan.Error())},
        {QStringLiteral("error_pos"), complete ? QJsonValue() : cli::json_count(found.scan.ErrorPos())},
    });
}

void PrintField(const char* name, const QString& value)
{
    CliOutput::Get().Line(QString::fromLatin1(name).leftJustified(12) + value);
}

/// "0, 1, 2"; of many sources the first ones and how many there are.
QString SourcesText(const std::set<u16>& sources)
{
    constexpr int mostShown = 8;
    QStringList shown;
    for (const u16 source : sources) {
        if (shown.size() == mostShown)
            return shown.join(QStringLiteral(", ")) + QStringLiteral(", … (%1)").arg(sources.size());
        shown << QString::number(source);
    }
    return shown.join(QStringLiteral(", "));
}

/// Items per second with digits that suit slow and fast records alike.
QString RateText(double rate)
{
    if (!std::isfinite(rate))
        return QStringLiteral("-");
    return QString::number(rate, 'f', rate < 0.1 ? 4 : 2);
}

QString ShareText(u64 part, u64 whole)
{
    if (part == 0)
        return QStringLiteral("-");
    return QString::number(100.0 * static_cast<double>(part) / static_cast<double>(whole), 'f', 0)
        + QStringLiteral(" %");
}

void PrintTypes(const ZrLogSummary& summary)
{
    CliTable table({QStringLiteral(">Type"), QStringLiteral(">Sub"), QStringLiteral("Name"),
        QStringLiteral(">Items"), QStringLiteral(">Items/s"), QStringLiteral(">Stored bytes"),
        QStringLiteral(">"), QStringLiteral(">Data bytes"), QStringLiteral(">"),
        QStringLiteral(">Compressed"), QStringLiteral("Sources")});
    for (const auto& [key, type] : summary.Types()) {
        const QString name = zr::rec_type_name(type.key);
        table.Row({QString::number(type.key.type), QString::number(type.key.sub),
            name.isEmpty() ? QStringLiteral("-") : name, QString::number(type.count), RateText(type.Rate()),
            QString::number(type.storedBytes), cli::size_text(type.storedBytes),
            QString::number(type.dataBytes), cli::size_text(type.dataBytes),
            ShareText(type.compressed, type.count), SourcesText(type.sources)});
    }
    CliOutput::Get().Line(QString());
    for (const QString& line : table.Lines())
        CliOutput::Get().Line(line);
}

QString JumpsText(u64 jumps)
{
    return jumps == 0 ? QStringLiteral("never set back")
                      : QStringLiteral("set back ") + cli::count_text(jumps, "time", "times");
}

void PrintText(const Findings& found)
{
    const ZrLogSummary& summary = found.summary;
    PrintField("Log", found.path);
    PrintField("Size", cli::size_text_both(found.scan.FileSize()));
    if (found.headerRead) {
        PrintField("Version", QString::number(found.scan.Header().version));
        PrintField("Created", cli::time_text(found.scan.Header().created));
    }
    PrintField("Items", QString::number(summary.Items()));
    if (summary.Items() > 0) {
        PrintField("First", cli::time_text(summary.FirstTime()));
        PrintField("Last", cli::time_text(summary.LastTime()));
        PrintField("Duration", cli::duration_text(Duration(summary)));
        PrintField("Clock", JumpsText(summary.BackwardJumps()));
    }
    if (found.Complete())
        PrintField("End", QStringLiteral("clean"));
    else
        PrintField("End",
            QStringLiteral("damaged at position %1: %2").arg(found.scan.ErrorPos()).arg(found.scan.Error()));
    if (summary.Items() > 0)
        PrintTypes(summary);
}

int Run(const Options& options)
{
    const QString path = QString::fromStdString(options.log);
    if (const int code = cli::check_input(path))
        return code;
    ZrLogScan scan;
    ZrLogSummary summary;
    bool headerRead = false;
    {
        CliProgress progress(QStringLiteral("Reading"));
        scan.progress = &progress;
        const cli::CancelOnInterrupt stop(scan.cancel);
        headerRead = scan.Open(path);
        ZrLogItem item;
        u64 pos = 0;
        while (scan.Next(item, pos))
            summary.Add(item);
        scan.progress = nullptr;
    }
    if (scan.State() == ZrLogScan::Unreadable || scan.State() == ZrLogScan::Cancelled)
        return cli::fail_scan(path, scan);
    const Findings found{path, scan, summary, headerRead};
    if (options.json)
        PrintJson(found);
    else
        PrintText(found);
    return found.Complete() ? int(exDone) : cli::fail_scan(path, scan);
}

} // namespace

void AddLogInfo(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "info",
        "Summarise a log: size, times, record types, and whether it ends cleanly\n"
        "\n"
        "Of a damaged log everything up to the damage is counted; the exit code is 2.",
        "Units: times are UTC, in JSON seconds since 1970-01-01; first and last are the\n"
        "earliest and the latest time of an item. Items/s is the mean over the time that\n"
        "the type spans. Stored bytes are the payloads in the file, data bytes the\n"
        "payloads before compression; the 40 bytes of each item header are in neither.\n"
        "\n"
        "Examples:\n"
        "  zr log info dive.log\n"
        "  zr log info dive.log --json");
    cli::add_argument(*verb, "LOG", options->log, "Log to read");
    verb->add_flag("--json", options->json, "Print one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
