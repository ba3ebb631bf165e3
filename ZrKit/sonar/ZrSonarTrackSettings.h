#pragma once

/// How `ZrSonarTrack` makes a track from the poses of the pings. A plain value.
struct ZrSonarTrackSettings
{
    /// What gives the direction across which the sonar looks.
    enum eHeading : int
    {
        headingRecorded, ///< the recorded heading; the course where none was recorded
        headingCourse ///< always the course over ground: no compass error, but blind to drift
    };

    eHeading heading = headingRecorded;
    double headingOffset = 0.0; ///< degrees added to recorded headings, e.g. the magnetic declination

    /// Seconds over which positions and headings are averaged, centred on the ping; 0 takes them as they
    /// are. Receivers repeat and round their positions: at a ping every 0.1 s the unsmoothed track is a
    /// staircase.
    double smoothing = 0.0;
};
