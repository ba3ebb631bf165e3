#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>
#include <QWidget>

#include <functional>

struct ZrCtrlLook;

/// A check box that shows and changes a value of somebody else.
///
/// \code
/// auto* grid = new ZrCheck(parent);
/// grid->text = tr("Grid");
/// grid->get = [view] { return view->ShowsGrid(); };
/// grid->set = [view](bool on) { view->ShowGrid(on); };
/// \endcode
///
/// The getter is asked at every painting: call `update` when the value changed elsewhere. Without callables
/// of the owner the box keeps a value of its own, false at first. A press calls the setter with the opposite
/// of the getter's value, then emits `Toggled` with what the getter says now. The whole widget is the target.
/// Space presses it while it has the focus. GUI thread only.
class ZR_UTIL_EXPORT ZrCheck : public QWidget
{
    Q_OBJECT

public:
    QString text;
    u32 hover = 0; ///< 1 while the pointer is over it
    std::function<bool()> get; ///< asks for the value; never empty when left alone
    std::function<void(bool)> set; ///< changes it

    explicit ZrCheck(QWidget* parent = nullptr);

    bool IsOn() const; ///< what the getter says; false without one

    /// Changes the value as a press does.
    void Toggle();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override; ///< at least 44 pixels high

Q_SIGNALS:
    void Toggled(bool on);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void SetHover(u32 state);
    void PaintBox(QPainter& painter, const QRectF& box, const ZrCtrlLook& look);

    bool m_value = false; ///< what the callables of the constructor work on
    bool m_showsFocus = false; ///< keys are in use
};
