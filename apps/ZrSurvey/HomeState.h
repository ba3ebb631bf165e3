#pragma once

#include "ZrKit/recording/ZrRecorder.h"
#include "ZrKit/recording/ZrSpaceLeft.h"
#include "ZrKit/review/ZrRecentLog.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "apps/ZrSurvey/SurveyVehicle.h"

#include <QCoreApplication>
#include <QString>

/// What the tiles of the home page say. Ages are seconds, NaN for what never came.
struct HomeState
{
    Q_DECLARE_TR_FUNCTIONS(HomeState)

public:
    struct Tile
    {
        QString value;
        QString unit;
        QString note;
        ZrValueTile::eState state = ZrValueTile::normal;
        QString hint; ///< what the note has no room for; may be empty
    };

    static constexpr double Late = 5.0; ///< seconds without data after which they are missed
    static constexpr double Lost = 30.0; ///< and after which they are not expected any more

    static constexpr double Year = 365.0 * 86400.0; ///< seconds; room for more than that is told as such

    /// \param age of the last position; \param isAtEnd the source has told all it had
    static Tile Position(const SurveyVehicle::Pose& pose, bool isLive, double age, bool isAtEnd = false);

    /// \param source where data are to come from; \param age of the last of them
    /// \param problem that keeps them from coming, a sentence; may be empty
    /// \param isAtEnd the source has told all it had: a plan that was run, a log that was replayed
    static Tile Data(const QString& source, bool isLive, double age, const QString& problem = QString(),
        bool isAtEnd = false);

    /// \param elapsed time of the recording that is going on, empty for none; \param folder of recordings
    /// \param isStopped the last one has ended by itself, and nobody has seen that
    static Tile Recording(const QString& elapsed, const ZrRecorder::Status& status, const QString& folder,
        bool isStopped = false);

    /// \param freeBytes -1 when not known
    static Tile Space(qint64 freeBytes, int stopBelowMegabytes, const ZrSpaceLeft& left);

    /// By what rate that is told, or why it is not; a sentence.
    static QString SpaceHint(const ZrSpaceLeft& left);

    /// When it was made, how long it is and how large, and whether there is sonar in it.
    static QString RecordingText(const ZrRecentLog& log);

    /// For how much longer a recording has room: "90 min left", "5 h left", "3 days left", "> 1 year left".
    static QString LeftText(double seconds);

    /// About how long, rounded: "3 h 20 min", "12 min", "40 s"; empty for what is no time.
    static QString DurationText(double seconds);
};
