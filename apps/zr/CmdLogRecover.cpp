// zr log recover: a clean log made of a damaged one.

#include "CmdLogRecover.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInOut.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "CliTarget.h"
#include "CliText.h"
#include "ZrKit/review/ZrLogRecovery.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

/// Damaged ranges shown to a person; JSON has all that the report holds.
constexpr std::size_t mostShown = 20;

struct Options : CliInOut
{
    bool strict = false;
};

void PrintJson(const QString& in, const QString& out, const ZrLogRecovery::Result& report)
{
    QJsonArray ranges;
    for (const ZrLogRecovery::Range& range : report.ranges) {
        ranges << QJsonObject{
            {QStringLiteral("offset"), cli::json_count(range.offset)},
            {QStringLiteral("length"), cli::json_count(range.length)},
            {QStringLiteral("reason"), ZrLogRecovery::ReasonText(range.reason)},
            {QStringLiteral("lost"), range.lost},
        };
    }
    CliOutput::Get().Json({
        {QStringLiteral("in"), in},
        {QStringLiteral("out"), out},
        {QStringLiteral("kept"), cli::json_count(report.kept)},
        {QStringLiteral("repaired"), cli::json_count(report.repaired)},
        {QStringLiteral("doubtful"), cli::json_count(report.doubtful)},
        {QStringLiteral("source_bytes"), cli::json_count(report.sourceBytes)},
        {QStringLiteral("bytes_lost"), cli::json_count(report.bytesLost)},
        {QStringLiteral("header_sound"), report.fileHeaderSound},
        {QStringLiteral("range_count"), cli::json_count(report.rangeCount)},
        {QStringLiteral("ranges"), ranges},
    });
}

void PrintText(const QString& out, const ZrLogRecovery::Result& report)
{
    CliOutput& output = CliOutput::Get();
    output.Line(
        QStringLiteral("%1: %2 kept, %3 lost of %4")
            .arg(out, cli::count_text(report.kept, "item", "items"),
                cli::count_text(report.bytesLost, "byte", "bytes"), cli::size_text_both(report.sourceBytes)));
    if (report.repaired > 0)
        output.Line(QStringLiteral("  repaired  %1 that the writer did not complete")
                        .arg(cli::count_text(report.repaired, "item", "items")));
    if (report.doubtful > 0)
        output.Line(QStringLiteral("  doubtful  %1").arg(cli::count_text(report.doubtful, "item", "items")));
    std::size_t shown = 0;
    for (const ZrLogRecovery::Range& range : report.ranges) {
        if (shown++ == mostShown)
            break;
        output.Line(QStringLiteral("  %1  position %2, %3: %4")
                        .arg(range.lost ? QStringLiteral("lost    ") : QStringLiteral("doubtful"))
                        .arg(range.offset)
                        .arg(cli::count_text(range.length, "byte", "bytes"),
                            ZrLogRecovery::ReasonText(range.reason)));
    }
    if (report.rangeCount > mostShown)
        output.Line(QStringLiteral("  … and %1 more; --json lists them").arg(report.rangeCount - mostShown));
}

int ExitCode(const ZrLogRecovery& recovery)
{
    switch (recovery.State()) {
    case ZrLogRecovery::Done:
        return recovery.Report().bytesLost == 0 ? exDone : exLost;
    case ZrLogRecovery::Refused:
        return exUsage;
    case ZrLogRecovery::NotWritten:
        return exBadOutput;
    case ZrLogRecovery::Cancelled:
        return cli::interrupt_code();
    default:
        return exBadInput;
    }
}

int Run(const Options& options)
{
    const QString in = options.In();
    const QString out = options.Out();
    CliTarget target;
    if (const int code = options.Prepare(target))
        return code;
    ZrLogRecovery recovery;
    recovery.keepDoubtful = !options.strict;
    {
        CliProgress progress(QStringLiteral("Recovering"));
        recovery.progress = &progress;
        const cli::CancelOnInterrupt stop(recovery.cancel);
        recovery.Run(in, target.Path());
        recovery.progress = nullptr;
    }
    if (recovery.State() != ZrLogRecovery::Done)
        return recovery.State() == ZrLogRecovery::Cancelled ? ExitCode(recovery)
                                                            : cli::fail(ExitCode(recovery), recovery.Error());
    if (options.json)
        PrintJson(in, out, recovery.Report());
    else
        PrintText(out, recovery.Report());
    return ExitCode(recovery);
}

} // namespace

void AddLogRecover(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "recover",
        "Make a clean log of a damaged one\n"
        "\n"
        "Finds every item that is intact, completes the item that an interrupted writer left\n"
        "unfinished, and writes them into a new log. LOG itself is only read. The exit code\n"
        "is 0 when nothing was lost, and 4 when something was.",
        "Units: positions and lengths in bytes.\n"
        "\n"
        "Example:\n"
        "  zr log recover damaged.log clean.log");
    options->AddArguments(*verb, "Log to write");
    verb->add_flag("--strict", options->strict, "Leave out items whose end is in doubt");
    options->AddFlags(*verb);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
