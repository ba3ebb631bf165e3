#include "apps/ZrSurvey/HomeState.h"

#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/ui/ZrByteText.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

constexpr double megabyte = 1e6;
constexpr double latestTime = 253402300800.0; // the year 10000, seconds since 1970
constexpr double shortTime = 15.0 * 60.0; // seconds

QString Tr(const char* text)
{
    return QCoreApplication::translate("HomeState", text);
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
    if (seconds < 60.0)
        return Tr("%1 s").arg(static_cast<int>(seconds));
    if (seconds < 3600.0)
        return Tr("%1 min").arg(static_cast<int>(seconds / 60.0));
    const double hours = std::floor(seconds / 3600.0);
    if (hours >= 48.0)
        return Tr("%1 days").arg(std::floor(hours / 24.0), 0, 'f', 0);
    return Tr("%1 h %2 min").arg(hours, 0, 'f', 0).arg(static_cast<int>(seconds / 60.0) % 60);
}

QString HomeState::LeftText(double seconds)
{
    const double minutes = std::floor(std::max(seconds, 0.0) / 60.0);
    if (seconds >= Year)
        return Tr("> 1 year left");
    if (minutes < 120.0)
        return Tr("%1 min left").arg(minutes, 0, 'f', 0);
    const double hours = std::floor(minutes / 60.0);
    return hours < 48.0 ? Tr("%1 h left").arg(hours, 0, 'f', 0)
                        : Tr("%1 days left").arg(std::floor(hours / 24.0), 0, 'f', 0);
}

HomeState::Tile HomeState::Position(const SurveyVehicle::Pose& pose, bool isLive, double age)
{
    Tile tile;
    tile.value = ZrPositionShown::Text(pose.lat, pose.lng);
    if (tile.value.isEmpty()) {
        tile.note = Tr("No position yet");
        return tile;
    }
    if (!isLive) {
        tile.note = Tr("From a recording");
        tile.state = ZrValueTile::stale;
    } else if (std::isnan(age)) {
        tile.state = ZrValueTile::stale;
    } else if (age < 1.0) {
        tile.note = Tr("Fix now");
    } else {
        tile.note = Tr("Fix %1 ago").arg(DurationText(age));
        tile.state = age >= Lost ? ZrValueTile::error
            : age >= Late        ? ZrValueTile::warning
                                 : ZrValueTile::normal;
    }
    return tile;
}

HomeState::Tile HomeState::Data(const QString& source, bool isLive, double age, const QString& problem)
{
    Tile tile;
    tile.note = source;
    if (!problem.isEmpty()) {
        tile.value = Tr("No data");
        tile.note = problem;
        tile.state = ZrValueTile::error;
        return tile;
    }
    if (!isLive || std::isnan(age)) {
        tile.value = Tr("Off");
        return tile;
    }
    if (age < Late) {
        tile.value = Tr("Receiving");
        tile.state = ZrValueTile::good;
    } else {
        tile.value = Tr("Silent");
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
        tile.value = isStopped ? Tr("Stopped") : Tr("Off");
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
        return Tr("At the rate of the recording.");
    case ZrSpaceLeft::bySource:
        return Tr("At the rate of what comes from the source.");
    case ZrSpaceLeft::byLast:
        return Tr("At the rate of the last recording.");
    case ZrSpaceLeft::byNothing:
        break;
    }
    return Tr(
        "For how long that is cannot be told: nothing has come from the source, and there is no earlier "
        "recording.");
}

HomeState::Tile HomeState::Space(qint64 freeBytes, int stopBelowMegabytes, const ZrSpaceLeft& left)
{
    Tile tile;
    const double least = stopBelowMegabytes * megabyte;
    tile.hint = Tr("A recording stops when less than %1 is free.").arg(SizeText(least));
    if (freeBytes < 0) {
        tile.note = Tr("The disk does not tell");
        return tile;
    }
    const ZrByteText size = ZrByteText::Of(static_cast<double>(freeBytes));
    tile.value = size.value;
    tile.unit = size.unit;
    tile.note = !left.IsKnown()               ? Tr("– left: no data yet")
        : left.seconds >= Year                ? Tr("For more than a year")
        : left.by == ZrSpaceLeft::byRecording ? Tr("For %1").arg(DurationText(left.seconds))
                                              : Tr("About %1").arg(DurationText(left.seconds));
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
        parts.append(Tr("%1 UTC").arg(start.toString(QStringLiteral("yyyy-MM-dd HH:mm"))));
    }
    if (log.duration >= 0.0)
        parts.append(DurationText(log.duration));
    parts.append(SizeText(static_cast<double>(log.size)));
    if (log.sonar == ZrRecentLog::sonarPresent)
        parts.append(Tr("sonar"));
    return parts.join(QStringLiteral("  ·  "));
}
