#include "CliSonarLine.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliNumber.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "CliText.h"
#include "ZrKit/sonar/ZrBottomFile.h"
#include "ZrKit/sonar/ZrBottomTracker.h"

#include <cmath>

namespace {

/// Seconds; steps of rounded and repeated fixes vanish, turns of a survey do not.
constexpr double usualSmoothing = 5.0;

std::string CheckHeading(const std::string& text)
{
    return cli::check_word(text, "recorded course");
}

std::string CheckAltitude(const std::string& text)
{
    return cli::check_word(text, "tracked recorded");
}

std::string CheckSmooth(const std::string& text)
{
    return cli::check_number(text, 0.0, 600.0, "seconds");
}

} // namespace

int CliSonarLine::Load(const QString& path)
{
    if (const int code = cli::check_input(path))
        return code;
    bool opened = false;
    {
        CliProgress progress(QStringLiteral("Reading"));
        log.progress = &progress;
        const cli::CancelOnInterrupt stop(log.cancel);
        opened = log.Open(path);
        log.progress = nullptr;
    }
    if (cli::interrupted())
        return cli::interrupt_code();
    if (!opened)
        return cli::fail(exBadInput, path + QStringLiteral(": ") + log.Error());
    return log.Pings().empty() ? FailWithoutPings() : int(exDone);
}

int CliSonarLine::FailWithoutPings() const
{
    QString reason = QStringLiteral("The log holds no side-scan pings");
    if (log.Skipped() > 0) {
        reason += QStringLiteral(" that can be used; skipped: ")
            + cli::count_text(log.Skipped(), "item", "items");
    }
    if (!log.Damage().isEmpty())
        reason += QStringLiteral(" before its damage: ") + log.Damage();
    return cli::fail(exBadInput, log.Path() + QStringLiteral(": ") + reason);
}

/// The altitudes of the seabed's first echo, those in \p altitudes where there is none.
int CliSonarLine::TrackBottom(std::vector<double>& altitudes)
{
    std::vector<double> tracked;
    {
        CliProgress progress(QStringLiteral("Finding the seabed"));
        ZrBottomTracker tracker;
        tracker.progress = &progress;
        const cli::CancelOnInterrupt stop(tracker.cancel);
        tracked = tracker.Track(log);
    }
    if (cli::interrupted())
        return cli::interrupt_code();
    for (std::size_t i = 0; i < tracked.size() && i < altitudes.size(); ++i) {
        if (!std::isnan(tracked[i]))
            altitudes[i] = tracked[i];
    }
    return exDone;
}

int CliSonarLine::LoadBottom(const CliAltitudeOption& option)
{
    std::vector<double> altitudes;
    altitudes.reserve(log.Pings().size());
    for (const ZrSonarPing& ping : log.Pings())
        altitudes.push_back(ping.pose.altitude);
    if (option.IsTracked()) {
        ZrBottomFile file(log.Path());
        if (file.Load(log.Pings(), bottom))
            return exDone;
        if (file.State() != ZrBottomFile::Missing)
            cli::complain(file.Error());
        if (const int code = TrackBottom(altitudes))
            return code;
    }
    bottom.SetFound(std::move(altitudes));
    return exDone;
}

int CliSonarLine::EndCode() const
{
    return log.Damage().isEmpty() ? int(exDone)
                                  : cli::fail(exBadInput, log.Path() + QStringLiteral(": ") + log.Damage());
}

int CliSonarLine::CheckLine(std::size_t number) const
{
    if (number < log.Pings().size())
        return exDone;
    return cli::fail(exUsage,
        QStringLiteral("There is no line %1; the last one is %2").arg(number).arg(log.Pings().size() - 1));
}

void CliAltitudeOption::AddTo(CLI::App& verb)
{
    cli::add_value(verb, "--altitude", from, "FROM", CheckAltitude,
        "Where the altitude comes from: tracked (the first echo of the seabed, or the line kept beside the "
        "log; the default) or recorded");
}

void CliTrackOptions::AddTo(CLI::App& verb)
{
    cli::add_value(verb, "--smooth", smooth, "S", CheckSmooth,
        "Seconds over which positions and headings are averaged, 0 to 600; 5 unless given");
    cli::add_value(verb, "--heading", heading, "FROM", CheckHeading,
        "Across what the sonar looks: recorded (heading, the default) or course (over ground)");
    cli::add_value(verb, "--heading-offset", offset, "DEG", cli::check_heading,
        "Degrees added to recorded headings, e.g. the magnetic declination, east positive");
}

ZrSonarTrackSettings CliTrackOptions::Settings() const
{
    ZrSonarTrackSettings settings;
    settings.smoothing = cli::number(smooth, usualSmoothing);
    settings.headingOffset = cli::number(offset, 0.0);
    if (heading == "course")
        settings.heading = ZrSonarTrackSettings::headingCourse;
    return settings;
}

std::optional<eSonarSide> cli::parse_side(const std::string& name)
{
    if (name == "port")
        return sidePort;
    if (name == "starboard")
        return sideStarboard;
    return {};
}

std::string cli::check_word(const std::string& text, const char* words)
{
    const QStringList known = QString::fromLatin1(words).split(QLatin1Char(' '));
    if (known.contains(QString::fromStdString(text)))
        return {};
    return "\"" + text + "\" is none of " + known.join(QStringLiteral(", ")).toStdString();
}
