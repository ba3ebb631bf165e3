#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarGainSettings.h"
#include "ZrKit/sonar/ZrSonarSide.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <array>
#include <limits>
#include <memory>
#include <mutex>
#include <vector>

/// Time-varied gain for side-scan samples in slant range.
///
/// \code
/// ZrSonarGain gain(settings);
/// for (some pings)
///     gain.Learn(samples, sidePort, slantRange, altitude); // gainAuto only
/// gain.Prepare();
/// gain.Apply(samples, sidePort, slantRange, altitude);
/// \endcode
///
/// The law in decibels of amplitude: spreading × log10(r / R) + 2 × absorption × (r − R), R being the slant
/// range of the ping, so that the far end keeps its amplitude and nearer echoes are lowered. (The sonar
/// equation's transmission loss, two ways.) Nearer than half a metre it stays as it is there.
///
/// Automatic: the product of two factors, one for the slant range and one for the angle at which the sound
/// meets the seabed, chosen so that the mean amplitude becomes the same at every range and at every angle.
/// The range has a share in it that no altitude changes (spreading, absorption, the sonar's own gain), the
/// angle one that follows the altitude (the beam's lobes, the seabed's backscatter); over a line at constant
/// altitude the two are one, and the factor for the range holds it all. Within 16 up and down for the range
/// and 4 for the angle. Before anything was learnt the gain is 1.
///
/// What is averaged lies beyond the seabed's first return. Shadows, amplitudes below a quarter of the mean,
/// are no part of it, or the ranges at which a wreck throws one would be brightened along the whole line.
/// Ranges and angles that few samples have seen take the factor of the nearest that many have.
///
/// Spreading and absorption that are not finite count as 0, a strength that is not as 1, one beyond 0 to 1
/// as the nearer of these. Results saturate at 65,535. Ranges and altitudes in metres; a NaN altitude is not
/// known. `Apply` in any number of threads while nothing is learnt or prepared.
class ZR_KIT_EXPORT ZrSonarGain
{
public:
    explicit ZrSonarGain(const ZrSonarGainSettings& settings);

    const ZrSonarGainSettings& Settings() const { return m_settings; }

    /// Counts a ping into the averages; those nearer than \p altitude, the water column, are left out. Does
    /// nothing unless the mode is automatic.
    void Learn(zr::span<const u16> samples, eSonarSide side, double slantRange, double altitude);

    /// Makes the gain from what was learnt so far.
    void Prepare();

    /// The factor at \p range of a ping that reaches to \p slantRange.
    double Factor(eSonarSide side, double range, double slantRange, double altitude = unknown) const;

    void Apply(zr::span<u16> samples, eSonarSide side, double slantRange, double altitude = unknown) const;

private:
    static constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
    static constexpr std::size_t levels = 33;
    static constexpr std::size_t angles = 45; ///< bins of two degrees, and one for unknown altitudes
    static constexpr std::size_t sines = 1024;

    struct Sum
    {
        double sum = 0.0;
        double count = 0.0;

        void Add(const Sum& other)
        {
            sum += other.sum;
            count += other.count;
        }
    };

    /// The amplitudes at a range and an angle, by half octaves.
    using Cell = std::array<Sum, levels>;
    using Angles = std::array<std::unique_ptr<Cell>, angles + 1>;
    using AngleSums = std::array<Sum, angles + 1>;

    /// What was learnt of a side, and the gain that was made from it.
    struct Side
    {
        std::vector<Angles> cells; ///< by range, each of a quarter of a metre
        std::vector<double> ranges; ///< factors at the middles of the bins
        std::vector<float> bySine; ///< factors by altitude / range, the strength in them
    };

    /// The factors for the ranges of the samples of a ping, the strength in them.
    struct Table
    {
        eSonarSide side = sidePort;
        double slantRange = 0.0;
        std::vector<float> factors;
    };

    static std::size_t AngleOf(double sine);
    static Sum WithoutShadows(const Cell& cell);
    void PrepareSide(Side& side) const;
    double LawFactor(double range, double slantRange) const;
    double RangeFactor(eSonarSide side, double range, double slantRange) const;
    std::shared_ptr<const Table> TableFor(eSonarSide side, double slantRange, std::size_t count) const;

    ZrSonarGainSettings m_settings;
    std::array<Side, 2> m_sides;
    mutable std::mutex m_mutex; ///< guards the tables
    mutable std::vector<std::shared_ptr<const Table>> m_tables; ///< used last
};
