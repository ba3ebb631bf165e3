#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QImage>
#include <QString>
#include <QWidget>

struct ZrCtrlLook;

/// A horizontal slider for fingers: a value within a range, in steps.
///
/// \code
/// auto* gain = new ZrSlider(parent);
/// gain->text = tr("Gain");
/// gain->unit = QStringLiteral("dB");
/// gain->SetRange(-20.0, 20.0);
/// gain->SetStep(0.5);
/// connect(gain, &ZrSlider::ValueChanged, view, &View::SetGain);
/// \endcode
///
/// Dragging anywhere moves the handle by the way of the finger; a tap beside the handle moves it there. The
/// arrow keys change the value by a step, Page Up and Page Down by ten, Home and End go to the ends, while
/// the slider has the focus; a click of the wheel by a step.
/// Right to left layouts are mirrored. GUI thread only.
class ZR_UTIL_EXPORT ZrSlider : public QWidget
{
    Q_OBJECT

public:
    QImage img; ///< icon at the low end; may be null
    QImage imgEnd; ///< icon at the high end; may be null
    QString text; ///< caption above the groove; empty for none
    i32 places = 0; ///< decimal places of the value shown
    QString unit; ///< shown behind the value

    explicit ZrSlider(QWidget* parent = nullptr);

    double Value() const { return m_value; }

    double Minimum() const { return m_min; }

    double Maximum() const { return m_max; }

    double Step() const { return m_step; }

    /// The value as it is shown, with its unit.
    QString ValueText() const;

    /// Sets the range, 0 to 100 at first, and moves the value into it. Nothing happens unless both ends and
    /// their distance are finite and \p lo is not above \p hi.
    void SetRange(double lo, double hi);

    /// The distance between two values; 0 for any value. Negative and not finite ones are ignored. The steps
    /// are counted from the low end; the high end can be reached in any case.
    void SetStep(double step);

    /// Moves to the value nearest to \p value that range and steps allow; not a number is ignored. Emits
    /// `ValueChanged` when that is another value.
    void SetValue(double value);

    /// Moves the value by \p count steps, a hundredth of the range each without a step.
    void StepBy(int count);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void ValueChanged(double value);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    double Allowed(double value) const;
    QRectF Groove() const;
    double XOf(double value) const;
    double ValueAt(double x) const;
    void SetHover(u32 state);
    void PaintGroove(QPainter& painter, const ZrCtrlLook& look);
    void PaintHandle(QPainter& painter, const ZrCtrlLook& look);
    void PaintIcons(QPainter& painter, const ZrCtrlLook& look);
    void PaintCaption(QPainter& painter, const ZrCtrlLook& look);

    double m_min = 0.0;
    double m_max = 100.0;
    double m_step = 1.0;
    double m_value = 0.0;
    u32 m_hover = 0; ///< 0 normal, 1 hovered, 2 dragged
    double m_grab = 0.0; ///< from the handle to the pointer while dragged, pixels
    int m_turned = 0; ///< by the wheel since the last step, eighths of a degree
    bool m_showsFocus = false; ///< keys are in use
};
