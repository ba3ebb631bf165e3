#include "CliPosition.h"

#include "CliExit.h"
#include "CliInput.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "ZrKit/review/ZrLogScan.h"

#include <algorithm>

namespace {

std::optional<CliPosition> ParseShare(const QString& number)
{
    // Digits and one point only, so that neither "nan" nor "1e2" nor a sign passes.
    for (const QChar c : number) {
        if ((c < QLatin1Char('0') || c > QLatin1Char('9')) && c != QLatin1Char('.'))
            return {};
    }
    bool ok = false;
    const double percent = number.toDouble(&ok);
    if (!ok || percent > 100.0)
        return {};
    CliPosition position;
    position.share = true;
    position.percent = percent;
    return position;
}

std::optional<CliPosition> ParseBytes(const QString& text)
{
    const bool hex = text.startsWith(QLatin1String("0x"));
    const QString digits = hex ? text.mid(2) : text;
    for (const QChar c : digits) {
        if (!c.isLetterOrNumber())
            return {};
    }
    bool ok = false;
    CliPosition position;
    position.bytes = digits.toULongLong(&ok, hex ? 16 : 10);
    if (!ok)
        return {};
    return position;
}

} // namespace

std::optional<CliPosition> CliPosition::Parse(const QString& text)
{
    return text.endsWith(QLatin1Char('%')) ? ParseShare(text.chopped(1)) : ParseBytes(text);
}

std::string CliPosition::Check(const std::string& text)
{
    if (Parse(QString::fromStdString(text)))
        return {};
    return "\"" + text + "\" is no position: bytes as in 1234 or 0x4d2, or a share of the file as in 33%";
}

CliPosition CliPosition::FromOption(const std::string& text)
{
    return Parse(QString::fromStdString(text)).value_or(CliPosition());
}

int CliPosition::Resolve(const QString& log, const std::vector<CliPosition*>& positions)
{
    std::vector<CliPosition*> open;
    for (CliPosition* position : positions) {
        if (position->share && position->percent > 0.0)
            open.push_back(position);
        else if (position->share)
            position->bytes = ZrLogHeader::Size; // where the first item starts, without reading anything
    }
    if (open.empty())
        return exDone;

    CliProgress progress(QStringLiteral("Finding positions"));
    ZrLogScan scan;
    scan.progress = &progress;
    const cli::CancelOnInterrupt stop(scan.cancel);
    scan.Open(log);
    ZrLogItem item;
    u64 pos = 0;
    while (!open.empty() && scan.Next(item, pos)) {
        const auto reached = [&](CliPosition* position) {
            if (static_cast<double>(pos) * 100.0 < position->percent * static_cast<double>(scan.FileSize()))
                return false;
            position->bytes = pos;
            return true;
        };
        open.erase(std::remove_if(open.begin(), open.end(), reached), open.end());
    }
    if (open.empty())
        return exDone;
    if (scan.State() != ZrLogScan::AtEnd)
        return cli::fail_scan(log, scan);
    for (CliPosition* position : open)
        position->bytes = scan.FileSize();
    return exDone;
}
