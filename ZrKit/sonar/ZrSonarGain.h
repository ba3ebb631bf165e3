#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarGainSettings.h"
#include "ZrKit/sonar/ZrSonarSide.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <vector>

/// Time-varied gain for side-scan samples in slant range.
///
/// \code
/// ZrSonarGain gain(settings);
/// for (some pings)
///     gain.Learn(samples, sidePort, slantRange, altitude); // gainAuto only
/// gain.Prepare();
/// gain.Apply(samples, sidePort, slantRange);
/// \endcode
///
/// The law in decibels of amplitude: spreading × log10(r / R) + 2 × absorption × (r − R), R being the slant
/// range of the ping, so that the far end keeps its amplitude and nearer echoes are lowered. (The sonar
/// equation's transmission loss, two ways.)
///
/// Automatic: amplitudes are averaged in bins of slant range over the pings learnt, beyond the seabed's first
/// return; the gain makes every bin's mean the same as the overall one, within a factor of 16. Before
/// anything was learnt the gain is 1.
///
/// Results saturate at 65,535. Range in metres. `Apply` in any number of threads while nothing is learnt.
class ZR_KIT_EXPORT ZrSonarGain
{
public:
    explicit ZrSonarGain(const ZrSonarGainSettings& settings);

    const ZrSonarGainSettings& Settings() const { return m_settings; }

    /// Counts a ping into the averages; those nearer than \p altitude metres, the water column, are left out
    /// (NaN: none). Does nothing unless the mode is automatic.
    void Learn(zr::span<const u16> samples, eSonarSide side, double slantRange, double altitude);

    /// Makes the gain from what was learnt so far.
    void Prepare();

    /// The factor at \p range metres.
    double Factor(eSonarSide side, double range, double slantRange) const;

    void Apply(zr::span<u16> samples, eSonarSide side, double slantRange) const;

private:
    struct Bin
    {
        double sum = 0.0;
        double count = 0.0;
    };

    double LawFactor(double range, double slantRange) const;
    double AutoFactor(eSonarSide side, double range) const;

    ZrSonarGainSettings m_settings;
    std::vector<Bin> m_bins[2]; ///< by side, each of a quarter of a metre
    std::vector<double> m_factors[2]; ///< at the middles of the bins
};
