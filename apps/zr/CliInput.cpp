#include "CliInput.h"

#include "CliExit.h"
#include "CliMessages.h"
#include "CliSignals.h"
#include "ZrKit/review/ZrLogScan.h"

#include <QFileInfo>

int cli::check_input(const QString& path)
{
    const QFileInfo info(path);
    const auto refuse
        = [&path](const QString& reason) { return fail(exBadInput, path + QStringLiteral(": ") + reason); };
    if (info.isDir())
        return refuse(QStringLiteral("This is a folder, not a file"));
    if (info.exists() && !info.isFile())
        return refuse(QStringLiteral("Not an ordinary file"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refuse(file.errorString());
    return exDone;
}

QString cli::scan_reason(const QString& path, const ZrLogScan& scan)
{
    if (scan.State() == ZrLogScan::Unreadable)
        return path + QStringLiteral(": ") + scan.Error();
    return QStringLiteral("%1: %2 (at position %3)").arg(path, scan.Error()).arg(scan.ErrorPos());
}

int cli::fail_scan(const QString& path, const ZrLogScan& scan)
{
    if (scan.State() == ZrLogScan::Cancelled)
        return interrupt_code();
    return fail(exBadInput, scan_reason(path, scan));
}
