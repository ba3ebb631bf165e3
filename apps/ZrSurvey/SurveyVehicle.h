#pragma once

#include "ZrKit/scene/ZrScenePlace.h"

#include <QObject>
#include <QString>

#include <limits>
#include <vector>

/// Where a vehicle is and how it lies, as the page "Record" (live) or "Review" (at the cursor) tells it to
/// the others.
class SurveyVehicle : public QObject
{
    Q_OBJECT

public:
    struct Pose
    {
        qint64 time = 0; ///< ms since 1970, UTC
        double lat = std::numeric_limits<double>::quiet_NaN(); ///< degrees
        double lng = std::numeric_limits<double>::quiet_NaN();
        double depth = std::numeric_limits<double>::quiet_NaN(); ///< metres, down
        double altitude = std::numeric_limits<double>::quiet_NaN(); ///< metres above the sea floor
        double heading = std::numeric_limits<double>::quiet_NaN(); ///< degrees true
        double pitch = std::numeric_limits<double>::quiet_NaN(); ///< degrees, bow up
        double roll = std::numeric_limits<double>::quiet_NaN(); ///< degrees, starboard down
        double speed = std::numeric_limits<double>::quiet_NaN(); ///< m/s over ground
    };

    static constexpr std::size_t MostPlaces = 200000; ///< of more the oldest go

    using QObject::QObject;

    const Pose& Current() const { return m_pose; }

    QString Source() const { return m_source; } ///< whose pose it is, for people; empty for none

    /// \param isLive of the vehicle itself; false of a recording
    /// \param hasNewFix the position has just come, and is another place of the way
    void Set(const Pose& pose, const QString& source, bool isLive, bool hasNewFix = true);
    void Clear(); ///< the way as well

    const std::vector<ZrScenePlace>& Way() const
    {
        return m_way;
    } ///< of the vehicle up to now, or of the recording

    int WayRevision() const
    {
        return m_revision;
    } ///< counted up when the way is another one, not when it grows

    /// The way of a recording; of the vehicle itself `Set` adds each place to it.
    void SetWay(std::vector<ZrScenePlace> way);

    bool IsLive() const { return m_isLive; }

    bool HasNewFix() const { return m_hasNewFix; } ///< what was told last brought a position

Q_SIGNALS:
    void Changed();

private:
    Pose m_pose;
    QString m_source;
    bool m_isLive = false;
    bool m_hasNewFix = false;
    std::vector<ZrScenePlace> m_way;
    int m_revision = 0;
};
