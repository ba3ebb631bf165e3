#pragma once

#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarSide.h"
#include "ZrKit/sonar/ZrSonarTrackSettings.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

/// The option that tells where altitudes come from: `--altitude`.
struct CliAltitudeOption
{
    std::string from;

    void AddTo(CLI::App& verb);

    bool IsTracked() const { return from != "recorded"; }
};

/// The side-scan lines of a log as the verbs load them: with a progress bar, and ended by a signal.
struct CliSonarLine
{
    ZrSonarLog log;
    ZrBottomLine bottom; ///< from `LoadBottom` on

    /// Reads the table of pings. Returns the exit code, and complains unless it is 0; a log without pings is
    /// refused. A damaged log is loaded up to the damage, see `EndCode`.
    int Load(const QString& path);

    /// Fills `bottom`: from the file beside the log, else by the first echo of the seabed, and by the
    /// recorded altitude where neither knows; or by that alone. Returns the exit code, and complains unless
    /// it is 0.
    int LoadBottom(const CliAltitudeOption& option);

    /// The exit code when all is done: complains about a log that was damaged.
    int EndCode() const;

    /// Complains unless there is a line \p number; returns the exit code.
    int CheckLine(std::size_t number) const;

private:
    int FailWithoutPings() const;
    int TrackBottom(std::vector<double>& altitudes);
};

/// The options that tell how positions come from the navigation: `--smooth`, `--heading`,
/// `--heading-offset`.
struct CliTrackOptions
{
    std::string smooth;
    std::string heading;
    std::string offset;

    void AddTo(CLI::App& verb);

    ZrSonarTrackSettings Settings() const;
};

namespace cli {

/// "port" or "starboard"; nothing for another word.
std::optional<eSonarSide> parse_side(const std::string& name);

/// An empty text when \p text is one of \p words, parted by blanks, else what is wrong with it.
std::string check_word(const std::string& text, const char* words);

} // namespace cli
