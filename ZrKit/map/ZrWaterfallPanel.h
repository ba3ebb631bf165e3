#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/map/ZrWaterfallLayer.h"
#include "ZrKit/map/ZrWaterfallLayout.h"
#include "ZrKit/map/ZrWaterfallRing.h"
#include "ZrUtil/ZrSfHolder.h"

#include <QPointF>

#include <functional>
#include <memory>

class QTouchEvent;
class ZrWaterfallLoader;
class ZrWaterfallWindow;

/// The part of a page that shows a recorded side-scan line around a cursor, to be scrolled, zoomed and
/// pointed at.
///
/// \code
/// panel->SetLoader(&loader);
/// panel->SetCursor(ping); // in the middle; near the ends of the log beside it, for the view to be filled
/// connect(panel, &ZrWaterfallPanel::Scrubbed, this, &Page::GoToPing); // which calls SetCursor
/// connect(panel, &ZrWaterfallPanel::Changed, page, [page] { page->m_view->update(); });
/// panel->Surface().OnCreate(); panel->Surface().Render(); // context current
/// \endcode
///
/// The image lies under the widget, in the view; what is painted over it (`m_overlay`) is the widget's. Of
/// the log what is in view is fetched and nothing else, by the loader.
///
/// A drag scrolls: along the line it tells the ping that is then at the cursor, across it moves a zoomed
/// image. At the ends of the log the image stands and the cursor moves. The wheel and two fingers zoom. While
/// `m_isPointing` a drag is told as `Drawn` instead. A direct child of a page that fills the view. GUI thread
/// only.
class ZR_KIT_EXPORT ZrWaterfallPanel : public ZrSfHolder
{
    Q_OBJECT

public:
    static constexpr double MostZoom = 16.0;

    /// Sides, corrections and order of the lines; place and end are the panel's.
    ZrWaterfallView m_view;
    ZrWaterfallLayer m_layer;
    bool m_isPointing = false;
    /// Paints over the image in the pixels of the layout; called for each repaint.
    std::function<void(QPainter& painter, const ZrWaterfallLayout& layout)> m_overlay;

    explicit ZrWaterfallPanel(QWidget* parent);
    ~ZrWaterfallPanel() override;

    ZrMapSurface& Surface() { return m_surface; }

    void SetLoader(ZrWaterfallLoader* loader); ///< must stay; null for none
    void SetCursor(double ping);

    double Cursor() const { return m_cursor; }

    double Zoom() const { return m_zoom; }

    void SetZoom(double zoom, const QPointF& about); ///< 1 shows all of the range

    void Refresh(); ///< lays out anew, after a change of `m_view`
    void Match(); ///< gives the surface its viewport; after a change of the device pixel ratio

    const ZrWaterfallLayout& Layout() const { return m_layout; }

    /// Design pixels in those of the layout, but never less than so many of the widget: fingers do not shrink
    /// with the window.
    double Reach(double distance) const;

    /// The vertical place of a ping in pixels of the layout; NaN when it is not in view.
    double YOf(double ping) const;

Q_SIGNALS:
    void Changed(); ///< a frame is wanted
    void ScrubBegan();
    void Scrubbed(double ping);
    void ScrubEnded();
    void Tapped(const ZrWaterfallPoint& point, const QPointF& pixel); ///< pixels of the layout
    void Drawn(const QPointF& from, const QPointF& to, bool isDone); ///< likewise

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Press(const QPointF& pixel);
    void Move(const QPointF& pixel);
    void Release(const QPointF& pixel);
    void Pinch(const QTouchEvent& event);
    void Scrub(double pixels);
    void LayOut();
    double WantedEnd() const;
    QSize Pixels() const;

    ZrMapSurface m_surface;
    ZrWaterfallRing m_ring;
    ZrWaterfallLoader* m_loader = nullptr;
    std::unique_ptr<ZrWaterfallWindow> m_window;
    ZrWaterfallLayout m_layout;
    double m_cursor = 0.0;
    double m_zoom = 1.0;
    double m_offset = 0.0; ///< of the image's left edge, pixels; 0 or below
    bool m_isPressed = false;
    bool m_isMoved = false;
    bool m_isPinching = false;
    QPointF m_pressed;
    QPointF m_last;
};
