#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrWaterfallRing.h"
#include "ZrKit/map/ZrWaterfallView.h"
#include "ZrKit/sonar/ZrWaterfallPoint.h"

#include <QPointF>

#include <array>
#include <vector>

/// Which line and range of a waterfall lies at which pixel, for drawing and for cursors, marks and measuring.
///
/// \code
/// const ZrWaterfallLayout layout(ring, view);
/// const ZrWaterfallPoint point = layout.ToSonar(QPointF(mouse.x() + 0.5, mouse.y() + 0.5));
/// \endcode
///
/// Pixels are those of the view, y down, pixel n covering n to n + 1. Pings count as lines do, and a ping is
/// where its fraction is 0: in the middle of its line. As in `ZrWaterfallMap`, with both sides the wider half
/// of an odd width is starboard, and a slant range over the altitude is a ground range.
///
/// A line has one altitude over its whole height: its own, or the one that the ring holds for it. Lines
/// without any are drawn in slant range.
///
/// With speed correction a line reaches half-way to its neighbours. Steps longer than five times the usual
/// one, and than one metre, are gaps: they are drawn as that length at most, empty. A line whose way is not
/// known, or that is not there, has the usual height.
///
/// Never changes once made: any number of threads.
class ZR_KIT_EXPORT ZrWaterfallLayout
{
public:
    /// A line in the view, from the newest on.
    struct Row
    {
        i64 line = 0;
        double from = 0.0; ///< pixels from the edge of the newest lines to the newer end of the line
        double to = 0.0; ///< likewise to its older end
        bool isThere = false; ///< the ring has it; else what follows means nothing
        int row = 0; ///< of the ring
        double altitude = 0.0; ///< metres; NaN not known
        std::array<double, 2> range{}; ///< slant range, metres; 0 when that side shows nothing
        std::array<int, 2> count{}; ///< bytes of the row that are samples
    };

    ZrWaterfallLayout() = default; ///< of nothing
    ZrWaterfallLayout(const ZrWaterfallRing& ring, const ZrWaterfallView& view);

    const ZrWaterfallView& View() const { return m_view; }

    const std::vector<Row>& Rows() const { return m_rows; } ///< all that are in view, none without pixels

    bool IsSlantCorrected() const { return m_view.slantCorrected; }

    bool IsSpeedCorrected() const { return m_speedCorrected; }

    double MetresPerPixel() const { return m_metres; } ///< across; 0 when nothing can be drawn

    double End() const { return m_end; } ///< the line at the edge of the newest lines

    /// Number of columns of a side; 0 when it is not shown.
    int Columns(eSonarSide side) const { return side == sidePort ? m_left : m_right; }

    int WiderColumns() const { return m_left > m_right ? m_left : m_right; }

    /// Metres shown to a side.
    double Range(eSonarSide side) const { return Columns(side) * m_metres; }

    /// The range up to which a side of a row has samples, as it is drawn, metres; 0 when there are none.
    double EndRange(const Row& row, eSonarSide side) const;

    /// What lies at a pixel; not valid outside, in a gap, beyond the recorded range, where no line is.
    ZrWaterfallPoint ToSonar(const QPointF& pixel) const;

    /// The place of an echo, outside of the view when its range is not shown. NaN when its line or side is
    /// not in view, or is not there.
    QPointF ToPixel(double ping, eSonarSide side, double slantRange) const;

    /// The lines in view that are not there, in ascending order.
    const std::vector<ZrWaterfallRing::Lines>& Missing() const { return m_missing; }

    /// The `end` with which the picture is \p pixels further down: it follows a finger. As far as there are
    /// lines, and as far as the view is high.
    double EndAfterPan(double pixels) const;

private:
    /// Half of the way between two lines, which belongs to either, and the gap between them; pixels.
    struct Step
    {
        double half;
        double gap;
    };

    Step StepAbove(const ZrWaterfallRing& ring, i64 line, double usual) const;
    bool LayAcross(const ZrWaterfallRing& ring);
    void LayAlong(const ZrWaterfallRing& ring);

    ZrWaterfallView m_view;
    std::vector<Row> m_rows;
    std::vector<ZrWaterfallRing::Lines> m_missing;
    bool m_speedCorrected = false;
    double m_metres = 0.0;
    double m_unit = 1.0; ///< pixels for each line, or for each metre along
    double m_end = 0.0;
    std::vector<Row> m_newer; ///< beyond the edge of the newest lines, from there on, as high as the view
    int m_left = 0;
    int m_right = 0;
};
