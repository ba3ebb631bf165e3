#pragma once

#include <QObject>
#include <QString>

#include <limits>

/// Where the vehicle is and how it lies, as the pages "Record" (live) and "Review" (at the cursor) tell it to
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

    using QObject::QObject;

    const Pose& Current() const { return m_pose; }

    QString Source() const { return m_source; } ///< whose pose it is, for people; empty for none

    /// \param isLive of the vehicle itself; false of a recording
    void Set(const Pose& pose, const QString& source, bool isLive);
    void Clear();

    bool IsLive() const { return m_isLive; }

Q_SIGNALS:
    void Changed();

private:
    Pose m_pose;
    QString m_source;
    bool m_isLive = false;
};
