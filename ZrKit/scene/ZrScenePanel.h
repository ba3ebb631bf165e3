#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrSfHolder.h"

#include <QPointF>

class QTouchEvent;
class ZrSceneSurface;

/// The part of a page that shows a scene: fingers, mouse, wheel and keys move its camera, which may follow
/// the vehicle.
///
/// \code
/// auto* panel = new ZrScenePanel(page, scene);
/// connect(panel, &ZrScenePanel::Changed, page, [page] { page->m_view->update(); });
/// scene.m_pose.position = way.ToScene(lat, lng, depth);
/// panel->PoseChanged(); // the camera goes with it
/// \endcode
///
/// One finger or the left button turns the camera about its target, the whole width by `OrbitWidth` degrees;
/// two fingers move and zoom it, as the right button (or the left one with Shift) and the wheel do. Moving
/// ends following. Keys, by `OnKey`: + or = and − zoom, arrows turn. A direct child of a page that fills the
/// view. GUI thread only.
class ZR_KIT_EXPORT ZrScenePanel : public ZrSfHolder
{
    Q_OBJECT

public:
    static constexpr float OrbitWidth = 270.0F; ///< degrees
    static constexpr float KeyZoom = 1.2F; ///< also of a notch of the wheel
    static constexpr float KeyTurn = 5.0F; ///< degrees

    ZrScenePanel(QWidget* parent, ZrSceneSurface& scene);

    bool Follows() const { return m_follows; } ///< true at first

    void SetFollows(bool follows);
    void PoseChanged(); ///< after a change of the scene's pose

    /// Exaggerates heights; the camera goes as far away as what was in view has grown. Nothing for what is
    /// not above 0.
    void SetExaggeration(float factor);

    /// Looks at the vehicle from behind and above, to its starboard, \p distance metres away at true scale,
    /// and follows it.
    void LookFromBehind(float distance);

    /// Looks at all of the trail and the floor below it. Nothing while there is no trail.
    void ShowAll();

    bool OnKey(int key, Qt::KeyboardModifiers modifiers); ///< false for a key that means nothing here

Q_SIGNALS:
    void Changed(); ///< a frame is wanted
    void FollowsChanged();

protected:
    bool event(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void Match();
    void Orbit(const QPointF& way);
    void Pan(const QPointF& way);
    void Zoom(float factor);
    void Touch(QTouchEvent& event);

    ZrSceneSurface& m_scene;
    QPointF m_last;
    bool m_follows = true;
};
