#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrPlotSeries.h"
#include "ZrKit/review/ZrTimeLine.h"
#include "ZrKit/ui/ZrKeptPicture.h"

#include <QVector>
#include <QWidget>

#include <limits>
#include <memory>
#include <vector>

class QTouchEvent;

/// The time of a recording from edge to edge: a finger drags the cursor, two of them zoom.
///
/// \code
/// bar->SetLog(series.times);
/// bar->SetProfile(&series.depth);
/// connect(bar, &ZrTimeBar::ScrubBegan, this, [this] { m_clock.Pause(); });
/// connect(bar, &ZrTimeBar::Scrubbed, this, &Page::GoTo); // which calls bar->SetCursor
/// \endcode
///
/// Below stand the times of the log in UTC; gaps are cut out and marked with what is missing, or hatched;
/// events are flags along the upper edge, the range A to B a band with two handles there. A tap on a flag
/// tells the event, a drag anywhere else the time below the finger, at every move; events attract it. The
/// wheel zooms about the mouse, with Shift it moves along, as two fingers do. The bar moves no cursor itself:
/// who listens does.
///
/// Times are steady times (see `ZrSteadyTime`). Repaints only when what it shows changes. GUI thread only.
class ZR_KIT_EXPORT ZrTimeBar : public QWidget
{
    Q_OBJECT

public:
    static constexpr float Height = 96.0F; ///< design pixels, of which it makes good use

    explicit ZrTimeBar(QWidget* parent);

    const ZrTimeLine& Line() const { return m_line; } ///< which part is visible

    void SetLog(std::shared_ptr<const ZrSteadyTime> log); ///< null for none; without range and events then

    /// A curve behind the axis, larger values further down, that tells where in a dive a moment is; it must
    /// stay. Null for none.
    void SetProfile(const ZrPlotSeries* profile);

    void SetCursor(double steady); ///< NaN for none

    double Cursor() const { return m_cursor; }

    void SetEvents(std::vector<double> steady); ///< ascending

    void SetCurrentEvent(int event); ///< stands out; -1 for none

    void SetRange(double a, double b); ///< NaN for an end that is not set

    double RangeA() const { return m_range[0]; }

    double RangeB() const { return m_range[1]; }

    /// Whether gaps are cut out of the axis, as they are at first; else it is real time, and they are as long
    /// as they were. The next `SetLog` keeps to it.
    void SetGapsCut(bool cut);

    bool AreGapsCut() const { return m_line.AreGapsCut(); }

    void ShowAll();
    void Zoom(double factor, double fraction);
    void Pan(double share);
    void ShowRange(double a, double b);
    void Reveal(double steady); ///< moves the visible part so that it is in it

    void Restyle(); ///< after a change of colours, fonts or scale

    double XOf(double steady) const; ///< pixels of the widget; NaN without log

    QSize sizeHint() const override;

Q_SIGNALS:
    void ScrubBegan();
    void Scrubbed(double steady);
    void ScrubEnded();
    void EventTapped(int event);
    void RangeChanged(double a, double b); ///< a handle was dragged
    void ViewChanged(); ///< another part is visible

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    enum eGrab : int
    {
        grabNothing,
        grabTime,
        grabEvent, ///< until the finger moves
        grabA,
        grabB
    };

    bool Touch(const QTouchEvent& event);
    void Press(const QPointF& pos);
    void Move(const QPointF& pos);
    void Release();
    void Viewed();
    double TimeAt(double x) const;
    int Margin() const;
    QRect Axis() const; ///< where times are, between the edges
    QRect Flags() const;
    double HandleX(int end) const;
    QFont SmallFont() const;
    void PaintProfile(QPainter& painter, const QRect& axis);
    void PaintCurve(QPainter& painter, const QRect& axis, const ZrPlotSeries::Extent& extent) const;
    void PaintCuts(QPainter& painter, const QRect& axis);
    void PaintGaps(QPainter& painter, const QRect& axis);
    void PaintRange(QPainter& painter, const QRect& axis);
    void PaintTicks(QPainter& painter, const QRect& axis);
    void PaintEvents(QPainter& painter, const QRect& axis);
    void PaintCursor(QPainter& painter, const QRect& axis);

    ZrTimeLine m_line;
    ZrKeptPicture m_picture; ///< of the profile
    const ZrPlotSeries* m_profile = nullptr;
    double m_cursor = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> m_events;
    int m_currentEvent = -1;
    double m_range[2] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN()};
    eGrab m_grab = grabNothing;
    int m_grabbedEvent = -1;
    QPointF m_pressed;
    bool m_isPinching = false;
};
