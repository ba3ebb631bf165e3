#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarTarget.h"

#include <QCoreApplication>
#include <QString>

#include <cstddef>

class ZrSonarGeo;

/// Measures what is seen in a side-scan line: where it lies, how long and wide it is, how high it stands.
///
/// \code
/// ZrSonarMeasure measure(geo);
/// ZrSonarTarget target;
/// if (!measure.Place({line, sideStarboard, 412.0}, target)
///     || !measure.Height({line, sideStarboard, 412.0}, 530.0, height))
///     return measure.Error();
/// \endcode
///
/// Each function is false, with a sentence for the user in `Error` and its result untouched, when the spots
/// lie where nothing was recorded, in the water column or at an unknown place, when numbers are not finite,
/// or when what was asked for cannot be. Metres. One thread at a time; the geometry must outlive the object.
class ZR_KIT_EXPORT ZrSonarMeasure
{
    Q_DECLARE_TR_FUNCTIONS(ZrSonarMeasure)

public:
    /// The extent between two spots.
    struct Extent
    {
        double distance = 0.0; ///< straight over the seabed
        double bearing = 0.0; ///< from the first spot to the second, degrees from true north, 0 to 360
        double length = 0.0; ///< share of the distance along the heading at the first spot
        double width = 0.0; ///< share of the distance across it
    };

    /// How high something stands above the seabed.
    struct Shadow
    {
        double height = 0.0; ///< by slant ranges
        double flatHeight = 0.0; ///< by ground ranges
        double length = 0.0; ///< of the shadow on the seabed, by ground ranges
        double step = 0.0; ///< change of `height` when one end of the shadow is off by a sample
    };

    /// \param firstLine number of the first ping in sentences for the user
    explicit ZrSonarMeasure(const ZrSonarGeo& geo, std::size_t firstLine = 0)
        : m_geo(geo)
        , m_firstLine(firstLine)
    {
    }

    /// Fills spot, time, position, ranges and altitude of \p target; the rest stays.
    bool Place(const ZrSonarSpot& spot, ZrSonarTarget& target);

    /// The extent from \p from to \p to, which may lie on different pings and sides.
    bool Between(const ZrSonarSpot& from, const ZrSonarSpot& to, Extent& extent);

    /// The height of what stands at \p top, the last echo before the shadow, whose shadow ends at the sample
    /// \p shadowEnd of the same ping and side.
    ///
    /// The ray that passes the top meets the seabed where the shadow ends. With the sonar at altitude a, the
    /// top at slant range r and the end of the shadow at slant range R along that one ray, by similar
    /// triangles
    ///
    ///     height = a (R − r) / R
    ///
    /// which is exact for a level seabed and straight sound. The form common in handbooks takes the ground
    /// ranges instead, g = √(r² − a²) and G = √(R² − a²):
    ///
    ///     flatHeight = a (G − g) / G
    ///
    /// It supposes that the echo of the top comes from the seabed, which makes it too large, the more so the
    /// higher the thing and the nearer the sonar. Both need the shadow to fall on the seabed as a whole and
    /// to begin at the highest point. An altitude wrong by 1 % makes the height wrong by 1 %; a seabed that
    /// slopes by half a degree is off by a tenth of the altitude ten altitudes away, and the height with it.
    bool Height(const ZrSonarSpot& top, double shadowEnd, Shadow& shadow);

    QString Error() const { return m_error; } ///< why the last call failed; else empty

private:
    std::size_t Line(std::size_t ping) const { return ping + m_firstLine; }

    bool Check(const ZrSonarSpot& spot);
    bool Fail(const QString& error);

    const ZrSonarGeo& m_geo;
    std::size_t m_firstLine;
    QString m_error;
};
