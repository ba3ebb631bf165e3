#include "CliExport.h"

#include "CliExit.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliTarget.h"
#include "CliText.h"
#include "ZrKit/review/ZrLogScan.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <optional>

namespace {

/// The count that the player has reported at the end of an export.
std::optional<u64> ReportedCount(const QStringList& lines)
{
    static const QRegularExpression pattern(QStringLiteral("^Exported (\\d+) Items"));
    for (const QString& line : lines) {
        const QRegularExpressionMatch match = pattern.match(line);
        if (match.hasMatch())
            return match.captured(1).toULongLong();
    }
    return {};
}

/// Finds out why an export has failed: the disk, or damage in the part that was to be copied.
int ExplainFailure(const cli::Export& job, const CliTarget& target)
{
    if (target.CannotGrow())
        return target.FailWriting();
    ZrLogScan scan;
    ZrLogItem item;
    u64 pos = 0;
    if (scan.Open(job.in) && scan.SeekTo(job.from))
        while (scan.Pos() < job.to && scan.Next(item, pos)) { }
    if (scan.State() == ZrLogScan::Damaged || scan.State() == ZrLogScan::Unreadable) {
        const int code = cli::fail_scan(job.in, scan);
        if (scan.ErrorPos() > job.from) {
            cli::complain(QStringLiteral("Up to there the log is sound: zr log cut … --to %1 saves that part")
                              .arg(scan.ErrorPos()));
        }
        return code;
    }
    return target.FailWriting();
}

/// Whether the log at \p path is whole and holds \p items.
bool IsWholeLog(const QString& path, u64 items)
{
    ZrLogScan scan;
    ZrLogItem item;
    u64 pos = 0;
    u64 found = 0;
    scan.Open(path);
    while (scan.Next(item, pos))
        ++found;
    return scan.State() == ZrLogScan::AtEnd && found == items;
}

} // namespace

int cli::run_export(const Export& job, CliTarget& target)
{
    if (const int code = target.CreateTemporary())
        return code;
    take_debug_output();
    bool ok = false;
    {
        CliProgress progress(QStringLiteral("Copying"));
        ok = job.run(target.TemporaryPath(), &progress);
    }
    const std::optional<u64> items = ReportedCount(take_debug_output());
    if (!ok)
        return ExplainFailure(job, target);
    // The player succeeds without having written anything when it cannot open its output.
    if (!items || (job.isLog && !IsWholeLog(target.TemporaryPath(), *items)))
        return target.FailWriting();
    const u64 bytes = static_cast<u64>(QFileInfo(target.TemporaryPath()).size());
    if (const int code = target.Commit())
        return code;
    print_written(job.out, *items, bytes, job.details, job.json);
    return exDone;
}

void cli::print_written(const QString& out, u64 items, u64 bytes, const QJsonObject& details, bool json)
{
    if (!json) {
        CliOutput::Get().Line(
            QStringLiteral("%1: %2, %3").arg(out, count_text(items, "item", "items"), size_text_both(bytes)));
        return;
    }
    QJsonObject object = details;
    object.insert(QStringLiteral("out"), out);
    object.insert(QStringLiteral("items"), json_count(items));
    object.insert(QStringLiteral("bytes"), json_count(bytes));
    CliOutput::Get().Json(object);
}
