#pragma once

#include "ZrUtil/IPersistable.h"

#include <QString>
#include <QStringList>

/// What the user chooses for the whole application, besides the library's own settings.
class SurveySettings final : public zr::IPersistable
{
public:
    /// \name Limits
    /// What is outside is not taken from a file, and refused by the forms.
    /// @{
    static constexpr int LastSource = 5; ///< of `SurveySource::eKind`
    static constexpr int LastBlanking = 2; ///< of `ZrSonarBlanking::eKind`
    static constexpr int LastPalette = 13; ///< of `ZrSonarPalette::Names`
    static constexpr int MostSplitMegabytes = 1024 * 1024;
    static constexpr int MostSplitMinutes = 24 * 60;
    static constexpr int LeastStopBelow = 50; ///< megabytes
    static constexpr int MostStopBelow = 1024 * 1024;
    static constexpr int MostPort = 65535;
    static constexpr int LeastBaud = 300;
    static constexpr int MostBaud = 4000000;
    static constexpr double LeastSimSpeed = 0.1;
    static constexpr double MostSimSpeed = 50.0;
    static constexpr double MostSimCurrent = 5.0; ///< m/s
    static constexpr double MostGain = 20.0; ///< dB, either way
    static constexpr double LeastContrast = 0.25;
    static constexpr double MostContrast = 4.0;
    static constexpr int MostLabels = 8; ///< event buttons
    static constexpr int LongestLabel = 40; ///< characters
    static constexpr int LongestPrefix = 64;
    static constexpr double LeastPlanScale = 1e-4; ///< metres for each pixel
    static constexpr double MostPlanScale = 1e5;
    /// @}

    /// \name Display
    /// @{
    int colours = 1; ///< a `ZrColourScheme::eScheme`
    /// @}

    /// \name Recording
    /// @{
    QString recordDir; ///< where logs are created; the folder of documents at first
    QString recordPrefix = QStringLiteral("survey");
    int splitMegabytes = 0; ///< a new log after so many; 0 for never
    int splitMinutes = 0; ///< likewise
    int stopBelowMegabytes = 500; ///< free space at which recording ends
    QStringList eventLabels; ///< of the event buttons, one line each
    /// @}

    /// \name Source of the vehicle's data
    /// @{
    int source = 0; ///< a `SurveySource::eKind`
    int udpPort = 10110;
    QString tcpHost = QStringLiteral("localhost");
    int tcpPort = 10110;
    QString serialPort;
    int serialBaud = 4800;
    QString sourceFile; ///< NMEA text or log that is replayed
    double simSpeed = 1.0; ///< the simulator's time runs so many times as fast
    double simCurrent = 0.2; ///< m/s
    double simSet = 90.0; ///< degrees, to where the current runs
    /// @}

    /// \name Display of sonar
    /// @{
    int palette = 1; ///< index in `ZrSonarPalette::Names`
    double gain = 0.0; ///< dB
    double contrast = 1.0;
    bool slant = false; ///< corrected for slant range
    bool bottom = true; ///< the bottom line is shown
    int blanking = 1; ///< a `ZrSonarBlanking::eKind`
    /// @}

    /// \name Review
    /// @{
    bool gapsCut = true; ///< of the time line; else it is real time
    /// @}

    /// \name Where the map of the page "Plan" was left
    /// @{
    double planLat = 0.0; ///< of its middle, degrees
    double planLng = 0.0;
    double planScale = 0.0; ///< metres for each pixel; 0 for a map that was never moved
    double planRotation = 0.0; ///< degrees
    /// @}

    SurveySettings();

    void settings(zr::ZrSetModule& module) override;

    void TakeSource(const SurveySettings& other); ///< what concerns the source of data, and nothing else

    /// Whether the source is one that can be opened: a port or file that it needs has a name.
    bool HasSource() const;

    /// Why \p prefix cannot begin the name of a file, a sentence; empty when it can.
    static QString PrefixProblem(const QString& prefix);

    /// What can be on the event buttons: without blanks around, empty ones, and what is too much.
    static QStringList UsableLabels(const QStringList& labels);

private:
    void PutRight();
};
