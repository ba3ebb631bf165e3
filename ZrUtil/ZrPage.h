#pragma once

#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrExport.h"

#include <QImage>
#include <QWidget>

class QPainter;
class ZrAppView;

/// A page of the application: a widget over the whole view, and what it draws below itself with OpenGL.
///
/// \code
/// class MapPage : public ZrPage
/// {
/// public:
///     explicit MapPage(ZrAppView* view) : ZrPage(view) { }
///     void zr_initializeGL() override { m_map.OnCreate(); }
///     void zr_resizeGL(int width, int height) override { m_map.OnResize(width, height); }
///     void zr_paintGL() override { m_map.Render(); }
/// };
/// view.AddPage("Map", new MapPage(&view), true);
/// \endcode
///
/// GUI thread only; the functions named zr_…GL are called with the context current.
class ZR_UTIL_EXPORT ZrPage : public QWidget, public zr::IPersistable
{
    Q_OBJECT

public:
    bool m_hasBackground = true; ///< the view paints its background behind the page
    QImage m_topLeft; ///< corners of `Blank`, of the application; may be null
    QImage m_topRight;
    QImage m_bottomLeft;
    QImage m_bottomRight;
    ZrAppView* m_view; ///< the parent, when it is one

    explicit ZrPage(QWidget* parent);

    virtual void zr_paintGL(); ///< draws the page's surfaces, in every frame while it is the current one
    virtual void zr_initializeGL(); ///< builds them, once
    virtual void zr_resizeGL(int width, int height); ///< the view has a new size, device pixels
    virtual void OnPageOpen(); ///< it is about to be shown
    virtual void OnPageClose(); ///< it has been hidden

    void settings(zr::ZrSetModule& module) override; ///< nothing to persist

    /// Paints an empty panel into \p rect: the form background, with the corner images where there are any.
    /// \param margin pixels left free along the edges
    void Blank(QPainter& painter, const QRect& rect, int margin);
};
