#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QWidget>

#include <functional>

class ZrForm;
class ZrFormMgr;

/// What is between the settings forms and the page: darkens the page while they are open, and closes them
/// when it is touched beside them. Of forms whose effect is seen on the page at once the page stays bright
/// and in use; these stand out by a shadow.
///
/// \code
/// auto* frame = new ZrFormFrame(view, view.forms());
/// frame->m_isLive = [this](const ZrForm& form) { return &form == m_sonarForm; };
/// \endcode
///
/// Ctrl with Page Up or Page Down goes to the form before or after. The place of the forms is the
/// application's. GUI thread only; it must not outlive the forms, as children of one window do not.
class ZR_KIT_EXPORT ZrFormFrame : public QWidget
{
    Q_OBJECT

public:
    std::function<bool(const ZrForm&)>
        m_isLive; ///< whether the page shows what the form does; empty for never

    /// \param window the parent of \p forms, covered as a whole
    ZrFormFrame(QWidget& window, ZrFormMgr& forms);

    bool IsDark() const { return m_isDark; } ///< the page, while the forms are open

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void Follow();
    void Cover();
    void Step(int by);
    void PaintShadow(QPainter& painter) const;

    ZrFormMgr& m_forms;
    bool m_isDark = true;
    bool m_isPressed = false; ///< beside the forms
};
