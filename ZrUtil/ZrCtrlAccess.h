#pragma once

class QWidget;

/// Tells assistive technologies about the touch widgets: role, name, state, value and actions of each.
///
/// A choice of a `ZrRadio` is a radio button inside the group of its list. The functions do nothing while
/// nobody listens. Used by the widgets themselves. GUI thread only.
class ZrCtrlAccess
{
public:
    /// Registers the descriptions with Qt; further calls do nothing.
    static void Install();

    static void TellChecked(QWidget* widget); ///< a button or check box has been switched
    static void TellPressed(QWidget* widget); ///< a press has begun or ended
    static void TellSelected(QWidget* radio); ///< another choice of a `ZrRadio` is selected
    static void TellValue(QWidget* widget, double value); ///< a slider or progress panel has another value
};
