#include "apps/ZrSurvey/HomeState.h"

#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/ui/ZrByteText.h"

#include <QDateTime>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

constexpr double megabyte = 1e6;
constexpr double latestTime = 253402300800.0; // the year 10000, seconds since 1970
constexpr double minute = 60.0; // seconds
constexpr double day = 86400.0;
constexpr double shortTime = 15.0 * minute;

/// Of what is left never more is told than there is, as on the page "Record": minutes, of days whole ones.
double LeftShown(double seconds)
{
    const double unit = seconds < minute ? 1.0 : seconds < 2.0 * day ? minute : day;
    return std::floor(seconds / unit) * unit;
}

QString SizeText(double bytes)
{
    return ZrByteText::Of(bytes).Text();
}

} // namespace

QString HomeState::DurationText(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0.0)
        return {};
    const double whole = std::round(seconds);
    if (whole < minute)
        return tr("%1 s").arg(whole, 0, 'f', 0);
    const double minutes = std::round(seconds / minute);
    if (minutes < 60.0)
        return tr("%1 min").arg(minutes, 0, 'f', 0);
    const double hours = std::floor(minutes / 60.0);
    if (hours >= 48.0)
        return tr("%1 days").arg(std::round(hours / 24.0), 0, 'f', 0);
    return tr("%1 h %2 min").arg(hours, 0, 'f', 0).arg(minutes - hours * 60.0, 0, 'f', 0);
}

QString HomeState::LeftText(double seconds)
{
    const double minutes = std::floor(std::max(seconds, 0.0) / 60.0);
    if (seconds >= Year)
        return tr("> 1 year left");
    if (minutes < 120.0)
        return tr("%1 min left").arg(minutes, 0, 'f', 0);
    const double hours = std::floor(minutes / 60.0);
    return hours < 48.0 ? tr("%1 h left").arg(hours, 0, 'f', 0)
                        : tr("%1 days left").arg(std::floor(hours / 24.0), 0, 'f', 0);
}

HomeState::Tile HomeState::Position(const SurveyVehicle::Pose& pose, bool isLive, double age, bool isAtEnd)
{
    Tile tile;
    tile.value = ZrPositionShown::Text(pose.lat, pose.lng);
    if (tile.value.isEmpty()) {
        tile.note = tr("No position yet");
        return tile;
    }
    if (!isLive) {
        tile.note = tr("From a recording");
        tile.state = ZrValueTile::stale;
    } else if (std::isnan(age)) {
        tile.state = ZrValueTile::stale;
    } else if (age < 1.0) {
        tile.note = tr("Fix now");
    } else {
        tile.note = tr("Fix %1 ago").arg(DurationText(age));
        // Of a source that has told all it had nothing is missed.
        tile.state = isAtEnd ? ZrValueTile::normal
            : age >= Lost    ? ZrValueTile::error
            : age >= Late    ? ZrValueTile::warning
                             : ZrValueTile::normal;
    }
    return tile;
}

HomeState::Tile HomeState::Data(
    const QString& source, bool isLive, double age, const QString& problem, bool isAtEnd)
{
    Tile tile;
    tile.note = source;
    if (!problem.isEmpty()) {
        tile.value = tr("No data");
        tile.note = problem;
        tile.state = ZrValueTile::error;
        return tile;
    }
    if (isAtEnd) {
        tile.value = tr("At its end");
        return tile;
    }
    if (!isLive || std::isnan(age)) {
        tile.value = tr("Off");
        return tile;
    }
    if (age < Late) {
        tile.value = tr("Receiving");
        tile.state = ZrValueTile::good;
    } else {
        tile.value = tr("Silent");
        tile.unit = DurationText(age);
        tile.state = age < Lost ? ZrValueTile::warning : ZrValueTile::error;
    }
    return tile;
}

HomeState::Tile HomeState::Recording(
    const QString& elapsed, const ZrRecorder::Status& status, const QString& folder, bool isStopped)
{
    Tile tile;
    if (elapsed.isEmpty()) {
        tile.value = isStopped ? tr("Stopped") : tr("Off");
        tile.note = folder;
        tile.state = isStopped ? ZrValueTile::error : ZrValueTile::normal;
        return tile;
    }
    tile.value = elapsed;
    tile.note = SizeText(static_cast<double>(status.bytes)) + QStringLiteral(", ")
        + QFileInfo(status.file).fileName();
    tile.state = ZrValueTile::good;
    return tile;
}

QString HomeState::SpaceHint(const ZrSpaceLeft& left)
{
    switch (left.by) {
    case ZrSpaceLeft::byRecording:
        return tr("At the rate of the recording.");
    case ZrSpaceLeft::bySource:
        return tr("At the rate of what comes from the source.");
    case ZrSpaceLeft::byLast:
        return tr("At the rate of the last recording.");
    case ZrSpaceLeft::byNothing:
        break;
    }
    return tr(
        "For how long that is cannot be told: nothing has come from the source, and there is no earlier "
        "recording.");
}

HomeState::Tile HomeState::Space(qint64 freeBytes, int stopBelowMegabytes, const ZrSpaceLeft& left)
{
    Tile tile;
    const double least = stopBelowMegabytes * megabyte;
    tile.hint = tr("A recording stops when less than %1 is free.").arg(SizeText(least));
    if (freeBytes < 0) {
        tile.note = tr("The disk does not tell");
        return tile;
    }
    const ZrByteText size = ZrByteText::Of(static_cast<double>(freeBytes));
    const QString time = DurationText(LeftShown(left.seconds));
    tile.value = size.value;
    tile.unit = size.unit;
    tile.note = !left.IsKnown()               ? tr("– left: no data yet")
        : left.seconds >= Year                ? tr("For more than a year")
        : left.by == ZrSpaceLeft::byRecording ? tr("For %1").arg(time)
                                              : tr("About %1").arg(time);
    tile.hint = SpaceHint(left) + QLatin1Char(' ') + tile.hint;
    if (static_cast<double>(freeBytes) < least)
        tile.state = ZrValueTile::error;
    else if (static_cast<double>(freeBytes) < 2.0 * least || (left.IsKnown() && left.seconds < shortTime))
        tile.state = ZrValueTile::warning;
    return tile;
}

QString HomeState::RecordingText(const ZrRecentLog& log)
{
    QStringList parts;
    if (std::isfinite(log.start) && std::abs(log.start) < latestTime) {
        const auto start = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(log.start * 1e3), Qt::UTC);
        parts.append(tr("%1 UTC").arg(start.toString(QStringLiteral("yyyy-MM-dd HH:mm"))));
    }
    if (log.duration >= 0.0)
        parts.append(ZrTimeText::Elapsed(log.duration));
    parts.append(SizeText(static_cast<double>(log.size)));
    if (log.sonar == ZrRecentLog::sonarPresent)
        parts.append(tr("sonar"));
    return parts.join(QStringLiteral("  ·  "));
}
