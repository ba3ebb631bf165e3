#pragma once

#include "ZrUtil/ZrSfHolder.h"

class ZrSceneSurface;

/// The part of a page that shows a scene: one finger or the left button turns the camera about its target,
/// two fingers move and zoom it, as the right button and the wheel do.
class ScenePanel : public ZrSfHolder
{
    Q_OBJECT

public:
    ScenePanel(QWidget* parent, ZrSceneSurface& scene);

Q_SIGNALS:
    void Changed(); ///< a frame is wanted
    void Panned(); ///< the camera looks elsewhere now

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
    void Touch(class QTouchEvent& event);

    ZrSceneSurface& m_scene;
    QPointF m_last;
};
