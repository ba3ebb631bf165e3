#pragma once

#include <QAccessible>
#include <QAccessibleWidget>
#include <QVector>

class ZrRadio;

/// What assistive technologies see of a `ZrRadio`: a group with a radio button for every choice.
///
/// Made by Qt through `ZrCtrlAccess`. GUI thread only.
class ZrRadioAccess final : public QAccessibleWidget
{
public:
    explicit ZrRadioAccess(ZrRadio* radio);
    ZrRadioAccess(const ZrRadioAccess&) = delete;
    ZrRadioAccess& operator=(const ZrRadioAccess&) = delete;
    ~ZrRadioAccess() override;

    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    int indexOfChild(const QAccessibleInterface* item) const override;
    QAccessibleInterface* focusChild() const override;

private:
    ZrRadio* m_radio;
    mutable QVector<QAccessible::Id> m_children; ///< of the choices asked for so far, 0 for the others
};
