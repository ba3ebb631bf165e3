#pragma once

#include "ZrUtil/IPersistable.h"

#include <QString>
#include <QStringList>

/// What the user chooses for the whole application, besides the library's own settings.
class SurveySettings final : public zr::IPersistable
{
public:
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
    QStringList eventLabels; ///< of the event buttons
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
    int palette = 1;
    double gain = 0.0; ///< dB
    double contrast = 1.0;
    bool slant = false; ///< corrected for slant range
    bool bottom = true; ///< the bottom line is shown
    /// @}

    SurveySettings();

    void settings(zr::ZrSetModule& module) override;
};
