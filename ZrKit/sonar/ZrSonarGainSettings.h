#pragma once

/// How `ZrSonarGain` evens out the fall of the echo with range. A plain value.
struct ZrSonarGainSettings
{
    enum eMode : int
    {
        gainNone, ///< amplitudes as recorded
        gainLaw, ///< time-varied gain by the law of spreading and absorption
        gainAuto ///< by what the line itself shows: the mean amplitude at each range becomes the same
    };

    eMode mode = gainAuto;
    double spreading = 30.0; ///< dB for each tenfold range; 20 log r one way, 40 log r both ways
    double absorption = 0.05; ///< dB for each metre of range and way; 0.05 suits some 300 kHz in sea water
    double strength = 1.0; ///< share of the gain that is applied, 0 to 1
};
