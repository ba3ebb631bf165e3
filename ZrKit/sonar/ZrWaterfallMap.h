#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarPings.h"
#include "ZrKit/sonar/ZrWaterfallPoint.h"
#include "ZrKit/sonar/ZrWaterfallSettings.h"

#include <QPointF>
#include <QString>

#include <array>
#include <cstddef>
#include <vector>

class ZrBottomLine;
class ZrSonarTrack;

/// Which ping and range lies where in a side-scan image: its size, and the way from pixels to echoes and
/// back.
///
/// \code
/// const ZrWaterfallMap map(log.Pings(), track, bottom, settings, 0, log.Pings().size() - 1);
/// if (!map.Error().isEmpty())
///     return map.Error();
/// const ZrWaterfallPoint target = map.ToSonar(QPointF(mouse.x() + 0.5, mouse.y() + 0.5));
/// \endcode
///
/// Pixel coordinates run from 0, 0 in the top left corner; pixel n covers n to n + 1. A ping is where its
/// fraction is 0.
///
/// With speed correction rows are metres along the track. Steps longer than five times the usual one, and
/// than one metre, are gaps: they are drawn as that length at most, empty. Where the track has no length
/// there is one row for each ping.
///
/// The altitude between pings where it is known is interpolated, outside of them the nearest one is held.
/// Where none is known at all nothing can be corrected, and columns are slant range.
///
/// Never changes once made: any number of threads.
class ZR_KIT_EXPORT ZrWaterfallMap
{
public:
    static constexpr int MostColumns = 30000;
    static constexpr int MostRows = 32767;

    /// Of the pings \p first to \p last, ends included.
    ZrWaterfallMap(const ZrSonarPings& pings, const ZrSonarTrack& track, const ZrBottomLine& bottom,
        const ZrWaterfallSettings& settings, std::size_t first, std::size_t last);

    QString Error() const { return m_error; } ///< why there is no image, a sentence; else empty

    /// Whether there is none because it would have too many pixels: a coarser resolution would help.
    bool IsTooLarge() const { return m_tooLarge; }

    const ZrWaterfallSettings& Settings() const { return m_settings; }

    int Width() const { return m_left + m_right; } ///< pixels; 0 with an error

    int Height() const { return m_height; }

    double MetresPerPixel() const { return m_metres; } ///< across

    /// Along the track, the mean without speed correction; NaN when that is not known.
    double MetresPerRow() const { return m_metresPerRow; }

    bool IsSpeedCorrected() const { return m_speedCorrected; }

    bool IsSlantCorrected() const { return m_slantCorrected; }

    ZrWaterfallPoint ToSonar(const QPointF& pixel) const;

    /// The place of an echo, outside of the image when its range is not shown. NaN when its ping or side is
    /// not part of the image.
    QPointF ToPixel(double ping, eSonarSide side, double slantRange) const;

    std::size_t First() const { return m_first; } ///< ping

    std::size_t Last() const { return m_first + m_pings.size() - 1; } ///< ping, included

    /// Number of columns of a side.
    int Columns(eSonarSide side) const { return side == sidePort ? m_left : m_right; }

    /// Metres above the seabed at a ping, between those known too; NaN when none is.
    double Altitude(double ping) const;

    /// The range from which on a ping shows the seabed and nothing else, as the columns have it; NaN without
    /// an altitude. A sample beyond the first echo: near the middle of a picture in ground range that one
    /// sample covers many columns.
    double BottomRange(std::size_t ping) const;

    /// The range up to which a side of a ping has samples, as the columns have it; 0 when there are none.
    double EndRange(std::size_t ping, eSonarSide side) const;

    /// The pings that a row shows, with their shares of it.
    struct Row
    {
        std::size_t first = 0;
        std::size_t last = 0;
        double lastShare = 0.0; ///< of two neighbours that are blended, the rest being the other's
        bool isMean = false; ///< of all from first to last
        bool isGap = false; ///< of none
    };

    Row RowAt(int y) const;

private:
    struct Ping
    {
        double along; ///< middle, in units of rows without speed correction, else metres
        double altitude;
        float range[2]; ///< slant range of the sides, 0 where there is none
        bool gapBehind; ///< nothing is drawn between this ping and the next one
    };

    bool TakePings(const ZrSonarPings& pings, const ZrBottomLine& bottom, std::size_t last);
    void FillAltitudes();
    void LayAlong(const ZrSonarTrack& track);
    void LayRows();
    bool LayAcross();
    bool Fail(const QString& reason);
    bool FailTooLarge(const QString& reason);

    double LengthAlong() const { return m_pings.back().along + m_reach; }

    double PingAt(double along) const;
    double AlongOf(double ping) const;
    bool IsShown(eSonarSide side) const;
    int RowOf(int y) const;

    ZrWaterfallSettings m_settings;
    QString m_error;
    bool m_tooLarge = false;
    std::size_t m_first = 0;
    std::vector<Ping> m_pings;
    bool m_speedCorrected = false;
    bool m_slantCorrected = false;
    double m_reach = 0.5; ///< how far a ping reaches beyond its middle at an end, as `along`
    double m_sampleLength = 0.0; ///< the usual one
    double m_metres = 0.0;
    double m_rowLength = 1.0; ///< as `along`
    double m_metresPerRow = std::numeric_limits<double>::quiet_NaN();
    int m_left = 0;
    int m_right = 0;
    int m_height = 0;
};
