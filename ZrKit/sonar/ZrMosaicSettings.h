#pragma once

#include "ZrKit/sonar/ZrSonarGainSettings.h"
#include "ZrKit/sonar/ZrSonarTrackSettings.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>

/// How `ZrMosaic` makes a picture of side-scan lines. A plain value.
struct ZrMosaicSettings
{
    /// What shows where the same place was seen more than once.
    enum eBlend : int
    {
        blendNewest, ///< what was seen last
        blendBrightest, ///< the strongest echo, which keeps targets
        blendAverage, ///< the mean, which lowers the noise
        blendNadir ///< what was seen nearest to the track, where the picture is sharpest
    };

    /// How a pixel gets its value.
    enum eSampling : int
    {
        samplingNearest, ///< the one sample nearest to it, as recorded
        samplingBilinear ///< between samples and pings, averaged where a pixel covers several
    };

    double resolution = 0.0; ///< metres of a pixel, 0.001 to 1000; 0 chooses by samples and pings
    eBlend blend = blendNewest;
    eSampling sampling = samplingBilinear;
    bool port = true; ///< whether that side is shown
    bool starboard = true;
    double nadirGap = 0.0; ///< metres to each side of the track that are left out
    double farGap = 0.0; ///< metres at the far end of each side that are left out

    // Two pings are joined when all of these hold; else there is a gap between them.
    double maxTime = 3.0; ///< seconds from one to the other
    double maxStep = 10.0; ///< metres from one to the other
    double maxTurn = 30.0; ///< degrees of heading from one to the other
    /// Degrees from the first ping to the second one, and from the last but one to the last: at the ends of a
    /// line nothing smooths a compass that has not settled.
    double maxEndTurn = 4.0;
    double maxFixGap = 60.0; ///< seconds between the fixes around a ping; beyond, its place is a guess

    ZrSonarTrackSettings track;
    ZrSonarGainSettings gain;
    double clip = 0.002; ///< share of the pixels beyond each end of the contrast, 0 to 0.5
    double gamma = 0.6; ///< of the contrast, above 0
    QString palette = QStringLiteral("copper"); ///< one of `ZrSonarPalette::Names`

    /// Pixels of the largest picture, at most 500 million; each needs 12 bytes of memory.
    u64 mostPixels = 64'000'000;
};
