#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrAxisTicks.h"
#include "ZrKit/review/ZrPlotDecimator.h"
#include "ZrKit/review/ZrPlotSeries.h"
#include "ZrKit/review/ZrTimeLine.h"
#include "ZrKit/ui/ZrKeptPicture.h"

#include <QColor>
#include <QVector>
#include <QWidget>

#include <limits>
#include <vector>

/// Curves over the time of a recording, one plot above the other, in two columns where there is room, with
/// their values at the cursor.
///
/// \code
/// plots->SetTimeLine(&bar->Line()); // which part is visible
/// plots->SetPlots({{tr("Depth"), ZrPlotPanel::length, true, {{&series.depth, QColor()}}}});
/// connect(bar, &ZrTimeBar::ViewChanged, plots, qOverload<>(&QWidget::update));
/// connect(plots, &ZrPlotPanel::Scrubbed, this, &Page::GoTo); // which calls plots->SetCursor
/// \endcode
///
/// Axes fit what is visible; units are those of `ZrUnits`, read at every painting. Where nothing is known, or
/// records are further apart than the time line's longest step, a curve has a hole. The value at the cursor
/// is that of the last record at or before it. A painting costs what the columns on screen need, however long
/// the recording.
///
/// A tap or drag tells the time below the finger, the wheel and two fingers how the visible part is to move.
/// Plots for which there is no room are left out, the last first. GUI thread only.
class ZR_KIT_EXPORT ZrPlotPanel : public QWidget
{
    Q_OBJECT

public:
    enum eQuantity : int
    {
        number, ///< as it is
        length, ///< metres, shown in the short unit
        speed, ///< metres per second
        /// Degrees without leaps; values and the numbers of axes are those of the compass, from 0 up to below
        /// 360: above 350 an axis goes on with 0. Axes have the quarters of a turn.
        angle,
        tilt ///< degrees, as they are
    };

    struct Curve
    {
        const ZrPlotSeries* series = nullptr; ///< must stay
        QColor colour; ///< the theme's highlight while invalid
        QString name; ///< in front of its value, where a plot has several
        Qt::PenStyle style = Qt::SolidLine; ///< what tells curves apart that are of much the same colour
    };

    struct Plot
    {
        QString caption;
        int quantity = number; ///< an `eQuantity`
        bool isDown = false; ///< larger values further down
        QVector<Curve> curves;
    };

    explicit ZrPlotPanel(QWidget* parent);

    void SetTimeLine(const ZrTimeLine* line); ///< must stay; null for none
    void SetPlots(QVector<Plot> plots);

    const QVector<Plot>& Plots() const { return m_plots; }

    void SetCursor(double steady); ///< NaN for none

    /// The value of a curve at the cursor in the units in force, "12.3 m"; a dash where it is not known.
    QString ValueText(int plot, int curve) const;

    int ShownPlots() const; ///< for which there is room

    QRect PlotRect(int plot) const; ///< of the curves of one that is shown, pixels of the widget

    /// A number beside the value axis.
    struct Label
    {
        double value
            = 0.0; ///< in the units in force, as the curves have it; of angles the text may lack turns
        QRect rect; ///< of the widget
        QString text;
    };

    /// The numbers of the axis of a plot that is shown, two at least: those at the ends of the axis where its
    /// data has no room for others. None while nothing is known of its curves.
    QVector<Label> Labels(int plot) const;

    /// Values looked at by the last painting: none while curves, axes and size stay as they were.
    std::size_t Looks() const { return m_looks; }

Q_SIGNALS:
    void ScrubBegan();
    void Scrubbed(double steady);
    void ScrubEnded();
    void ZoomWanted(double factor, double fraction);
    void PanWanted(double share);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QFont SmallFont() const;
    int Columns() const;
    int Room() const;
    QRect Area(int column) const; ///< of the curves of a column
    void Tell(double x);
    ZrPlotSeries::Extent ExtentOf(int plot) const; ///< of what is visible
    ZrAxisTicks TicksOf(int plot, const ZrPlotSeries::Extent& extent) const;
    int YOf(int plot, double value, const ZrAxisTicks& ticks) const;
    double FractionAt(double x) const;
    void PaintPlot(QPainter& painter, int index);
    void PaintHead(QPainter& painter, int index, const QRect& head);
    QVector<double> KeyOf(const Curve& curve, double low, double high, bool isDown) const;
    void PaintCurve(QPainter& painter, const Curve& curve, const QRect& rect, double low, double high,
        double scale, bool isDown);

    const ZrTimeLine* m_line = nullptr;
    QVector<Plot> m_plots;
    double m_cursor = std::numeric_limits<double>::quiet_NaN();
    ZrPlotDecimator m_decimator;
    std::vector<ZrKeptPicture> m_pictures; ///< of the plots' curves
    std::size_t m_looks = 0;
    bool m_isScrubbing = false;
    bool m_isPinching = false;
};
