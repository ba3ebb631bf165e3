// zr log census: how many items of each type a log holds, as a CSV file.

#include "CmdLogCensus.h"

#include "CliExit.h"
#include "CliExport.h"
#include "CliHelp.h"
#include "CliInOut.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "CliTarget.h"
#include "CliText.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrUtil/ZrPlayer.h"

#include <QFile>

#include <map>

namespace {

/// The counts that the census must come to.
struct Counts
{
    u64 total = 0;
    std::map<u16, u64> byType;

    QByteArray Table() const
    {
        constexpr u16 withoutRow = 65535;
        QByteArray text("Index, Count\r\nTotal, " + QByteArray::number(total) + "\r\n");
        for (const auto& [type, count] : byType) {
            if (type != withoutRow)
                text += QByteArray::number(type) + ", " + QByteArray::number(count) + "\r\n";
        }
        return text;
    }
};

Counts Count(const QString& path, ZrLogScan& scan)
{
    CliProgress progress(QStringLiteral("Counting"));
    scan.progress = &progress;
    const cli::CancelOnInterrupt stop(scan.cancel);
    Counts counts;
    ZrLogItem item;
    u64 pos = 0;
    scan.Open(path);
    while (scan.Next(item, pos)) {
        ++counts.total;
        ++counts.byType[item.type];
    }
    scan.progress = nullptr;
    return counts;
}

/// Compares what the player has written with what must stand there: it does not report a full disk.
/// Returns the exit code, and complains unless it is 0.
int CheckTable(const QString& in, const CliTarget& target, const QByteArray& expected)
{
    QFile file(target.TemporaryPath());
    file.open(QIODevice::ReadOnly);
    const QByteArray written = file.readAll();
    if (written == expected)
        return exDone;
    if (written.size() < expected.size() && expected.startsWith(written))
        return target.FailWriting();
    // The player's own complaint, if it had one, precedes its count.
    const QStringList said = cli::take_debug_output();
    const bool complained = said.size() > 1;
    return cli::fail(exBadInput,
        in + QStringLiteral(": ")
            + (complained ? said.first() : QStringLiteral("The log has changed while it was read")));
}

void Print(const CliInOut& options, const ZrLogScan& scan, const Counts& counts, u64 bytes)
{
    const QString out = options.Out();
    if (!options.json) {
        CliOutput::Get().Line(
            QStringLiteral("%1: %2 of %3, %4")
                .arg(out, cli::count_text(counts.total, "item", "items"),
                    cli::count_text(counts.byType.size(), "type", "types"), cli::size_text_both(bytes)));
        return;
    }
    const bool complete = scan.State() == ZrLogScan::AtEnd;
    const QJsonObject details{
        {QStringLiteral("in"), options.In()},
        {QStringLiteral("types"), cli::json_count(counts.byType.size())},
        {QStringLiteral("complete"), complete},
        {QStringLiteral("error"), complete ? QJsonValue() : QJsonValue(scan.Error())},
        {QStringLiteral("error_pos"), complete ? QJsonValue() : cli::json_count(scan.ErrorPos())},
    };
    cli::print_written(out, counts.total, bytes, details, true);
}

int Run(const CliInOut& options)
{
    const QString in = options.In();
    CliTarget target;
    if (const int code = options.Prepare(target))
        return code;
    ZrLogScan scan;
    const Counts counts = Count(in, scan);
    if (scan.State() == ZrLogScan::Unreadable || scan.State() == ZrLogScan::Cancelled)
        return cli::fail_scan(in, scan);

    if (const int code = target.CreateTemporary())
        return code;
    cli::take_debug_output();
    ZrPlayer::ExportIndexInf(in, target.TemporaryPath());
    const QByteArray expected = counts.Table();
    if (const int code = CheckTable(in, target, expected))
        return code;
    if (const int code = target.Commit())
        return code;
    Print(options, scan, counts, static_cast<u64>(expected.size()));
    return scan.State() == ZrLogScan::AtEnd ? int(exDone) : cli::fail_scan(in, scan);
}

} // namespace

void AddLogCensus(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<CliInOut>();
    CLI::App* verb = cli::add_verb(log, run, "census",
        "Write the number of items of each type as a CSV file\n"
        "\n"
        "Of a damaged log the items up to the damage are counted; the table is written\n"
        "all the same, and the exit code is 2.",
        "Units: counts of items. The lines \"Index, Count\" and \"Total, N\" are followed\n"
        "by \"TYPE, N\" for each type from 0 to 65534 that occurs; type 65535 is in the\n"
        "total only.\n"
        "\n"
        "Example:\n"
        "  zr log census dive.log dive.csv");
    options->AddArguments(*verb, "CSV file to write");
    options->AddFlags(*verb);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
