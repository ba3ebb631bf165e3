#pragma once

#include "ZrKit/sonar/ZrSonarBlanking.h"
#include "ZrKit/sonar/ZrSonarGainSettings.h"

#include <QRgb>
#include <QString>

#include <limits>

/// How `ZrWaterfall` draws side-scan lines. A plain value.
///
/// The colours and the contrast are chosen for the eye: amplitudes of a seabed are speckle, whose brightest
/// hundredth is many times the mean. With one pixel in 10,000 outside the range, as `SonarDataPkt` has it,
/// those few take most of the palette and the seabed is a dull dark; with one in 100 it fills the palette.
/// `clip` 0.0001 and `gamma` 0.6 give the other picture.
struct ZrWaterfallSettings
{
    enum eSides : int
    {
        bothSides, ///< port mirrored to the left, the way of the vehicle in the middle
        portOnly, ///< range grows to the left
        starboardOnly ///< range grows to the right
    };

    enum eNewest : int
    {
        newestTop, ///< seen from above, the vehicle going up
        newestBottom ///< mirrored: the vehicle goes down, and port is left nevertheless
    };

    eSides sides = bothSides;
    eNewest newest = newestTop;
    bool slantCorrected = false; ///< columns are even steps over the seabed, without the water column
    bool speedCorrected
        = true; ///< rows are as long along the track as pixels are across; else one for a ping
    double range = 0.0; ///< metres shown to each side, in slant or ground range as drawn; 0: all there is
    int width = 0; ///< pixels; 0: by `resolution`
    double resolution = 0.0; ///< metres for each pixel; with `width` 0 too: one pixel for each sample

    ZrSonarGainSettings gain;

    double clip = 0.01; ///< share of the pixels beyond the bottom outside the contrast at each end, 0 to 0.5
    float lo = std::numeric_limits<float>::quiet_NaN(); ///< amplitude of black and,
    float hi = std::numeric_limits<float>::quiet_NaN(); ///< of white, by hand; NaN: both by `clip`
    double gamma = 1.0; ///< below 1 lifts what is dark: seabed, and shadows that are to stay dark
    double shownGain = 0.0; ///< dB by which the brightness that `gamma` gives is raised for the eye, and
    double shownContrast = 1.0; ///< its slope about the middle, before: see `ZrWaterfallPalettes::SetLook`
    bool invert = false; ///< strong echoes dark
    QString palette = QStringLiteral("copper"); ///< of `ZrSonarPalette::Names`

    QRgb noData = qRgb(44, 54, 66); ///< where nothing was recorded: unlike any echo in the usual palettes
    int blanking = ZrSonarBlanking::none; ///< what of the water column is dark
    bool drawBottom = false; ///< marks the first echo of the seabed; only in slant range
    QRgb bottom = qRgb(64, 224, 255);
};
