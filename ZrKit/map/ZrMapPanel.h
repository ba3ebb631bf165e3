#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapInput.h"
#include "ZrUtil/ZrSfHolder.h"

#include <functional>

class QTimer;
class ZrMapSurface;

/// The part of a page that shows a map: hands fingers, mouse, wheel and keys to its camera, and asks for
/// frames while it moves.
///
/// \code
/// auto* panel = new ZrMapPanel(page, map);
/// connect(panel, &ZrMapPanel::Changed, page, [page] { page->m_view->update(); });
/// connect(panel, &ZrMapPanel::Tapped, this, [this](const QPointF& world) { SelectAt(world); });
/// \endcode
///
/// A direct child of a page that fills the view. Where the page wants the finger itself, for instance to drag
/// a mark, it takes the press in `m_claim`, and gets all movements of that finger until it is lifted.
///
/// Keys: arrows pan, + and - zoom, N turns north up. GUI thread only.
class ZR_KIT_EXPORT ZrMapPanel : public ZrSfHolder
{
    Q_OBJECT

public:
    /// What a finger or the mouse does to a mark.
    enum eDrag : int
    {
        dragBegin = 0,
        dragMove = 1,
        dragEnd = 2,
        dragCancel = 3 ///< a second finger came, or the touch was taken away: all is to be as before
    };

    ZrMapInput m_input;

    /// Asked at every press of a single finger, with pixels of the camera; true takes the finger.
    std::function<bool(const QPointF& pixel)> m_claim;

    ZrMapPanel(QWidget* parent, ZrMapSurface& map);

    ZrMapSurface& Map() const { return m_map; }

    void Match(); ///< gives the surface its viewport; after a change of the device pixel ratio
    void Moved(); ///< the camera was moved by the page: tells of it as of a movement by hand

Q_SIGNALS:
    void Changed(); ///< a frame is wanted
    void CameraMoved(); ///< by hand
    void Tapped(const QPointF& world, const QPointF& pixel);
    void DoubleTapped(const QPointF& world, const QPointF& pixel);
    void LongPressed(const QPointF& world, const QPointF& pixel);
    void Hovered(const QPointF& world, const QPointF& pixel); ///< the mouse, without a button
    void Dragged(int drag, const QPointF& world, const QPointF& pixel); ///< an `eDrag`, of a claimed finger

protected:
    bool event(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    bool Claimed(QEvent& event);
    bool BeginClaim(const QPointF& pixel);
    void Drag(eDrag drag, const QPointF& pixel);
    void Tell(ZrMapGesture::eEvent what);
    void OnFrame();

    ZrMapSurface& m_map;
    QTimer* m_frames;
    bool m_isDragging = false;
    bool m_isSpoilt = false; ///< a second finger has ended a drag, and there still are fingers
    int m_finger = 0; ///< of the drag; -1 for the mouse
    QPointF m_last;
};
